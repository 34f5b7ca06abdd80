#include <unistd.h>

#include <iostream>
#include <optional>
#include <utility>

#include "app/measure/Commands.h"
#include "app/measure/LiveAnalysis.h"
#include "app/measure/MeasureError.h"
#include "app/measure/Readings.h"
#include "app/measure/SavedReadings.h"
#include "app/measure/StoredReadings.h"
#include "core/precise/results/ExportedMeasurement.h"
#include "platform/sndfile/SndfileFiles.h"

namespace sonavex::measure {
namespace {

constexpr const char* kClearLine = "\r\033[K";

// Prints the readings. Files are written at the end, if the last reading is valid.
class LiveOutput {
public:
    LiveOutput(const AnalyzeOptions& options, const PreciseMeter& meter)
        : options_(options), meter_(meter), visible_(isatty(STDERR_FILENO) != 0) {
        if (!options.reference.empty()) reference_ = ReadSavedReading(options.reference);
        if (!options.idle.empty()) idle_ = ReadSavedReading(options.idle);
    }

    void Take(AnalyzedReading reading) {
        reading.rules = JudgeReading(reading.values.reading, reference_, idle_);
        ClearProgress();
        if (options_.json) Print(AnalyzedJson(reading) + '\n');
        last_ = std::move(reading);
    }

    void ShowProgress() const {
        ClearProgress();
        if (visible_ && meter_.Collected() < meter_.Length())
            std::cerr << "settling " << meter_.Collected() << " of " << meter_.Length() << std::flush;
    }

    // The exit status.
    int Finish() const {
        ClearProgress();
        if (!options_.json) Print(AnalyzedTable(last_));
        if (Valid()) WriteFiles();
        if (options_.history) StoreReading(last_, options_, meter_.Spectrum(), meter_.Plan());
        return Valid() ? kMeasured : kVoid;
    }

private:
    bool Valid() const noexcept { return last_.values.reading.Valid(); }

    void ClearProgress() const {
        if (visible_) std::cerr << kClearLine << std::flush;
    }

    void WriteFiles() const {
        const SndfileFiles files;
        if (!options_.savedReference.empty())
            files.WriteText(options_.savedReference, AnalyzedJson(last_) + '\n');
        if (!options_.residual.empty())
            files.WriteFloatWav(options_.residual, meter_.Residual(), static_cast<std::int32_t>(last_.rateHz),
                                "");
        if (!options_.spectrum.empty())
            files.WriteText(options_.spectrum,
                            SpectrumCsv({}, ExportedSpectrum::Of(meter_.Spectrum(), meter_.Plan())));
    }

    const AnalyzeOptions& options_;
    const PreciseMeter& meter_;
    bool visible_;
    std::optional<SavedReading> reference_;
    std::optional<SavedReading> idle_;
    AnalyzedReading last_;
};

}  // namespace

int AnalyzeLive(const AnalyzeOptions& options) {
    LiveAnalysis analysis(options);
    LiveOutput output(options, analysis.Meter());
    analysis.Run([&](const AnalyzedReading& reading) { output.Take(reading); },
                 [&] { output.ShowProgress(); });
    return output.Finish();
}

}  // namespace sonavex::measure
