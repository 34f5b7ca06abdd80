#include "core/analyzer/ToneChecks.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <span>

#include "core/analyzer/RecordFaults.h"

namespace sonavex {
namespace {

constexpr int kBitsOfNarrowPath = 16;

double HalfRateBins(const RecordPlan& plan) {
    return 0.5 * static_cast<double>(plan.Length());
}

// Whether words of more bits move only the upper 16. Nothing follows from constant samples.
bool MovesOnlyUpperBits(const Record& record) {
    if (record.bits <= kBitsOfNarrowPath || record.floatingPoint || record.rounded) return false;
    const std::span<const double> samples = record.samples;
    const auto narrow = [](double sample) {
        const double code = std::ldexp(sample, kBitsOfNarrowPath - 1);
        return code == std::floor(code);
    };
    const auto moved = [&samples](double sample) { return sample != samples.front(); };
    return std::all_of(samples.begin(), samples.end(), narrow) &&
           std::any_of(samples.begin(), samples.end(), moved);
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
    if ((record.live && record.bits <= kBitsOfNarrowPath) || MovesOnlyUpperBits(record))
        warnings.push_back({WarningCode::kLimitedBy16Bit, "The sound path delivers no more than 16 bits."});
    if (!Overloaded(record)) return;
    if (record.live)
        voids.push_back({VoidCode::kOverload, "The input reaches full scale."});
    else
        warnings.push_back({WarningCode::kClipped, "Samples reach full scale."});
}

}  // namespace sonavex
