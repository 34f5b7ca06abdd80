#include "core/stimulus/StimulusSignal.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace sonavex {
namespace {

constexpr std::uint64_t kQuarterTurn = std::uint64_t{1} << 62U;

}  // namespace

double SineOfPhase(std::uint64_t phase) noexcept {
    // Angles of at most 45 degrees, where sine and cosine are most precise.
    const std::uint64_t quarters = (phase + (std::uint64_t{1} << 61U)) >> 62U;
    const auto rest = static_cast<std::int64_t>(phase - (quarters << 62U));
    const double angle = static_cast<double>(rest) * 0x1p-63 * std::numbers::pi;
    const double value = (quarters & 1U) != 0 ? std::cos(angle) : std::sin(angle);
    return (quarters & 2U) != 0 ? -value : value;
}

StimulusSignal::StimulusSignal(std::vector<StimulusLine> lines) : lines_(std::move(lines)) {
    turns_.reserve(lines_.size());
    for (const StimulusLine& line : lines_) turns_.push_back(TurnsOf(line));
}

StimulusSignal::Turns StimulusSignal::TurnsOf(const StimulusLine& line) noexcept {
    Turns turns{};
    for (std::uint64_t frame = 0; frame < kGroup; ++frame)
        turns[frame] = {SineOfPhase(line.step * frame), SineOfPhase(line.step * frame + kQuarterTurn)};
    return turns;
}

void StimulusSignal::Fill(std::uint64_t frame, std::span<double> samples) const noexcept {
    if (period_ != nullptr) {
        const std::uint64_t last = period_->size() - 1;
        for (double& sample : samples) sample = (*period_)[static_cast<std::size_t>(frame++ & last)];
        return;
    }
    std::fill(samples.begin(), samples.end(), 0.0);
    for (std::size_t i = 0; i < turns_.size(); ++i) {
        const StimulusLine& line = lines_[i];
        std::uint64_t next = frame;
        for (std::size_t filled = 0; filled < samples.size();) {
            const std::uint64_t offset = next % kGroup;
            const std::uint64_t phase = line.step * (next - offset);
            const double sine = line.amplitude * SineOfPhase(phase);
            const double cosine = line.amplitude * SineOfPhase(phase + kQuarterTurn);
            const std::uint64_t count = std::min<std::uint64_t>(kGroup - offset, samples.size() - filled);
            for (std::uint64_t k = offset; k < offset + count; ++k)
                samples[filled++] += sine * turns_[i][k].cosine + cosine * turns_[i][k].sine;
            next += count;
        }
    }
}

}  // namespace sonavex
