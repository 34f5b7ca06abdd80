#pragma once

#include <cstddef>
#include <cstdint>

namespace sonavex {

// Length of a block, the unit of capture, analysis and playback.
inline constexpr std::int32_t kBlockFrames = 2048;
inline constexpr std::size_t kBlockSamples = 2 * kBlockFrames;  // interleaved stereo

}  // namespace sonavex
