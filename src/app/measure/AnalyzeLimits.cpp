#include "app/measure/AnalyzeLimits.h"

#include "app/measure/MeasureError.h"
#include "core/analyzer/MeasureLines.h"

namespace sonavex::measure {
namespace {

void RequireBelowHalfRate(const char* option, double hertz, const RecordPlan& plan) {
    if (hertz >= 0.5 * plan.RateHz())
        throw MeasureError(std::string(option) + " is not below half the sampling rate.");
}

void RequireTones(const AnalyzeOptions& options, const RecordPlan& plan) {
    const std::size_t tones = options.tonesHz.size();
    const bool pair = options.mode == PreciseMode::kPair;
    const bool multitone = options.mode == PreciseMode::kMultitone;
    if (tones > 0 && !pair && !multitone) throw MeasureError("--tones is for the modes imd and multitone.");
    if (pair && tones != 0 && tones != 2) throw MeasureError("The mode imd takes two tones.");
    if (multitone && tones == 0) throw MeasureError("The mode multitone needs --tones.");
    if (const std::optional<std::string> fault = TonesFault(plan, options.tonesHz))
        throw MeasureError("--tones: " + *fault);
}

}  // namespace

std::size_t RecordLength(const AnalyzeOptions& options, double rateHz) {
    if (options.length) return static_cast<std::size_t>(*options.length);
    return DefaultRecordLength(rateHz);
}

void RequireSuitable(const AnalyzeOptions& options, const RecordPlan& plan) {
    RequireBelowHalfRate("The lower end of --band", options.lowHz, plan);
    if (options.fundamentalHz) RequireBelowHalfRate("--fundamental", *options.fundamentalHz, plan);
    if (options.fundamentalHz && options.mode != PreciseMode::kTone)
        throw MeasureError("--fundamental is for the mode thd.");
    RequireTones(options, plan);
}

PreciseSettings SettingsOf(const AnalyzeOptions& options, double rateHz) {
    PreciseSettings settings;
    settings.rateHz = rateHz;
    settings.length = RecordLength(options, rateHz);
    settings.channel = static_cast<std::size_t>(options.channel);
    settings.mode = options.mode;
    settings.tone.band = {options.lowHz, options.highHz};
    settings.tone.highestOrder = options.highestOrder;
    settings.tone.fundamentalHz = options.fundamentalHz;
    settings.tonesHz = options.tonesHz;
    settings.averages = options.live.average;
    return settings;
}

}  // namespace sonavex::measure
