#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <span>
#include <utility>
#include <vector>

namespace sonavex {

// A line of a stimulus: amplitude sin(2 pi f n) with n = 0 at the first frame.
struct StimulusLine {
    std::uint64_t step = 0;  // frequency in 2^-64 turns per sample
    double hertz = 0;
    double amplitude = 0;  // peak, full scale 1
};

// The samples of a stimulus as a function of the frame alone: the phase is a multiple of whole numbers, so
// that the frequency does not drift, and a frame can be computed again.
class StimulusSignal {
public:
    // Silence.
    StimulusSignal() = default;
    // The sum of the lines.
    explicit StimulusSignal(std::vector<StimulusLine> lines);
    // A period whose length is a power of two. The lines are what it was made of.
    StimulusSignal(std::vector<StimulusLine> lines, std::vector<double> period)
        : lines_(std::move(lines)), period_(std::make_shared<const std::vector<double>>(std::move(period))) {}

    // The samples of the frames from `frame` on, full scale 1. Does not allocate.
    void Fill(std::uint64_t frame, std::span<double> samples) const noexcept;

    // The tones as played. The fundamental alone for square, triangle and sawtooth; empty for noise.
    const std::vector<StimulusLine>& Lines() const noexcept { return lines_; }

private:
    // A group of frames begins at a multiple of its length. The samples in it are the one at its begin,
    // turned by the angles of the line: a sine and a cosine for each group, not for each frame.
    static constexpr std::uint64_t kGroup = 32;
    struct Turn {
        double sine;
        double cosine;
    };
    using Turns = std::array<Turn, kGroup>;

    static Turns TurnsOf(const StimulusLine& line) noexcept;

    std::vector<StimulusLine> lines_;
    std::vector<Turns> turns_;                           // of each line, if there is no period
    std::shared_ptr<const std::vector<double>> period_;  // null: computed from the lines
};

// sin(2 pi phase 2^-64), precise to the last bit but one at every phase.
double SineOfPhase(std::uint64_t phase) noexcept;

}  // namespace sonavex
