#pragma once

#include <array>
#include <cstdint>
#include <random>
#include <span>
#include <vector>

namespace sonavex {

// The device between the output and the input of the simulated card, and the card's converters. Samples are
// in units of a 16-bit step (full scale 32768). The default device is a wire: every sample comes back
// unchanged.
struct DeviceUnderTestModel {
    double gain = 1.0;

    // Harmonics of a sine whose peak at the device's input is referencePeak: element n - 2 is the
    // amplitude of harmonic n relative to the fundamental (n = 2, 3, ...). They are made by Chebyshev
    // polynomials of the first kind, T_n(cos x) = cos(n x), so each amplitude is exact and adds no other
    // harmonic.
    std::vector<double> harmonicAmplitudes;
    double referencePeak = 8191.75;

    // Static curve: output = full scale x sum over n of polynomial[n] x (input / full scale)^n. Empty
    // for no curve.
    std::vector<double> polynomial;

    // Hard limit of both signs, in 16-bit steps; 0 for no limit.
    double clipAt = 0.0;

    double dcOffset = 0.0;  // 16-bit steps
    double noiseRms = 0.0;  // Gaussian, independent for each channel, 16-bit steps
    std::uint32_t noiseSeed = 1;

    std::uint32_t delayFrames = 0;
    // Parts per million by which the capture clock is faster than the playback clock.
    double clockOffsetPpm = 0.0;

    // Bits of the card's converters, 8 to 24, or 32. The device itself computes in double.
    int bits = 16;
    // Adds triangular noise of two steps peak to peak before the input is rounded to its bits.
    bool dither = false;
};

// A sample in 16-bit steps, rounded half to even to these bits, limited to full scale and left-justified.
std::int32_t Quantized(double value, int bits) noexcept;

// The signal path of the simulated card, frame by frame. One thread at a time.
class DeviceUnderTest {
public:
    explicit DeviceUnderTest(DeviceUnderTestModel model);

    // The number of playback frames that Process needs for this many capture frames.
    std::size_t FramesNeeded(std::size_t captureFrames) const noexcept;

    // played: interleaved stereo, exactly FramesNeeded frames, of 16 bits or left-justified in 32. captured:
    // the same.
    void Process(std::span<const std::int16_t> played, std::span<std::int16_t> captured);
    void Process(std::span<const std::int32_t> played, std::span<std::int32_t> captured);

    int Bits() const noexcept { return model_.bits; }

private:
    using FrameOfDoubles = std::array<double, 2>;

    template <class Sample>
    void ProcessAs(std::span<const Sample> played, std::span<Sample> captured);
    double Curve(double sample) const noexcept;
    double Harmonics(double sample) const noexcept;
    double Polynomial(double sample) const noexcept;
    std::int32_t Convert(double sample);
    void FillTable();
    FrameOfDoubles Delayed(FrameOfDoubles frame) noexcept;
    void Remember(const FrameOfDoubles& frame) noexcept;
    // The value of each channel at phase_ between the two frames in the middle of the history.
    FrameOfDoubles Interpolate() const noexcept;

    DeviceUnderTestModel model_;
    std::mt19937 random_;
    std::normal_distribution<double> normal_;
    std::uniform_real_distribution<double> uniform_{-0.5, 0.5};
    // Played frames after the delay, oldest first. The interpolation uses all of them.
    std::vector<double> history_;
    std::vector<FrameOfDoubles> delayLine_;
    std::size_t delayAt_ = 0;
    double ratio_;        // playback frames per capture frame
    double phase_ = 0.0;  // 0 to 1: position between the two middle frames of history_
    // Output for every 16-bit input sample, from the lowest. Empty when noise, the clock offset or other bits
    // rule a table out.
    std::vector<std::int32_t> table_;
};

}  // namespace sonavex
