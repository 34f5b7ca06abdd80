#pragma once

#include <algorithm>
#include <atomic>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "support/alsa/LoopCardState.h"

namespace sonavex {

// The left channel that the card has played, full scale 1, up to its newest frame. The card keeps 5 s at
// 48000 Hz.
inline std::vector<double> PlayedBy(const LoopCardState& card) {
    const auto tagOf = [](std::uint64_t word) { return word >> 48U; };
    std::vector<std::uint64_t> words;
    for (const std::atomic<std::uint64_t>& frame : card.frames) words.push_back(frame.load());
    const std::uint64_t newestTag = tagOf(*std::max_element(words.begin(), words.end()));
    const auto older = std::find_if(words.begin(), words.end(),
                                    [&](std::uint64_t word) { return tagOf(word) != newestTag; });
    std::rotate(words.begin(), older, words.end());
    std::vector<double> samples;
    for (const std::uint64_t word : words) {
        const auto bits = static_cast<std::int32_t>(static_cast<std::uint32_t>(word) << 8U);
        samples.push_back(tagOf(word) + 1 < newestTag ? 0.0 : std::ldexp(bits, -31));
    }
    return samples;
}

// Where the sound ends: its last 12000 frames and the first frame of the silence that follows.
struct PlayedEnd {
    bool silent = false;     // the newest frame
    double loudest = 0;      // magnitude
    double largestStep = 0;  // between successive frames
};

// Dither of 24 bits counts as silence.
inline PlayedEnd EndOf(const std::vector<double>& played) {
    constexpr std::ptrdiff_t kFrames = 12000;
    const auto last =
        std::find_if(played.rbegin(), played.rend(), [](double sample) { return std::abs(sample) > 4e-7; });
    PlayedEnd end;
    end.silent = last != played.rbegin();
    if (!end.silent || played.rend() - last <= kFrames) return end;
    for (auto sample = last - 1; sample != last + kFrames; ++sample) {
        end.loudest = std::max(end.loudest, std::abs(*sample));
        end.largestStep = std::max(end.largestStep, std::abs(*sample - *(sample + 1)));
    }
    return end;
}

}  // namespace sonavex
