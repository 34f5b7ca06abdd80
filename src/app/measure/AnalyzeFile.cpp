#include <filesystem>
#include <memory>
#include <optional>
#include <utility>

#include "app/measure/AnalyzeLimits.h"
#include "app/measure/Commands.h"
#include "app/measure/MeasureError.h"
#include "app/measure/Readings.h"
#include "app/measure/SavedReadings.h"
#include "app/measure/StoredReadings.h"
#include "core/precise/RecordingAnalysis.h"
#include "core/precise/results/AnalyzedReading.h"
#include "core/precise/results/ExportedMeasurement.h"
#include "platform/sndfile/SndfileFiles.h"

namespace sonavex::measure {
namespace {

void RequireUsable(const AnalyzeOptions& options, const OpenRecording& recording) {
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

void WriteFiles(const AnalyzeOptions& options, const RecordingAnalysis& analysis, const RecordPlan& plan,
                const AnalyzedReading& reading) {
    const SndfileFiles files;
    if (!options.spectrum.empty())
        files.WriteText(options.spectrum, SpectrumCsv({}, ExportedSpectrum::Of(analysis.Spectrum(), plan)));
    if (!options.residual.empty()) {
        if (analysis.Residual().empty())
            throw MeasureError("There is no residual to write: no record could be fitted.");
        files.WriteFloatWav(options.residual, analysis.Residual(), static_cast<std::int32_t>(reading.rateHz),
                            "");
    }
    if (!options.savedReference.empty() && reading.values.reading.Valid())
        files.WriteText(options.savedReference, AnalyzedJson(reading) + '\n');
}

}  // namespace

int AnalyzeFile(const AnalyzeOptions& options) {
    std::unique_ptr<OpenRecording> recording = SndfileFiles().Open(options.input);
    const double rateHz = recording->RateHz();
    const auto plan = std::make_shared<const RecordPlan>(RecordLength(options, rateHz), rateHz);
    RequireSuitable(options, *plan);
    RequireUsable(options, *recording);
    const std::optional<SavedReading> reference = ReadIfNamed(options.reference);
    const std::optional<SavedReading> idle = ReadIfNamed(options.idle);

    RecordingAnalysis analysis(std::move(recording), plan, SettingsOf(options, rateHz));
    while (analysis.MeasureNext()) {
    }
    AnalyzedReading reading;
    reading.mode = options.mode;
    reading.values = analysis.Values();
    reading.rateHz = rateHz;
    reading.rules = JudgeReading(reading.values.reading, reference, idle);
    WriteFiles(options, analysis, *plan, reading);
    Print(options.json ? AnalyzedJson(reading) + '\n' : AnalyzedTable(reading));
    if (options.history) StoreReading(reading, options, analysis.Spectrum(), *plan);
    return reading.values.reading.Valid() ? kMeasured : kVoid;
}

}  // namespace sonavex::measure
