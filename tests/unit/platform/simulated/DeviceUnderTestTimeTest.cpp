#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <complex>
#include <cstdint>
#include <span>
#include <vector>

#include "platform/simulated/DeviceUnderTest.h"
#include "support/Tones.h"

namespace sonavex {
namespace {

using Samples = std::vector<std::int16_t>;

// Captures in periods of 100 frames, feeding exactly what the device requests.
Samples Capture(DeviceUnderTest& device, const Samples& played, std::size_t frames,
                std::size_t* used = nullptr) {
    Samples captured(2 * frames);
    std::size_t at = 0;
    for (std::size_t done = 0; done < frames;) {
        const std::size_t period = std::min<std::size_t>(100, frames - done);
        const std::size_t needed = device.FramesNeeded(period);
        device.Process(std::span(played).subspan(2 * at, 2 * needed),
                       std::span(captured).subspan(2 * done, 2 * period));
        at += needed;
        done += period;
    }
    if (used != nullptr) *used = at;
    return captured;
}

Samples Noise(double rms, std::uint32_t seed, std::size_t frames) {
    DeviceUnderTestModel model;
    model.noiseRms = rms;
    model.noiseSeed = seed;
    DeviceUnderTest device(model);
    return Capture(device, Samples(2 * frames, 0), frames);
}

TEST(DeviceUnderTestNoise, HasItsRmsAndNoMean) {
    constexpr std::size_t kFrames = 100000;
    const Samples noise = Noise(100.0, 1, kFrames);
    for (std::size_t channel = 0; channel < 2; ++channel) {
        double sum = 0.0;
        double squares = 0.0;
        for (std::size_t n = 0; n < kFrames; ++n) {
            const double sample = noise[2 * n + channel];
            sum += sample;
            squares += sample * sample;
        }
        EXPECT_NEAR(std::sqrt(squares / kFrames), 100.0, 1.0);
        EXPECT_NEAR(sum / kFrames, 0.0, 1.5);
    }
}

TEST(DeviceUnderTestNoise, IsIndependentOnTheTwoChannels) {
    constexpr std::size_t kFrames = 100000;
    const Samples noise = Noise(100.0, 1, kFrames);
    double product = 0.0;
    for (std::size_t n = 0; n < kFrames; ++n) product += 1.0 * noise[2 * n] * noise[2 * n + 1];
    EXPECT_NEAR(product / kFrames / 10000.0, 0.0, 0.02);
}

TEST(DeviceUnderTestNoise, RepeatsWithItsSeed) {
    EXPECT_EQ(Noise(50.0, 7, 1000), Noise(50.0, 7, 1000));
    EXPECT_NE(Noise(50.0, 7, 1000), Noise(50.0, 8, 1000));
}

TEST(DeviceUnderTestDelay, IsExactInFrames) {
    for (const std::uint32_t delay : {1U, 7U, 99U, 100U, 101U, 350U}) {
        DeviceUnderTestModel model;
        model.delayFrames = delay;
        DeviceUnderTest device(model);
        Samples played;
        for (std::int16_t n = 1; n <= 1000; ++n)
            played.insert(played.end(), {n, static_cast<std::int16_t>(-n)});
        const Samples captured = Capture(device, played, 1000);
        for (std::size_t n = 0; n < 1000; ++n) {
            const auto expected = static_cast<std::int16_t>(n < delay ? 0 : n - delay + 1);
            ASSERT_EQ(captured[2 * n], expected) << "delay " << delay;
            ASSERT_EQ(captured[2 * n + 1], -expected) << "delay " << delay;
        }
    }
}

constexpr std::size_t kBlock = 4096;
constexpr double kCycles = 100.0;  // cycles of the tone per block

Samples CaptureToneWithOffset(double ppm, std::size_t frames, std::size_t* used) {
    DeviceUnderTestModel model;
    model.clockOffsetPpm = ppm;
    DeviceUnderTest device(model);
    return Capture(device, StereoSine(20000.0, kCycles, kBlock, 2 * frames), frames, used);
}

TEST(DeviceUnderTestClock, AFasterCaptureClockLowersTheFrequency) {
    constexpr std::size_t kBlocks = 10;
    for (const double ppm : {100.0, -100.0, 37.5}) {
        std::size_t used = 0;
        const Samples captured = CaptureToneWithOffset(ppm, kBlocks * kBlock, &used);
        // The tone's phase drifts between blocks. The first block contains the start and is skipped.
        const auto line = static_cast<std::size_t>(kCycles);
        const auto first = SpectralLine(captured.data() + 2 * kBlock, kBlock, line);
        const auto last = SpectralLine(captured.data() + 2 * (kBlocks - 1) * kBlock, kBlock, line);
        const double cyclesPerFrame = kCycles / kBlock;
        const double creep = std::arg(last / first) / (2.0 * std::numbers::pi * (kBlocks - 2) * kBlock);
        EXPECT_NEAR(creep / cyclesPerFrame * 1e6, -ppm, 1.0);
    }
}

TEST(DeviceUnderTestClock, FramesNeededAddUpToTheRatioOfTheClocks) {
    constexpr std::size_t kFrames = 40000;
    for (const double ppm : {100.0, -100.0, 1000.0, -50000.0, 50000.0}) {
        std::size_t used = 0;
        CaptureToneWithOffset(ppm, kFrames, &used);
        EXPECT_NEAR(static_cast<double>(used), kFrames / (1.0 + ppm * 1e-6), 1.0) << ppm;
    }
}

TEST(DeviceUnderTestClock, FramesNeededDependsOnWhatWentBefore) {
    DeviceUnderTestModel model;
    model.clockOffsetPpm = 250000.0;  // 4 frames of playback for 5 of capture
    DeviceUnderTest device(model);
    EXPECT_EQ(device.FramesNeeded(0), 0U);
    Samples captured(2);
    std::vector<std::size_t> needed;
    for (int n = 0; n < 10; ++n) {
        needed.push_back(device.FramesNeeded(1));
        device.Process(Samples(2 * needed.back()), captured);
    }
    std::size_t sum = 0;
    for (const std::size_t one : needed) sum += one;
    EXPECT_NEAR(static_cast<double>(sum), 8.0, 1.0);
    EXPECT_EQ(std::count(needed.begin(), needed.end(), 0U), static_cast<std::ptrdiff_t>(10 - sum));
}

TEST(DeviceUnderTestClock, InterpolationKeepsTheToneClean) {
    std::size_t used = 0;
    const double ppm = 100.0;
    constexpr double kRatio = 1.0 / (1.0 + 100e-6);
    const Samples captured = CaptureToneWithOffset(ppm, 10 * kBlock, &used);
    // Least-squares fit of the tone at its captured frequency; the residue is the interpolator's error.
    const double turn = 2.0 * std::numbers::pi * kCycles / kBlock * kRatio;
    std::complex<double> fit = 0.0;
    const std::size_t from = kBlock;
    const std::size_t count = 9 * kBlock;
    for (std::size_t n = 0; n < count; ++n)
        fit += std::polar<double>(captured[2 * (from + n)], -turn * static_cast<double>(n)) * 2.0 /
               double(count);
    double residue = 0.0;
    for (std::size_t n = 0; n < count; ++n) {
        const double model = std::real(fit * std::polar(1.0, turn * static_cast<double>(n)));
        residue += std::pow(captured[2 * (from + n)] - model, 2.0);
    }
    EXPECT_NEAR(std::abs(fit), 20000.0, 20.0);
    EXPECT_LT(10.0 * std::log10(residue / count / (20000.0 * 20000.0 / 2.0)), -70.0);
}

TEST(DeviceUnderTestClock, DelayAddsToTheOffset) {
    DeviceUnderTestModel model;
    model.clockOffsetPpm = -10.0;
    DeviceUnderTest undelayed(model);
    model.delayFrames = 64;
    DeviceUnderTest delayed(model);
    const Samples played = StereoSine(20000.0, kCycles, kBlock, 2000);
    const Samples early = Capture(undelayed, played, 1000);
    const Samples late = Capture(delayed, played, 1000);
    for (std::size_t n = 100; n < 900; ++n) ASSERT_NEAR(late[2 * (n + 64)], early[2 * n], 25.0) << n;
}

}  // namespace
}  // namespace sonavex
