#include "core/analyzer/ToneChecks.h"

#include <cmath>
#include <numbers>

#include "core/analyzer/RecordFaults.h"

namespace sonavex {
namespace {

double HalfRateBins(const RecordPlan& plan) {
    return 0.5 * static_cast<double>(plan.Length());
}

}  // namespace

Void NoTone(const char* sentence) {
    return {VoidCode::kNoTone, sentence};
}

std::optional<Void> PositionFault(const RecordPlan& plan, double position) {
    if (position < kGuardBins)
        return Void{VoidCode::kFrequencyTooLow, "The fundamental has fewer than 8 periods in the record."};
    if (position > HalfRateBins(plan) - kGuardBins)
        return NoTone("The strongest line is too close to half the sampling rate.");
    return std::nullopt;
}

double FrequencySigmaHz(const RecordPlan& plan, double amplitude, double density) {
    const AnalysisWindow& window = plan.Window();
    const double sampleSigma = std::sqrt(0.5 * density * static_cast<double>(plan.Length()));
    const double radians = sampleSigma * std::numbers::sqrt2 * std::sqrt(window.SquaredTimeMoment()) /
                           (amplitude * window.TimeMoment());
    return radians * plan.RateHz() / (2.0 * std::numbers::pi);
}

bool StandsOut(const RecordPlan& plan, double amplitude, double density) {
    const double onBin = 0.5 * amplitude * amplitude / plan.Window().EnbwBins();
    return onBin >= kToneOverNoise * density;
}

void AddLevelFaults(const Record& record, std::vector<Void>& voids, std::vector<Warning>& warnings) {
    if (record.live && record.bits <= 16)
        warnings.push_back({WarningCode::kLimitedBy16Bit, "The sound path delivers no more than 16 bits."});
    if (!Overloaded(record)) return;
    if (record.live)
        voids.push_back({VoidCode::kOverload, "The input reaches full scale."});
    else
        warnings.push_back({WarningCode::kClipped, "Samples reach full scale."});
}

}  // namespace sonavex
