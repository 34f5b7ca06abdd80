#pragma once

#include <cstddef>
#include <cstdint>

namespace sonavex {

// A block of sound: what is captured, analysed and played at once.
inline constexpr std::int32_t kBlockFrames = 2048;
inline constexpr std::size_t kBlockSamples = 2 * kBlockFrames;  // interleaved stereo

}  // namespace sonavex
