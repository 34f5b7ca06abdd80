#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <numbers>
#include <random>

#include "core/precise/PathBurst.h"

namespace sonavex {
namespace {

constexpr double kRates[] = {4000, 8000, 44100, 48000, 96000, 192000};

// A second, with the burst at this place.
std::vector<double> SecondWithBurst(double rateHz, std::size_t place, double gain) {
    std::vector<double> samples(static_cast<std::size_t>(rateHz));
    const std::vector<double> burst = PathBurst(rateHz);
    for (std::size_t i = 0; i < burst.size(); ++i) samples[place + i] = gain * burst[i];
    return samples;
}

void AddNoise(std::vector<double>& samples, double rms) {
    std::mt19937 random(1);
    std::normal_distribution<double> normal(0.0, rms);
    for (double& sample : samples) sample += normal(random);
}

void AddSine(std::vector<double>& samples, double rateHz, double hertz, double amplitude, std::size_t from) {
    for (std::size_t i = from; i < samples.size(); ++i)
        samples[i] += amplitude * std::sin(2.0 * std::numbers::pi * hertz * static_cast<double>(i) / rateHz);
}

TEST(PathBurstTest, IsFoundAtEveryRateAndLevel) {
    for (const double rateHz : kRates) {
        for (const double gain : {1.0, -1e-4}) {
            const auto place = static_cast<std::size_t>(0.4321 * rateHz);
            const auto found = FindPathBurst(SecondWithBurst(rateHz, place, gain), rateHz);
            ASSERT_TRUE(found) << rateHz;
            EXPECT_NEAR(static_cast<double>(*found), static_cast<double>(place), 0.001 * rateHz) << rateHz;
        }
    }
}

// A power below the burst's, DC, and the stimulus that follows it.
TEST(PathBurstTest, IsFoundInNoiseAndBeforeAStimulus) {
    constexpr double kRateHz = 48000;
    std::vector<double> samples = SecondWithBurst(kRateHz, 20000, 0.1);
    AddNoise(samples, 0.03);
    AddSine(samples, kRateHz, 1000.0, 0.1, 20000 + 1440 + 960);
    for (double& sample : samples) sample += 0.5;
    const auto found = FindPathBurst(samples, kRateHz);
    ASSERT_TRUE(found);
    EXPECT_NEAR(static_cast<double>(*found), 20000.0, 48.0);
}

// A first-order high-pass at 1 kHz turns the phase and tilts the spectrum.
TEST(PathBurstTest, IsFoundBehindAFilter) {
    constexpr double kRateHz = 48000;
    std::vector<double> samples = SecondWithBurst(kRateHz, 1000, 0.1);
    const double pole = std::exp(-2.0 * std::numbers::pi * 1000.0 / kRateHz);
    double low = 0.0;
    for (double& sample : samples) {
        low = pole * low + (1.0 - pole) * sample;
        sample -= low;
    }
    const auto found = FindPathBurst(samples, kRateHz);
    ASSERT_TRUE(found);
    EXPECT_NEAR(static_cast<double>(*found), 1000.0, 96.0);
}

TEST(PathBurstTest, OtherSignalsAreNone) {
    for (const double rateHz : kRates) {
        std::vector<double> samples(static_cast<std::size_t>(rateHz));
        EXPECT_FALSE(FindPathBurst(samples, rateHz));
        AddSine(samples, rateHz, 1000.0, 0.5, 0);
        EXPECT_FALSE(FindPathBurst(samples, rateHz)) << rateHz;
        std::fill(samples.begin(), samples.end(), 0.0);
        AddSine(samples, rateHz, 700.0, 0.5, samples.size() / 2);
        EXPECT_FALSE(FindPathBurst(samples, rateHz)) << rateHz;
        std::fill(samples.begin(), samples.end(), 0.25);
        AddNoise(samples, 0.1);
        EXPECT_FALSE(FindPathBurst(samples, rateHz)) << rateHz;
        EXPECT_FALSE(FindPathBurst(std::span(samples).first(10), rateHz));
    }
}

TEST(PathBurstTest, StartsAndEndsSmoothly) {
    const std::vector<double> burst = PathBurst(48000);
    EXPECT_EQ(burst.size(), 1440U);
    EXPECT_LT(std::abs(burst.front()), 1e-5);
    EXPECT_LT(std::abs(burst.back()), 1e-5);
    const auto [lowest, highest] = std::minmax_element(burst.begin(), burst.end());
    EXPECT_LE(*highest, 1.0);
    EXPECT_GT(*highest, 0.9);
    EXPECT_GE(*lowest, -1.0);
}

}  // namespace
}  // namespace sonavex
