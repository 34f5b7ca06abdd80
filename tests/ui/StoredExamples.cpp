#include "ui/StoredExamples.h"

#include <cmath>
#include <optional>

#include "core/history/ReadingValues.h"
#include "unit/history/StoredEntries.h"

namespace sonavex {
namespace {

struct Example {
    const char* time;
    std::optional<double> thdDb;  // empty of a void reading
    HistoryState state;
    const char* reason;
    const char* note;
};

constexpr Example kExamples[] = {
    {"2026-11-22 18:18:03", -69.92, HistoryState::kValid, "resampled from 48000 Hz", "headset, volume 74 %"},
    {"2026-11-22 18:20:44", -71.33, HistoryState::kValid, "", "headset"},
    {"2026-11-23 10:37:12", -7.36, HistoryState::kValid, "", "filter check"},
    {"2026-11-23 10:40:55", -116.0, HistoryState::kUnsteady, "-60 dBc within 6 Hz", ""},
    {"2026-11-23 10:42:07", -96.99, HistoryState::kValid, "", "gain +20 dB"},
    {"2026-11-23 10:51:17", -100.12, HistoryState::kValid, "", "before the new caps"},
    {"2026-11-23 10:54:40", std::nullopt, HistoryState::kOverload, "the input clips", ""},
    {"2026-11-23 10:55:02", std::nullopt, HistoryState::kVoid, "512 frames were lost", ""},
    {"2026-11-23 10:58:21", -102.57, HistoryState::kValid, "", "new caps, warm"},
};

// Noise with a hum and harmonics that fit the distortion.
HistoryCurve CurveOfExample(double thdDb) {
    constexpr double kNoiseDbfs = -138;
    HistoryCurve curve;
    for (std::size_t i = 0; i < HistoryCurve::kMostColumns; ++i)
        curve.levelsDbfs.push_back(kNoiseDbfs + 0.02 * thdDb + std::fmod(static_cast<double>(i * i), 7.0));
    for (const auto& [column, level] :
         {std::pair<std::size_t, double>{710, -1.0}, {817, thdDb}, {879, thdDb - 6}})
        curve.levelsDbfs[column] = level;
    return curve;
}

}  // namespace

void StoreExamples(AnalyzerRig& rig) {
    for (const Example& example : kExamples) {
        ExportedMeasurement measurement = LiveReading(example.time);
        measurement.reading.stream->input = "USB Audio Line In 1-2";
        measurement.reading.stream->output = "USB Audio Line Out 1-2";
        measurement.reading.values.reading.thdDb.value = example.thdDb;
        HistoryEntry entry = EntryOf(measurement);
        entry.state = example.state;
        entry.reason = example.reason;
        entry.note = example.note;
        if (!example.thdDb) entry.figures.clear();
        rig.form.History.Store(entry, DetailsOf(measurement.reading),
                               example.thdDb ? CurveOfExample(*example.thdDb) : HistoryCurve());
    }
}

}  // namespace sonavex
