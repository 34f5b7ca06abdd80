#pragma once

#include <cstdint>
#include <optional>

#include "core/stimulus/Stimulus.h"

namespace sonavex {

// Which channels play a stimulus. The other one is silent.
enum class StimulusSide { kLeft, kRight, kBoth };

// The words that a stimulus is rounded to.
struct SampleWord {
    int bits = 24;  // 8 to 32: bits that the output takes

    // Dither of triangular density, one step of a word of this many bits to each side. Empty: no dither.
    std::optional<int> ditherBits = 24;
};

// Dither of the same width as the output.
inline SampleWord DitheredWord(int bits) {
    return {bits, bits};
}

// StimulusError for a dither that is wider than the output or has fewer than 8 bits.
void CheckDither(const SampleWord& word);

// Crest factor of noise at most: 12 dB.
inline constexpr double kNoiseCrest = 3.981071705534973;

// The level of a stimulus is that of the sine with the same peak; for noise it is its rms times sqrt(2). At
// the largest level peak, dither and rounding stay within the words: 20 lg(1 - 2 / 2^(bits - 1)) dBFS with
// the bits of the dither, without dither those of the output.
double LargestLevelDbfs(StimulusShape shape, const SampleWord& word);
inline constexpr double kLowestLevelDbfs = -200.0;
// StimulusError for a level above the largest or below the lowest.
void CheckLevel(StimulusShape shape, const SampleWord& word, double levelDbfs);

// Rounds samples to words. The dither depends on frame and channel alone, so that a frame can be computed
// again. Frames and channels have independent dithers.
class SampleRounder {
public:
    explicit SampleRounder(const SampleWord& word) noexcept;

    // sample: full scale 1. The result is left-justified; the bits below the word are 0. Out of range: the
    // nearest word.
    std::int32_t Round(double sample, std::uint64_t frame, int channel) const noexcept;

private:
    double Dither(std::uint64_t frame, int channel) const noexcept;

    double steps_;       // of the output per full scale
    double ditherStep_;  // in steps of the output; 0: no dither
    int shift_;
};

}  // namespace sonavex
