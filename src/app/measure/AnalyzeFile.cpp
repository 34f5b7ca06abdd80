#include <algorithm>
#include <filesystem>
#include <optional>
#include <utility>

#include "app/measure/AnalyzeLimits.h"
#include "app/measure/AnalyzedFiles.h"
#include "app/measure/AnalyzedReading.h"
#include "app/measure/Commands.h"
#include "app/measure/MeasureError.h"
#include "app/measure/Readings.h"
#include "app/measure/Recording.h"
#include "app/measure/RecordsOf.h"
#include "app/measure/ValidityRules.h"
#include "core/analyzer/MeasureLines.h"
#include "core/analyzer/MeasureTone.h"
#include "core/analyzer/ToneAverage.h"

namespace sonavex::measure {
namespace {

void RequireUsable(const AnalyzeOptions& options, const Recording& recording) {
    if (options.channel >= recording.Channels()) throw MeasureError("The recording has only one channel.");
    for (const std::string* output : {&options.savedReference, &options.residual, &options.spectrum}) {
        std::error_code ignored;
        if (!output->empty() && std::filesystem::equivalent(*output, options.input, ignored))
            throw MeasureError("The recording cannot be written over itself.");
    }
}

std::optional<SavedReading> ReadIfNamed(const std::string& path) {
    if (path.empty()) return std::nullopt;
    return ReadSavedReading(path);
}

// Analyses the records of a recording one after the other. Only the mean and the last fit are kept.
class FileAnalysis {
public:
    FileAnalysis(const AnalyzeOptions& options, const Recording& recording, const RecordPlan& plan)
        : options_(options),
          plan_(plan),
          band_{options.lowHz, options.highHz},
          settings_{band_, options.highestOrder, options.fundamentalHz, std::nullopt},
          average_(plan, 0),
          spectrum_(plan),
          bits_(recording.Bits()),
          floatingPoint_(recording.FloatingPoint()) {}

    void Add(const RecordsOf& records) {
        Record record;
        record.samples = records.Samples();
        record.rateHz = plan_.RateHz();
        record.bits = bits_;
        record.floatingPoint = floatingPoint_;
        record.startSeconds = records.StartSeconds();
        ++blocks_;
        if (!options_.spectrum.empty() && record.samples.size() == plan_.Length())
            spectrum_.Add(record.samples);
        if (options_.mode == AnalyzeMode::kThd)
            AddTone(MeasureTone(plan_, record, settings_, &fit_));
        else
            AddLines(Measure(record));
    }

    AnalyzedReading Result() const {
        AnalyzedReading result;
        result.mode = options_.mode;
        result.rateHz = plan_.RateHz();
        result.values = Values();
        Reading& reading = result.values.reading;
        if (!voids_.empty()) {
            result.values = {};
            reading.voids = voids_;
            reading.warnings = warnings_;
            reading.blocks = blocks_;
            TakeConditions(reading);
        }
        reading.highestOrder = options_.highestOrder;
        return result;
    }

    const FittedLines& LastFit() const { return fit_; }
    const SpectrumMean& Spectrum() const { return spectrum_; }

private:
    LinesMeasurement Measure(const Record& record) {
        switch (options_.mode) {
            case AnalyzeMode::kImd:
                return MeasurePair(plan_, record, options_.tonesHz, band_, &fit_);
            case AnalyzeMode::kMultitone:
                return MeasureMultitone(plan_, record, options_.tonesHz, band_, &fit_);
            default:
                return MeasureNoise(plan_, record, &fit_);
        }
    }

    void AddTone(ToneMeasurement measurement) {
        TakeFaults(measurement.voids, measurement.warnings);
        if (voids_.empty()) tone_ = &average_.Add(std::move(measurement));
    }

    void AddLines(LinesMeasurement measurement) {
        TakeFaults(measurement.voids, measurement.warnings);
        if (voids_.empty()) AddToMean(lines_, std::move(measurement));
    }

    // One void record voids the reading.
    void TakeFaults(const std::vector<Void>& voids, const std::vector<Warning>& warnings) {
        AddUnknown(voids_, voids);
        AddUnknown(warnings_, warnings);
    }

    template <typename Fault>
    static void AddUnknown(std::vector<Fault>& known, const std::vector<Fault>& faults) {
        for (const Fault& fault : faults)
            if (std::none_of(known.begin(), known.end(),
                             [&fault](const Fault& other) { return other.code == fault.code; }))
                known.push_back(fault);
    }

    LinesReading Values() const {
        if (!voids_.empty()) return {};
        switch (options_.mode) {
            case AnalyzeMode::kImd:
                return MakePairReading(plan_, *lines_, band_);
            case AnalyzeMode::kMultitone:
                return MakeMultitoneReading(plan_, *lines_, band_);
            case AnalyzeMode::kNoise:
                return MakeNoiseReading(plan_, *lines_, band_);
            case AnalyzeMode::kThd:
                break;
        }
        LinesReading values;
        values.reading = MakeReading(plan_, *tone_, settings_);
        return values;
    }

    void TakeConditions(Reading& reading) const {
        reading.band = band_.UpTo(0.5 * plan_.RateHz());
        reading.length = plan_.Length();
        reading.bits = bits_;
        reading.floatingPoint = floatingPoint_;
    }

    const AnalyzeOptions& options_;
    const RecordPlan& plan_;
    Band band_;
    ToneSettings settings_;
    ToneAverage average_;
    const ToneMeasurement* tone_ = nullptr;
    std::optional<LinesMeasurement> lines_;
    SpectrumMean spectrum_;
    FittedLines fit_;
    std::vector<Void> voids_;
    std::vector<Warning> warnings_;
    std::size_t blocks_ = 0;
    int bits_;
    bool floatingPoint_;
};

void WriteFiles(const AnalyzeOptions& options, const FileAnalysis& analysis, const AnalyzedReading& reading) {
    const FittedLines& fit = analysis.LastFit();
    if (!options.spectrum.empty()) WriteText(options.spectrum, analysis.Spectrum().Csv());
    if (!options.residual.empty()) {
        if (fit.residual.empty())
            throw MeasureError("There is no residual to write: no record could be fitted.");
        WriteFloatWav(options.residual, fit.residual, static_cast<std::int32_t>(reading.rateHz));
    }
    if (!options.savedReference.empty() && reading.values.reading.Valid())
        WriteText(options.savedReference, AnalyzedJson(reading) + '\n');
}

}  // namespace

int AnalyzeFile(const AnalyzeOptions& options) {
    Recording recording(options.input);
    const RecordPlan plan(RecordLength(options, recording.RateHz()), recording.RateHz());
    RequireSuitable(options, plan);
    RequireUsable(options, recording);
    const std::optional<SavedReading> reference = ReadIfNamed(options.reference);
    const std::optional<SavedReading> idle = ReadIfNamed(options.idle);

    FileAnalysis analysis(options, recording, plan);
    RecordsOf records(recording, options.channel, plan.Length());
    while (records.Next()) analysis.Add(records);
    AnalyzedReading reading = analysis.Result();
    reading.rules = JudgeReading(reading.values.reading, reference, idle);
    WriteFiles(options, analysis, reading);
    Print(options.json ? AnalyzedJson(reading) + '\n' : AnalyzedTable(reading));
    return reading.values.reading.Valid() ? kMeasured : kVoid;
}

}  // namespace sonavex::measure
