#include "support/Blocks.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <utility>

namespace sonavex {
namespace {

std::int16_t ToSample(double value) {
    return static_cast<std::int16_t>(std::nearbyint(std::clamp(value, -32768.0, 32767.0)));
}

// A hash of the number in the range -1 to 1. Neighbouring numbers have unrelated values.
double Scatter(std::uint64_t number) {
    number = (number ^ (number >> 30U)) * 0xBF58476D1CE4E5B9ULL;
    number = (number ^ (number >> 27U)) * 0x94D049BB133111EBULL;
    number ^= number >> 31U;
    return static_cast<double>(number >> 11U) * 0x1.0p-52 - 1.0;
}

}  // namespace

Block MakeBlock(const StereoSignal& signal, std::int64_t start) {
    Block block{};
    for (std::size_t i = 0; i < kTestBlockFrames; ++i) {
        const Frame frame = signal(start + static_cast<std::int64_t>(i));
        block[2 * i] = ToSample(frame.first);
        block[2 * i + 1] = ToSample(frame.second);
    }
    return block;
}

StereoSignal Sine(double rateHz, double frequencyHz, double peak, double phase) {
    return [=](std::int64_t frame) {
        const double value = peak * std::sin(phase + 2.0 * std::numbers::pi * frequencyHz *
                                                         static_cast<double>(frame) / rateHz);
        return Frame{value, value};
    };
}

StereoSignal Silence() {
    return [](std::int64_t) { return Frame{}; };
}

StereoSignal Noise(double peak, std::uint32_t seed) {
    return [=](std::int64_t frame) {
        const std::uint64_t number = (std::uint64_t{seed} << 40U) + 2 * static_cast<std::uint64_t>(frame) + 1;
        return Frame{peak * Scatter(number * 0x9E3779B97F4A7C15ULL),
                     peak * Scatter((number + 1) * 0x9E3779B97F4A7C15ULL)};
    };
}

StereoSignal Sum(StereoSignal a, StereoSignal b) {
    return [a = std::move(a), b = std::move(b)](std::int64_t frame) {
        const Frame left = a(frame);
        const Frame right = b(frame);
        return Frame{left.first + right.first, left.second + right.second};
    };
}

StereoSignal Pair(StereoSignal first, StereoSignal second) {
    return [first = std::move(first), second = std::move(second)](std::int64_t frame) {
        return Frame{first(frame).first, second(frame).second};
    };
}

}  // namespace sonavex
