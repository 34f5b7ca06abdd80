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

}  // namespace

DeviceUnderTest::DeviceUnderTest(DeviceUnderTestModel model)
    : model_(std::move(model)),
      random_(model_.noiseSeed),
      history_(2 * kTaps, 0.0),
      delayLine_(std::size_t{2} * model_.delayFrames, 0),
      ratio_(1.0 / (1.0 + model_.clockOffsetPpm * 1e-6)) {
    if (ratio_ == 1.0 && !(model_.noiseRms > 0.0)) FillTable();
}

void DeviceUnderTest::FillTable() {
    table_.reserve(kSampleValues);
    for (int sample = kLowestSample; sample < kLowestSample + kSampleValues; ++sample)
        table_.push_back(Quantize(Curve(sample)));
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

std::int16_t DeviceUnderTest::Quantize(double value) noexcept {
    return static_cast<std::int16_t>(std::lrint(std::clamp(value, -32768.0, 32767.0)));
}

std::int16_t DeviceUnderTest::Convert(double sample) {
    double value = Curve(sample);
    if (model_.noiseRms > 0.0) value += model_.noiseRms * normal_(random_);
    return Quantize(value);
}

void DeviceUnderTest::Remember(const std::int16_t* frame) noexcept {
    std::move(history_.begin() + 2, history_.end(), history_.begin());
    history_[2 * kTaps - 2] = frame[0];
    history_[2 * kTaps - 1] = frame[1];
}

std::array<double, 2> DeviceUnderTest::Interpolate() const noexcept {
    const std::array<double, kTaps> taps = InterpolatorTaps(phase_);
    std::array<double, 2> sums{};
    for (std::size_t tap = 0; tap < kTaps; ++tap)
        for (std::size_t channel = 0; channel < 2; ++channel)
            sums[channel] += history_[2 * tap + channel] * taps[tap];
    return sums;
}

void DeviceUnderTest::Process(std::span<const std::int16_t> played, std::span<std::int16_t> captured) {
    std::size_t used = 0;
    const auto takeFrame = [&](std::int16_t* frame) {
        frame[0] = played[used];
        frame[1] = played[used + 1];
        used += 2;
        if (delayLine_.empty()) return;
        std::swap(frame[0], delayLine_[delayAt_]);
        std::swap(frame[1], delayLine_[delayAt_ + 1]);
        delayAt_ = (delayAt_ + 2) % delayLine_.size();
    };
    std::int16_t frame[2];
    for (std::size_t i = 0; i + 1 < captured.size(); i += 2) {
        if (ratio_ == 1.0) {
            takeFrame(frame);
            for (std::size_t channel = 0; channel < 2; ++channel)
                captured[i + channel] =
                    table_.empty() ? Convert(frame[channel])
                                   : table_[static_cast<std::size_t>(frame[channel] - kLowestSample)];
            continue;
        }
        for (phase_ += ratio_; phase_ >= 1.0; phase_ -= 1.0) {
            takeFrame(frame);
            Remember(frame);
        }
        const std::array<double, 2> values = Interpolate();
        captured[i] = Convert(values[0]);
        captured[i + 1] = Convert(values[1]);
    }
}

}  // namespace sonavex
