#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>

#include "core/plot/TraceColumns.h"

namespace sonavex {
namespace {

const PlotRange kWholePlot{1.0, std::log10(24000.0)};
constexpr double kNoisePower = 1e-14;  // -140 dB

// Noise as the mean of `records` spectra, 65536 points at 48 kHz.
SpectrumTrace NoiseTrace(double records, unsigned seed = 1) {
    SpectrumTrace trace{"", std::vector<float>(32769), 48000.0 / 65536, records};
    std::mt19937 random(seed);
    std::gamma_distribution<double> power(records, kNoisePower / records);
    for (float& bin : trace.power) bin = static_cast<float>(power(random));
    return trace;
}

std::size_t ColumnAt(double hertz, std::size_t columns) {
    return static_cast<std::size_t>(kWholePlot.FractionOf(std::log10(hertz)) * static_cast<double>(columns));
}

// For whole shapes the gamma distribution is a sum: Q(n, y) = exp(-y) sum y^k / k!, k < n.
double UpperPartOfSum(int shape, double y) {
    double term = 1;
    double sum = 0;
    for (int k = 0; k < shape; ++k, term *= y / k) sum += term;
    return std::exp(-y) * sum;
}

TEST(TraceColumns, NoiseExceedsTheHeightOncePerMillionBins) {
    EXPECT_NEAR(OnceInAMillionDb(1), 10 * std::log10(std::log(1e6)), 1e-6);
    for (const int records : {2, 3, 8, 100}) {
        const double ratio = std::pow(10.0, OnceInAMillionDb(records) / 10);
        EXPECT_NEAR(UpperPartOfSum(records, records * ratio), 1e-6, 1e-9) << records;
    }
}

TEST(TraceColumns, TheLineOfNoiseIsItsMeanPower) {
    const auto columns = TraceColumns(NoiseTrace(1), kWholePlot, 520);
    double sum = 0;
    for (std::size_t i = 420; i < 520; ++i) {
        EXPECT_NEAR(columns[i].mean, -140, 2.0) << i;
        EXPECT_LT(columns[i].low, columns[i].mean - 10) << i;
        EXPECT_GT(columns[i].high, columns[i].mean + 5) << i;
        sum += columns[i].mean;
    }
    EXPECT_NEAR(sum / 100, -140, 0.1);
}

TEST(TraceColumns, NoiseAloneStaysATint) {
    for (const double records : {1.0, 2.0, 8.0})
        for (const unsigned seed : {1U, 2U, 3U, 4U, 5U}) {
            const auto columns = TraceColumns(NoiseTrace(records, seed), kWholePlot, 1040);
            EXPECT_LE(
                std::count_if(columns.begin(), columns.end(), [](const auto& c) { return c.outstanding; }), 1)
                << records << " records, seed " << seed;
        }
}

TEST(TraceColumns, ABinAboveTheNoiseIsDrawnToItsFullHeight) {
    for (const double hertz : {1000.0, 3000.0, 15000.0}) {
        SpectrumTrace trace = NoiseTrace(1);
        const auto set = [&](double decibels) {
            const std::size_t bin = NearestBin(trace, hertz);
            trace.power[bin] = static_cast<float>(std::pow(10.0, decibels / 10));
            return TraceColumns(trace, kWholePlot,
                                520)[ColumnAt(static_cast<double>(bin) * trace.binHz, 520)];
        };
        EXPECT_NEAR(set(-126).Line(), -126, 1e-4) << hertz;
        EXPECT_FALSE(set(-131).outstanding) << hertz;
        EXPECT_NEAR(set(-20).Line(), -20, 1e-4) << hertz;
    }
}

TEST(TraceColumns, AWideLineIsDrawnToItsFullHeight) {
    SpectrumTrace trace = NoiseTrace(8);
    const std::size_t bin = NearestBin(trace, 250.0);
    for (std::size_t i = bin - 6; i <= bin + 6; ++i) trace.power[i] = 1e-6F;
    trace.power[bin] = 1e-4F;
    const auto columns = TraceColumns(trace, kWholePlot, 520);
    EXPECT_NEAR(columns[ColumnAt(static_cast<double>(bin) * trace.binHz, 520)].Line(), -40, 1e-4);
}

TEST(TraceColumns, BinsWiderThanAColumnAreJoined) {
    SpectrumTrace trace{"", std::vector<float>(32769, 1e-10F), 48000.0 / 65536, 1};
    trace.power[27] = 1e-8F;  // 19.8 Hz
    const double binHz = trace.binHz;
    const auto columns = TraceColumns(trace, kWholePlot, 520);
    EXPECT_NEAR(columns[ColumnAt(27 * binHz, 520)].mean, -80, 1e-4);
    EXPECT_NEAR(columns[ColumnAt(26.5 * binHz, 520)].mean, -90, 4.0);
    EXPECT_NEAR(columns[ColumnAt(25.9 * binHz, 520)].mean, -100, 1e-3);
    for (std::size_t i = 0; i < 60; ++i) {
        EXPECT_EQ(columns[i].low, columns[i].high);
        EXPECT_FALSE(columns[i].outstanding);
    }
}

TEST(TraceColumns, EndWithTheTrace) {
    const SpectrumTrace trace{"", std::vector<float>(1025, 1e-10F), 4.0, 1};  // to 4096 Hz
    const auto columns = TraceColumns(trace, kWholePlot, 100);
    EXPECT_NEAR(columns[ColumnAt(4000, 100)].mean, -100, 1e-3);
    EXPECT_TRUE(std::isnan(columns[ColumnAt(4600, 100)].mean));
    EXPECT_TRUE(std::isnan(columns.back().high));
    EXPECT_TRUE(std::isnan(TraceColumns(SpectrumTrace{}, kWholePlot, 3).front().mean));
}

}  // namespace
}  // namespace sonavex
