#include "platform/simulated/DeviceUnderTest.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <utility>

namespace sonavex {
namespace {

constexpr double kFullScale = 32768.0;
constexpr std::size_t kTaps = 32;  // of the fractional-delay interpolator; even

// Blackman-windowed sinc, x in frames from the centre.
double InterpolatorTap(double x) {
    const double halfWidth = kTaps / 2.0;
    if (std::fabs(x) >= halfWidth) return 0.0;
    const double angle = std::numbers::pi * x;
    const double sinc = x == 0.0 ? 1.0 : std::sin(angle) / angle;
    const double turn = std::numbers::pi * x / halfWidth;
    return sinc * (0.42 + 0.5 * std::cos(turn) + 0.08 * std::cos(2.0 * turn));
}

}  // namespace

DeviceUnderTest::DeviceUnderTest(DeviceUnderTestModel model)
    : model_(std::move(model)),
      random_(model_.noiseSeed),
      history_(2 * kTaps, 0.0),
      delayLine_(std::size_t{2} * model_.delayFrames, 0),
      ratio_(1.0 / (1.0 + model_.clockOffsetPpm * 1e-6)) {}

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

std::int16_t DeviceUnderTest::Convert(double sample) {
    double value = Curve(sample);
    if (model_.noiseRms > 0.0) value += model_.noiseRms * normal_(random_);
    return static_cast<std::int16_t>(std::lrint(std::clamp(value, -32768.0, 32767.0)));
}

void DeviceUnderTest::Remember(const std::int16_t* frame) noexcept {
    std::move(history_.begin() + 2, history_.end(), history_.begin());
    history_[2 * kTaps - 2] = frame[0];
    history_[2 * kTaps - 1] = frame[1];
}

double DeviceUnderTest::Interpolate(std::size_t channel) const noexcept {
    // The centre of the window lies between the two middle frames.
    double sum = 0.0;
    for (std::size_t tap = 0; tap < kTaps; ++tap) {
        const double distance = static_cast<double>(tap) - (kTaps / 2.0 - 1.0) - phase_;
        sum += history_[2 * tap + channel] * InterpolatorTap(distance);
    }
    return sum;
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
            captured[i] = Convert(frame[0]);
            captured[i + 1] = Convert(frame[1]);
            continue;
        }
        for (phase_ += ratio_; phase_ >= 1.0; phase_ -= 1.0) {
            takeFrame(frame);
            Remember(frame);
        }
        captured[i] = Convert(Interpolate(0));
        captured[i + 1] = Convert(Interpolate(1));
    }
}

}  // namespace sonavex
