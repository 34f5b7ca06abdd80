#include "platform/simulated/DeviceUnderTest.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <utility>

namespace sonavex {
namespace {

constexpr double kFullScale = 32768.0;
constexpr int kLowestSample = -32768;
constexpr int kSampleValues = 65536;
constexpr int kTableBits = 16;
constexpr std::size_t kTaps = 32;  // length of the fractional-delay interpolator; even

constexpr double kHalfWidth = kTaps / 2.0;

// Position of a tap in frames, relative to the left one of the two middle taps.
double Place(std::size_t tap) noexcept {
    return static_cast<double>(tap) - (kHalfWidth - 1.0);
}

struct Turn {
    double cosine;
    double sine;
};

std::array<Turn, kTaps> TurnsOfPlaces() {
    std::array<Turn, kTaps> turns{};
    for (std::size_t tap = 0; tap < kTaps; ++tap) {
        const double angle = std::numbers::pi * Place(tap) / kHalfWidth;
        turns[tap] = {std::cos(angle), std::sin(angle)};
    }
    return turns;
}

// Blackman-windowed sinc for the value at phase, 0 to 1, to the right of the left middle frame. With
// x = place - phase, |sin(pi x)| equals |sin(pi phase)| and only the sign alternates, and the window's cosine
// follows from those of place and phase by the addition theorem.
std::array<double, kTaps> InterpolatorTaps(double phase) noexcept {
    static const std::array<Turn, kTaps> turns = TurnsOfPlaces();
    const double sine = std::sin(std::numbers::pi * phase);
    const Turn back{std::cos(std::numbers::pi * phase / kHalfWidth),
                    std::sin(std::numbers::pi * phase / kHalfWidth)};
    std::array<double, kTaps> taps{};
    for (std::size_t tap = 0; tap < kTaps; ++tap) {
        const double x = Place(tap) - phase;
        const double sign = tap % 2 == 0 ? 1.0 : -1.0;
        const double sinc = x == 0.0 ? 1.0 : sign * sine / (std::numbers::pi * x);
        const double turn = turns[tap].cosine * back.cosine + turns[tap].sine * back.sine;
        taps[tap] = sinc * (0.42 + 0.5 * turn + 0.08 * (2.0 * turn * turn - 1.0));
    }
    return taps;
}

// In 16-bit steps.
template <class Sample>
double Value(Sample sample) noexcept {
    return sizeof(Sample) == sizeof(std::int16_t) ? sample : sample / 65536.0;
}

}  // namespace

std::int32_t Quantized(double value, int bits) noexcept {
    const double limit = std::ldexp(1.0, bits - 1);
    const double steps = std::clamp(std::ldexp(value, bits - kTableBits), -limit, limit - 1.0);
    return static_cast<std::int32_t>(std::llrint(steps) * (std::int64_t{1} << (32 - bits)));
}

DeviceUnderTest::DeviceUnderTest(DeviceUnderTestModel model)
    : model_(std::move(model)),
      random_(model_.noiseSeed),
      history_(2 * kTaps, 0.0),
      delayLine_(model_.delayFrames),
      ratio_(1.0 / (1.0 + model_.clockOffsetPpm * 1e-6)) {
    const bool random = model_.noiseRms > 0.0 || model_.dither;
    if (ratio_ == 1.0 && model_.bits == kTableBits && !random) FillTable();
}

void DeviceUnderTest::FillTable() {
    table_.reserve(kSampleValues);
    for (int sample = kLowestSample; sample < kLowestSample + kSampleValues; ++sample)
        table_.push_back(Quantized(Curve(sample), kTableBits));
}

std::size_t DeviceUnderTest::FramesNeeded(std::size_t captureFrames) const noexcept {
    if (ratio_ == 1.0) return captureFrames;
    double phase = phase_;
    std::size_t needed = 0;
    for (std::size_t i = 0; i < captureFrames; ++i)
        for (phase += ratio_; phase >= 1.0; phase -= 1.0) ++needed;
    return needed;
}

double DeviceUnderTest::Harmonics(double sample) const noexcept {
    // T_n by its recurrence T_n = 2 u T_(n-1) - T_(n-2).
    const double u = sample / model_.referencePeak;
    double before = 1.0;
    double current = u;
    double sum = u;
    for (const double amplitude : model_.harmonicAmplitudes) {
        const double next = 2.0 * u * current - before;
        sum += amplitude * next;
        before = current;
        current = next;
    }
    return sum * model_.referencePeak;
}

double DeviceUnderTest::Polynomial(double sample) const noexcept {
    const double x = sample / kFullScale;
    double sum = 0.0;
    for (auto coefficient = model_.polynomial.rbegin(); coefficient != model_.polynomial.rend();
         ++coefficient)
        sum = sum * x + *coefficient;
    return sum * kFullScale;
}

double DeviceUnderTest::Curve(double sample) const noexcept {
    double value = sample * model_.gain;
    if (!model_.harmonicAmplitudes.empty()) value = Harmonics(value);
    if (!model_.polynomial.empty()) value = Polynomial(value);
    if (model_.clipAt > 0.0) value = std::clamp(value, -model_.clipAt, model_.clipAt);
    return value + model_.dcOffset;
}

std::int32_t DeviceUnderTest::Convert(double sample) {
    if (!table_.empty()) {
        // Rounding can exceed the highest sample of 16 bits.
        const auto index = static_cast<std::size_t>(std::lrint(sample) - kLowestSample);
        return table_[std::min(index, table_.size() - 1)];
    }
    double value = Curve(sample);
    if (model_.noiseRms > 0.0) value += model_.noiseRms * normal_(random_);
    if (model_.dither) value += std::ldexp(uniform_(random_) + uniform_(random_), kTableBits - model_.bits);
    return Quantized(value, model_.bits);
}

DeviceUnderTest::FrameOfDoubles DeviceUnderTest::Delayed(FrameOfDoubles frame) noexcept {
    if (delayLine_.empty()) return frame;
    std::swap(frame, delayLine_[delayAt_]);
    delayAt_ = (delayAt_ + 1) % delayLine_.size();
    return frame;
}

void DeviceUnderTest::Remember(const FrameOfDoubles& frame) noexcept {
    std::move(history_.begin() + 2, history_.end(), history_.begin());
    std::copy(frame.begin(), frame.end(), history_.end() - 2);
}

DeviceUnderTest::FrameOfDoubles DeviceUnderTest::Interpolate() const noexcept {
    const std::array<double, kTaps> taps = InterpolatorTaps(phase_);
    FrameOfDoubles sums{};
    for (std::size_t tap = 0; tap < kTaps; ++tap)
        for (std::size_t channel = 0; channel < 2; ++channel)
            sums[channel] += history_[2 * tap + channel] * taps[tap];
    return sums;
}

template <class Sample>
void DeviceUnderTest::ProcessAs(std::span<const Sample> played, std::span<Sample> captured) {
    std::size_t used = 0;
    const auto nextFrame = [&] {
        used += 2;
        return Delayed({Value(played[used - 2]), Value(played[used - 1])});
    };
    for (std::size_t i = 0; i + 1 < captured.size(); i += 2) {
        FrameOfDoubles frame{};
        if (ratio_ == 1.0) {
            frame = nextFrame();
        } else {
            for (phase_ += ratio_; phase_ >= 1.0; phase_ -= 1.0) Remember(nextFrame());
            frame = Interpolate();
        }
        for (std::size_t channel = 0; channel < 2; ++channel)
            captured[i + channel] =
                static_cast<Sample>(Convert(frame[channel]) >> (32 - 8 * static_cast<int>(sizeof(Sample))));
    }
}

void DeviceUnderTest::Process(std::span<const std::int16_t> played, std::span<std::int16_t> captured) {
    ProcessAs(played, captured);
}

void DeviceUnderTest::Process(std::span<const std::int32_t> played, std::span<std::int32_t> captured) {
    ProcessAs(played, captured);
}

}  // namespace sonavex
