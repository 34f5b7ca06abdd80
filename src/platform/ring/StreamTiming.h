#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "core/support/BlockSize.h"

// Latency limits of the adapters. The stream engine works on blocks of 2048 frames and keeps its cursors
// three blocks apart.
namespace sonavex::stream_timing {

// The longest output delay that the engine's distance between the cursors allows for.
inline constexpr std::size_t kMostDelayFrames = 3 * std::size_t{kBlockFrames};

constexpr std::uint32_t FramesOf(std::uint32_t rateHz, std::uint32_t milliseconds) noexcept {
    return static_cast<std::uint32_t>(std::uint64_t{rateHz} * milliseconds / 1000);
}

// Up to this rate three blocks last longer than a busy moment of the machine. Above it, streams are requested
// in milliseconds alone.
inline constexpr std::uint32_t kHighestBlockRateHz = 48000;

// Frames to keep in the device's playback buffer: enough to outlast a busy moment of the machine. At the
// indexed rates they leave the delay far below three blocks even when a server adds its own.
constexpr std::uint32_t PlaybackFrames(std::uint32_t rateHz) noexcept {
    if (rateHz > kHighestBlockRateHz) return FramesOf(rateHz, 80);
    return std::max(std::min(FramesOf(rateHz, 80), std::uint32_t{kBlockFrames * 3 / 2}), 16U);
}

// Frames that the device delivers at a time. Few compared to a block, so that the end of a block is
// noticed soon after it was captured. Not fewer, because PipeWire runs its whole graph at the next lower
// power of two.
constexpr std::uint32_t CaptureFrames(std::uint32_t rateHz) noexcept {
    if (rateHz > kHighestBlockRateHz) return FramesOf(rateHz, 10);
    return std::clamp(FramesOf(rateHz, 12), 16U, std::uint32_t{kBlockFrames / 4});
}

}  // namespace sonavex::stream_timing
