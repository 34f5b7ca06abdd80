#pragma once

#include <array>
#include <cstdint>
#include <functional>

namespace sonavex {

inline constexpr std::size_t kTestBlockFrames = 2048;

// One block of interleaved stereo.
using Block = std::array<std::int16_t, 2 * kTestBlockFrames>;

// One frame in 16-bit steps, before rounding: first and second sample.
struct Frame {
    double first = 0.0;
    double second = 0.0;
};
// A signal as a function of the frame number.
using StereoSignal = std::function<Frame(std::int64_t)>;

// Frames start to start + 2047, rounded and limited to 16 bit.
Block MakeBlock(const StereoSignal& signal, std::int64_t start);

// The same sine in both samples; phase in radians.
StereoSignal Sine(double rateHz, double frequencyHz, double peak, double phase = 0.0);
StereoSignal Silence();
// Uniform noise from -peak to peak, independent per sample and determined by the frame number.
StereoSignal Noise(double peak, std::uint32_t seed);
StereoSignal Sum(StereoSignal a, StereoSignal b);
// The first sample from one signal, the second from another.
StereoSignal Pair(StereoSignal first, StereoSignal second);

}  // namespace sonavex
