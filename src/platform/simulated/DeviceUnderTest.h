#pragma once

#include <array>
#include <cstdint>
#include <random>
#include <span>
#include <vector>

namespace sonavex {

// The device between the output and the input of the simulated card. Samples are in units of a 16-bit step
// (full scale 32768). The default device is a wire: every sample comes back unchanged.
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
};

// The signal path of the simulated card, frame by frame. One thread at a time.
class DeviceUnderTest {
public:
    explicit DeviceUnderTest(DeviceUnderTestModel model);

    // The number of playback frames that Process needs for this many capture frames.
    std::size_t FramesNeeded(std::size_t captureFrames) const noexcept;

    // played: interleaved stereo, exactly FramesNeeded frames. captured: interleaved stereo.
    void Process(std::span<const std::int16_t> played, std::span<std::int16_t> captured);

private:
    double Curve(double sample) const noexcept;
    double Harmonics(double sample) const noexcept;
    double Polynomial(double sample) const noexcept;
    static std::int16_t Quantize(double value) noexcept;
    std::int16_t Convert(double sample);
    void FillTable();
    void Remember(const std::int16_t* frame) noexcept;
    // The value of each channel at phase_ between the two frames in the middle of the history.
    std::array<double, 2> Interpolate() const noexcept;

    DeviceUnderTestModel model_;
    std::mt19937 random_;
    std::normal_distribution<double> normal_;
    // Played frames after the delay, oldest first. The interpolation uses all of them.
    std::vector<double> history_;
    std::vector<std::int16_t> delayLine_;
    std::size_t delayAt_ = 0;
    double ratio_;        // playback frames per capture frame
    double phase_ = 0.0;  // 0 to 1: position between the two middle frames of history_
    // Output for every input sample, from the lowest. Empty when noise or the clock offset rules a table out.
    std::vector<std::int16_t> table_;
};

}  // namespace sonavex
