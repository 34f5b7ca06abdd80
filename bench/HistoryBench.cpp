// Opening a history: ten thousand readings with curves in one file in memory, from its bytes to the list that
// is shown first.

#include <benchmark/benchmark.h>

#include <cstddef>
#include <string>
#include <vector>

#include "core/history/HistoryDay.h"
#include "core/history/HistoryView.h"
#include "core/history/ReadingValues.h"

namespace {

using namespace sonavex;

constexpr std::size_t kEntries = 10000;

// A reading with all values, 20 harmonics and a curve.
std::string TypicalLine(std::size_t number) {
    ExportedMeasurement measurement;
    measurement.time = "2026-11-23 10:58:21";
    measurement.channel = "left";
    AnalyzedReading& analyzed = measurement.reading;
    analyzed.rateHz = 48000;
    analyzed.stream = StreamDetails();
    analyzed.stream->input = "USB Audio Line In 1-2";
    analyzed.stream->output = "USB Audio Line Out 1-2";
    analyzed.stimulus = "sine:1000 at -1.00 dBFS";
    analyzed.playedHz = {999.755859375};
    Reading& reading = analyzed.values.reading;
    const Value value{-102.57123456789, 0.0712345678, false};
    for (Value* const each :
         {&reading.frequencyHz, &reading.levelDbfs, &reading.dc, &reading.thdPercent, &reading.thdDb,
          &reading.thdRPercent, &reading.thdnDb, &reading.thdnRDb, &reading.thdnNotchDb, &reading.sinadDb,
          &reading.snrDb, &reading.enob, &reading.noiseDbfs, &reading.noiseADbfs, &reading.noise468Dbfs,
          &reading.noiseCcirRmsDbfs, &reading.skirtDb, &reading.sfdrDb})
        *each = value;
    for (int order = 2; order <= 21; ++order) reading.harmonics.push_back({order, value, value});
    HistoryEntry entry = EntryOf(measurement);
    entry.id = "2026-11-23-" + std::to_string(number);
    HistoryCurve curve;
    for (std::size_t i = 0; i < HistoryCurve::kMostColumns; ++i)
        curve.levelsDbfs.push_back(-140.0 + 0.01 * static_cast<double>((i * 7919 + number) % 1000));
    return EntryLine(entry, DetailsOf(analyzed), curve);
}

void BM_OpenHistory10000(benchmark::State& state) {
    std::string text;
    for (std::size_t i = 0; i < kEntries; ++i) text += TypicalLine(i) + '\n';
    std::size_t shown = 0;
    for (auto _ : state) {
        const HistoryDay day = ReadHistoryDay("2026-11-23", text);
        shown = ShownEntries(day.entries, {}).size();
        benchmark::DoNotOptimize(shown);
    }
    if (shown != kEntries) state.SkipWithError("not every entry was read");
    state.counters["bytes"] = static_cast<double>(text.size());
}
BENCHMARK(BM_OpenHistory10000)->Unit(benchmark::kMillisecond);

}  // namespace
