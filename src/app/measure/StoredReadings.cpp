#include "app/measure/StoredReadings.h"

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <iostream>
#include <random>
#include <string>
#include <system_error>

#include "app/measure/Commands.h"
#include "app/measure/MeasureError.h"
#include "app/measure/Readings.h"
#include "core/history/History.h"
#include "core/history/HistoryTable.h"
#include "core/history/HistoryView.h"
#include "core/history/ReadingValues.h"
#include "core/history/RunEntry.h"
#include "core/run/StoredRun.h"
#include "core/text/Dates.h"
#include "platform/plain/HistoryFolder.h"
#include "platform/plain/LocalTime.h"
#include "platform/plain/PlainEventLoop.h"
#include "platform/plain/WorkerThread.h"
#include "platform/sndfile/SndfileFiles.h"

namespace sonavex::measure {
namespace {

constexpr std::chrono::seconds kLongestSync{10};

std::uint64_t RandomNumber() {
    std::random_device random;
    return (std::uint64_t{random()} << 32U) | random();
}

HistoryCurve CurveOf(const AnalyzedReading& reading, const MeanSpectrum& spectrum, const RecordPlan& plan) {
    if (!reading.values.reading.Valid() || spectrum.power.empty()) return {};
    const double independent = plan.Overlap().Of(std::max<std::size_t>(spectrum.records, 1)).power;
    return HistoryCurve::Of(ExportedSpectrum::Of(spectrum, plan), independent);
}

// Empty for a live measurement.
std::string FullPath(const std::string& recording) {
    std::error_code error;
    const std::filesystem::path path = std::filesystem::absolute(recording, error);
    return recording.empty() || error ? recording : path.string();
}

std::string ListLine(const HistoryEntry& entry) {
    std::string line = entry.time + "  " + PathOf(entry);
    const std::string stimulus = StimulusOf(entry);
    if (!stimulus.empty()) line += "  " + stimulus;
    for (const NamedValue& figure : entry.figures)
        line += "  " + figure.name + ' ' + FigureOf(entry, figure.name, 2);
    line += "  " + StateOf(entry);
    if (entry.simulated) line += "  SIMULATED";
    return line + (entry.note.empty() ? "" : "  " + entry.note) + '\n';
}

void StoreEntry(const HistoryEntry& entry, const std::string& details, const HistoryCurve& curve) {
    HistoryFolder files(HistoryFolder::OfTheUser());
    PlainEventLoop loop;
    WorkerThread background(loop);
    History history({files, background, RandomNumber});
    std::string trouble;
    history.OnTrouble = [&trouble](const std::string& sentence) { trouble = sentence; };
    history.Add(entry, details, curve);
    if (!loop.RunUntil([&history] { return history.Synced(); }, kLongestSync))
        trouble = "The history did not reach the disk within 10 s.";
    if (!trouble.empty()) throw MeasureError(trouble);
}

}  // namespace

void StoreReading(const AnalyzedReading& reading, const AnalyzeOptions& options, const MeanSpectrum& spectrum,
                  const RecordPlan& plan) {
    ExportedMeasurement measurement;
    measurement.time = DateAndTime(LocalDateTime());
    measurement.recording = FullPath(options.input);
    measurement.channel = options.channel == 0 ? "left" : "right";
    measurement.reading = reading;
    StoreEntry(EntryOf(measurement), DetailsOf(reading), CurveOf(reading, spectrum, plan));
}

void StoreRun(const MeasuredRun& run) {
    StoreEntry(EntryOf(run, ""), StoredRunText(run), {});
}

int ListHistory(const HistoryOptions& options) {
    const HistoryFolder files(HistoryFolder::OfTheUser());
    const LoadedHistory loaded = LoadHistory(files);
    HistoryFilter filter;
    filter.text = options.search;
    filter.validOnly = options.validOnly;
    const std::vector<const HistoryEntry*> shown = ShownEntries(loaded.entries, filter);
    if (!options.csv.empty()) SndfileFiles().WriteText(options.csv, HistoryCsv(shown, files));
    std::string text;
    for (const HistoryEntry* const entry : shown)
        text += options.json ? EntryJson(*entry) + '\n' : ListLine(*entry);
    Print(text);
    const std::string trouble = loaded.Trouble();
    if (!trouble.empty()) std::cerr << "sonavex-measure: " << trouble << '\n';
    return loaded.failures.empty() ? kMeasured : kFailed;
}

}  // namespace sonavex::measure
