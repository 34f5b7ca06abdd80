#include "core/run/PathDelay.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace sonavex {
namespace {

constexpr double kMostBeyondSeconds = 1.5e-3;
constexpr double kBurstHz = 500.0;
constexpr double kTriedPerPeriod = 16.0;
// By how much a longer delay must fit better.
constexpr double kBetter = 1.001;
constexpr int kRefinements = 4;
constexpr double kRadiansPerTurn = 2.0 * std::numbers::pi;

}  // namespace

PathDelay::PathDelay(double highestHz) : stepSeconds_(1.0 / (kTriedPerPeriod * highestHz)) {
    const auto aside = static_cast<std::size_t>(std::floor(kMostBeyondSeconds / stepSeconds_));
    sums_.resize(2 * aside + 1);
}

// From -1.5 ms to 1.5 ms, 0 in the middle.
double PathDelay::TriedSeconds(std::size_t index) const {
    const std::size_t middle = sums_.size() / 2;
    return (static_cast<double>(index) - static_cast<double>(middle)) * stepSeconds_;
}

void PathDelay::Add(double hertz, double turns) {
    phases_.push_back({hertz, turns});
    for (std::size_t i = 0; i < sums_.size(); ++i)
        sums_[i] += std::cos(kRadiansPerTurn * (turns + hertz * TriedSeconds(i)));
}

bool PathDelay::SlopeIsKnown() const {
    const auto above = [](const Phase& phase) { return phase.hertz >= kBurstHz; };
    const auto other = [this](const Phase& phase) { return phase.hertz != phases_.front().hertz; };
    return std::any_of(phases_.begin(), phases_.end(), above) &&
           std::any_of(phases_.begin(), phases_.end(), other);
}

double PathDelay::BeyondBurstSeconds() const {
    if (!SlopeIsKnown()) return 0.0;
    const std::size_t middle = sums_.size() / 2;
    std::size_t best = middle;
    for (std::size_t aside = 1; aside <= middle; ++aside)
        for (const std::size_t index : {middle - aside, middle + aside})
            if (std::abs(sums_[index]) > kBetter * std::abs(sums_[best])) best = index;
    return Refined(TriedSeconds(Top(best)));
}

// The peak that contains a delay. A better delay may be less than kBetter away.
std::size_t PathDelay::Top(std::size_t index) const {
    const auto at = [this](std::size_t i) { return std::abs(sums_[i]); };
    while (index > 0 && at(index - 1) > at(index)) --index;
    while (index + 1 < sums_.size() && at(index + 1) > at(index)) ++index;
    return index;
}

// Newton's method on the squared sum.
double PathDelay::Refined(double seconds) const {
    const double start = seconds;
    for (int i = 0; i < kRefinements; ++i) {
        double sum = 0.0;
        double slope = 0.0;
        double curve = 0.0;
        for (const Phase& phase : phases_) {
            const double angle = kRadiansPerTurn * (phase.turns + phase.hertz * seconds);
            const double rate = kRadiansPerTurn * phase.hertz;
            sum += std::cos(angle);
            slope -= rate * std::sin(angle);
            curve -= rate * rate * std::cos(angle);
        }
        const double first = sum * slope;
        const double second = slope * slope + sum * curve;
        if (second >= 0.0) break;
        seconds = std::clamp(seconds - first / second, start - stepSeconds_, start + stepSeconds_);
    }
    return seconds;
}

}  // namespace sonavex
