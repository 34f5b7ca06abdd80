#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <numbers>
#include <random>
#include <vector>

#include "core/analyzer/FindTone.h"
#include "core/analyzer/NoiseSpectrum.h"
#include "core/analyzer/Spurs.h"
#include "unit/analyzer/Signals.h"

namespace sonavex {
namespace {

constexpr std::size_t kNoiseLength = 4096;
constexpr std::size_t kBins = kNoiseLength / 2 + 1;

// Bins of 1 Hz.
const RecordPlan& OneHertzPlan() {
    static const RecordPlan plan(kNoiseLength, kNoiseLength);
    return plan;
}

std::vector<double> Flat(double power = 1.0) {
    return std::vector<double>(kBins, power);
}

TEST(NoiseSpectrum, BinsAtTheEndsOfTheBandCountByTheirShare) {
    const NoiseSpectrum noise(OneHertzPlan(), Flat(), {}, {});
    EXPECT_NEAR(noise.InBand({100.2, 200.9}).mean, 100.7, 1e-9);
    EXPECT_NEAR(noise.InBand({100.6, 101.2}).mean, 0.6, 1e-9);
    EXPECT_NEAR(noise.InBand({100.1, 100.3}).mean, 0.2, 1e-9);
    EXPECT_NEAR(noise.InBand({0.0, 2048.0}).mean, 2048.0, 1e-9);
    EXPECT_EQ(noise.InBand({3000.0, 4000.0}).mean, 0.0);
}

TEST(NoiseSpectrum, GainsWeighEachBin) {
    const NoiseSpectrum noise(OneHertzPlan(), Flat(), {}, {});
    std::vector<double> gains(kBins);
    for (std::size_t bin = 0; bin < kBins; ++bin) gains[bin] = static_cast<double>(bin);
    EXPECT_NEAR(noise.InBand({9.5, 12.5}, gains).mean, 10.0 + 11.0 + 12.0, 1e-9);
}

TEST(NoiseSpectrum, TheNeighboursReplaceTheSkirtOfATone) {
    std::vector<double> power = Flat(std::numbers::ln2);  // a density of 1
    for (std::size_t bin = 1; bin < kBins; ++bin)
        if (std::abs(static_cast<double>(bin) - 500.3) <= kGuardBins) power[bin] = 1e6;
    const NoiseSpectrum noise(OneHertzPlan(), power, {500.3}, {500.3});
    EXPECT_NEAR(noise.DensityAt(500.3), 1.0, 1e-9);
    EXPECT_NEAR(noise.InBand({100.5, 1000.5}).mean, 884.0 * std::numbers::ln2 + 16.0, 1e-9);
    EXPECT_NEAR(noise.Skirt(500.3).mean, 16e6, 1.0);
}

TEST(NoiseSpectrum, WhatAFitSwallowedIsAddedInTheBand) {
    const double swallowed = OneHertzPlan().Window().SwallowedBins();
    const NoiseSpectrum noise(OneHertzPlan(), Flat(std::numbers::ln2), {500.0, 700.0, 1500.0}, {500.0});
    EXPECT_NEAR(noise.InBand({600.5, 1000.5}).mean, 400.0 * std::numbers::ln2 + swallowed, 1e-9);
}

TEST(NoiseSpectrum, TheDensityIgnoresEmptiedBinsAndLines) {
    std::vector<double> power = Flat(std::numbers::ln2);
    std::vector<double> lines;
    for (double line = 8.0; line < 2000.0; line += 8.0) {
        lines.push_back(line);
        for (int away = -2; away <= 2; ++away) power[static_cast<std::size_t>(line + away)] = 1e-9;
    }
    power[531] = 1e9;
    const NoiseSpectrum noise(OneHertzPlan(), power, lines, {});
    EXPECT_NEAR(noise.DensityAt(500.0), 1.0, 1e-9);
}

TEST(NoiseSpectrum, TheMedianOfAveragesIsCloserToTheirMean) {
    for (const std::size_t records : {1, 2, 5, 20}) {
        std::vector<double> power(kBins);
        std::mt19937_64 random(3);
        std::exponential_distribution<double> noise(1.0);
        for (double& value : power)
            for (std::size_t i = 0; i < records; ++i) value += noise(random) / static_cast<double>(records);
        const NoiseSpectrum spectrum(OneHertzPlan(), power, {}, {}, static_cast<double>(records));
        double mean = 0.0;
        for (double position = 100.0; position < 1900.0; position += 10.0)
            mean += spectrum.DensityAt(position) / 180.0;
        EXPECT_NEAR(mean, 1.0, 0.03) << records;
    }
}

TEST(Spurs, AreLocatedBetweenBinsWithTheirAmplitude) {
    for (const double offset : {-0.5, -0.31, 0.0, 0.27, 0.49}) {
        signals::Samples x(kNoiseLength);
        signals::AddSine(x, signals::ExactFrequency(600.0 + offset, kNoiseLength), 0.01);
        signals::AddWhiteNoise(x, 1e-7, 1);
        const std::vector<SpurLine> spurs =
            FindSpurs(NoiseSpectrum(OneHertzPlan(), OneHertzPlan().PowerSpectrum(x), {}, {}));
        ASSERT_EQ(spurs.size(), 1U) << offset;
        EXPECT_NEAR(spurs[0].frequencyHz, 600.0 + offset, 1e-4);
        EXPECT_NEAR(spurs[0].amplitude, 0.01, 1e-6);
    }
}

TEST(Spurs, NoiseHasNone) {
    for (std::uint32_t seed = 0; seed < 20; ++seed) {
        signals::Samples x(kNoiseLength);
        signals::AddWhiteNoise(x, 0.1, seed);
        EXPECT_TRUE(
            FindSpurs(NoiseSpectrum(OneHertzPlan(), OneHertzPlan().PowerSpectrum(x), {}, {})).empty());
    }
}

TEST(StrongestPeak, TheFlankOfALineOutsideTheRangeIsNoPeak) {
    signals::Samples x(kNoiseLength);
    signals::AddSine(x, signals::ExactFrequency(600.2, kNoiseLength), 0.5);
    const std::vector<double> power = OneHertzPlan().PowerSpectrum(x);
    EXPECT_NEAR(StrongestPeak(power, {590.0, 610.0}).value(), 600.2, 0.01);
    EXPECT_FALSE(StrongestPeak(power, {601.0, 604.0}));
    EXPECT_FALSE(StrongestPeak(power, {596.0, 599.0}));
    EXPECT_FALSE(StrongestPeak(Flat(0.0), {1.0, 2048.0}));
}

}  // namespace
}  // namespace sonavex
