#include "core/stimulus/StimulusSignal.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace sonavex {

double SineOfPhase(std::uint64_t phase) noexcept {
    // Angles of at most 45 degrees, where sine and cosine are most precise.
    const std::uint64_t quarters = (phase + (std::uint64_t{1} << 61U)) >> 62U;
    const auto rest = static_cast<std::int64_t>(phase - (quarters << 62U));
    const double angle = std::ldexp(static_cast<double>(rest), -63) * std::numbers::pi;
    const double value = (quarters & 1U) != 0 ? std::cos(angle) : std::sin(angle);
    return (quarters & 2U) != 0 ? -value : value;
}

void StimulusSignal::Fill(std::uint64_t frame, std::span<double> samples) const noexcept {
    if (period_ != nullptr) {
        const std::uint64_t last = period_->size() - 1;
        for (double& sample : samples) sample = (*period_)[static_cast<std::size_t>(frame++ & last)];
        return;
    }
    std::fill(samples.begin(), samples.end(), 0.0);
    for (const StimulusLine& line : lines_) {
        std::uint64_t phase = line.step * frame;
        for (double& sample : samples) {
            sample += line.amplitude * SineOfPhase(phase);
            phase += line.step;
        }
    }
}

}  // namespace sonavex
