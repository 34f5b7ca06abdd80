#pragma once

#include <array>
#include <cstdint>
#include <random>
#include <span>
#include <vector>

namespace sonavex {

// What stands between the simulated card's output and its input. Samples are in units of a 16-bit
// step (full scale 32768). With the defaults the device is a piece of wire: every sample comes back
// unchanged.
struct DeviceUnderTestModel {
    double gain = 1.0;

    // Harmonics of a sine whose peak at the device's input is referencePeak: element n - 2 is the
    // amplitude of harmonic n relative to the fundamental (n = 2, 3, ...). Made with Chebyshev
    // polynomials of the first kind, T_n(cos x) = cos(n x), so each order is exact and alone.
    std::vector<double> harmonicAmplitudes;
    double referencePeak = 8191.75;

    // Static curve: output = full scale x sum over n of polynomial[n] x (input / full scale)^n. Empty
    // for none.
    std::vector<double> polynomial;

    // Hard limit of both signs, in 16-bit steps; 0 for none.
    double clipAt = 0.0;

    double dcOffset = 0.0;  // 16-bit steps
    double noiseRms = 0.0;  // Gaussian, each channel its own, 16-bit steps
    std::uint32_t noiseSeed = 1;

    std::uint32_t delayFrames = 0;
    // How much faster than the playback clock the capture clock runs, in parts per million.
    double clockOffsetPpm = 0.0;
};

// The signal path of the simulated card, frame by frame. One thread at a time.
class DeviceUnderTest {
public:
    explicit DeviceUnderTest(DeviceUnderTestModel model);

    // Frames of playback that Process needs to make this many frames of capture.
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
    // Played frames already through the delay, oldest first; the interpolation looks at all of them.
    std::vector<double> history_;
    std::vector<std::int16_t> delayLine_;
    std::size_t delayAt_ = 0;
    double ratio_;        // playback frames per capture frame
    double phase_ = 0.0;  // 0 to 1: place between two remembered frames
    // Converted values of all samples, from the lowest; empty where noise or the clock comes between.
    std::vector<std::int16_t> table_;
};

}  // namespace sonavex
