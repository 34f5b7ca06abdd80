#include "core/preview/PreviewSweep.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <stdexcept>

namespace sonavex {
namespace {

constexpr double kPeriodSeconds = 10.9;
// The rest of the period is the pause, in which the device's answer ends.
constexpr double kSweepPart = 0.92;
constexpr double kLowestSweepHz = 5;
constexpr double kHighestSweepPart = 0.48;
constexpr double kSweepRampSeconds = 0.005;

std::size_t PeriodLength(double rateHz) {
    return static_cast<std::size_t>(std::exp2(std::round(std::log2(kPeriodSeconds * rateHz))));
}

double SweepRamp(double seconds) {
    if (seconds >= kSweepRampSeconds) return 1;
    return 0.5 - 0.5 * std::cos(std::numbers::pi * std::max(seconds, 0.0) / kSweepRampSeconds);
}

}  // namespace

double PreviewSweep::LeadOf(double order) const {
    return timeConstant * std::log(order) * rateHz;
}

PreviewSweep MakePreviewSweep(double startHz, double rateHz) {
    if (!(startHz >= 0 && startHz <= rateHz / 10)) throw std::invalid_argument("start of the preview");
    PreviewSweep sweep;
    sweep.rateHz = rateHz;
    sweep.lowHz = std::max(startHz / 2, kLowestSweepHz);
    sweep.highHz = kHighestSweepPart * rateHz;
    const std::size_t length = PeriodLength(rateHz);
    const double octaves = std::log(sweep.highHz / sweep.lowHz);
    const double longest = kSweepPart * static_cast<double>(length) / rateHz;
    sweep.timeConstant = std::floor(sweep.lowHz * longest / octaves) / sweep.lowHz;
    const double end = sweep.timeConstant * octaves;
    sweep.samples.assign(length, 0.0);
    for (std::size_t n = 0; static_cast<double>(n) < end * rateHz; ++n) {
        const double seconds = static_cast<double>(n) / rateHz;
        const double turns = sweep.lowHz * sweep.timeConstant * std::exp(seconds / sweep.timeConstant);
        sweep.samples[n] = SweepRamp(seconds) * SweepRamp(end - seconds) *
                           std::sin(2 * std::numbers::pi * (turns - std::floor(turns)));
    }
    return sweep;
}

double PreviewSeconds(double rateHz) {
    return static_cast<double>(PeriodLength(rateHz)) / rateHz;
}

}  // namespace sonavex
