#include "core/stimulus/SampleWord.h"

#include <algorithm>
#include <cmath>
#include <string>

#include "core/stimulus/DecimalText.h"
#include "core/stimulus/RandomWord.h"

namespace sonavex {
namespace {

constexpr int kFewestBits = 8;
constexpr int kLevelDecimals = 6;

double PeakDb(StimulusShape shape) {
    return IsNoise(shape) ? 20.0 * std::log10(kNoiseCrest / std::sqrt(2.0)) : 0.0;
}

}  // namespace

void CheckDither(const SampleWord& word) {
    if (!word.ditherBits) return;
    if (*word.ditherBits > word.bits)
        throw StimulusError("A dither of " + std::to_string(*word.ditherBits) +
                            " bits has no effect: the output takes " + std::to_string(word.bits) + " bits.");
    if (*word.ditherBits < kFewestBits)
        throw StimulusError("A dither of " + std::to_string(*word.ditherBits) +
                            " bits is not possible; it takes 8 bits or more.");
}

double LargestLevelDbfs(StimulusShape shape, const SampleWord& word) {
    const int bits = word.ditherBits.value_or(word.bits);
    return 20.0 * std::log10(1.0 - 2.0 / std::ldexp(1.0, bits - 1)) - PeakDb(shape);
}

void CheckLevel(StimulusShape shape, const SampleWord& word, double levelDbfs) {
    const double largest = LargestLevelDbfs(shape, word);
    if (levelDbfs >= kLowestLevelDbfs && levelDbfs <= largest) return;
    const double step = std::pow(10.0, kLevelDecimals);
    throw StimulusError("The level " + DecimalText(levelDbfs) + " dBFS is outside " +
                        DecimalText(kLowestLevelDbfs) + " to " +
                        DecimalText(std::floor(largest * step) / step, kLevelDecimals) + " dBFS.");
}

SampleRounder::SampleRounder(const SampleWord& word) noexcept
    : steps_(std::ldexp(1.0, word.bits - 1)),
      ditherStep_(word.ditherBits ? std::ldexp(1.0, word.bits - *word.ditherBits) : 0.0),
      shift_(32 - word.bits) {}

double SampleRounder::Dither(std::uint64_t frame, int channel) const noexcept {
    const std::uint64_t random = RandomWord(2 * frame + static_cast<unsigned>(channel));
    const auto first = static_cast<double>(random >> 32U);
    const auto second = static_cast<double>(random & 0xFFFFFFFFU);
    return std::ldexp(first - second, -32) * ditherStep_;
}

std::int32_t SampleRounder::Round(double sample, std::uint64_t frame, int channel) const noexcept {
    const double exact = sample * steps_ + (ditherStep_ > 0.0 ? Dither(frame, channel) : 0.0);
    const double rounded = std::clamp(std::nearbyint(exact), -steps_, steps_ - 1.0);
    return static_cast<std::int32_t>(static_cast<std::int64_t>(rounded) << shift_);
}

}  // namespace sonavex
