#include "core/analyzer/Uncertainty.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace sonavex {
namespace {

// Half the width of the interval that contains 95 % of a normal distribution, in standard deviations.
constexpr double kCoverage = 1.959964;

// Decibels of a small relative change of an amplitude.
constexpr double kDecibelsPerPart = 20.0 / std::numbers::ln10;

// A density is the median of 80 bins that vary together in groups, so a sigma from it is as uncertain as the
// standard deviation of 21 numbers (10 at 0 Hz, which has neighbours on one side). Student's distribution
// widens the intervals by 1 + 1.21 / degrees of freedom.
constexpr double kFreedom = 21.0;
constexpr double kFreedomAtDc = 10.0;
constexpr double kStudent = 1.21;

}  // namespace

double WideningOfLine(double powerRecords) {
    return 1.0 + kStudent / (kFreedom * powerRecords);
}

double WideningAtDc(double powerRecords) {
    return 1.0 + kStudent / (kFreedomAtDc * powerRecords);
}

double Uncertainty::Relative(double relativeSigma) const {
    return std::max(kCoverage * relativeSigma, least_);
}

Value Uncertainty::AmplitudeDb(double ratio, double relativeSigma) const {
    return {Decibels(ratio), kDecibelsPerPart * Relative(relativeSigma), false};
}

Value Uncertainty::PowerDb(double ratio, double relativeSigma) const {
    return AmplitudeDb(std::sqrt(ratio), 0.5 * relativeSigma);
}

Value Uncertainty::Absolute(double value, double sigma, double scale) const {
    return {value, std::max(kCoverage * sigma, least_ * std::max(std::abs(value), scale)), false};
}

Value Uncertainty::Degrees(double degrees, double sigmaRadians) const {
    return {degrees, 180.0 / std::numbers::pi * Relative(sigmaRadians), false};
}

}  // namespace sonavex
