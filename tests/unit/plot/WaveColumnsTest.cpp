#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

#include "core/plot/WaveColumns.h"

namespace sonavex {
namespace {

constexpr double kTestTurn = 2.0 * std::numbers::pi;

// A tone of amplitude 0.9 with a third harmonic of 1e-3 at 40 degrees, and an alternating residual of 1e-4.
struct WaveCase {
    explicit WaveCase(double hertz, std::size_t length = 65536) {
        std::vector<double> samples(length);
        std::vector<double> residual(length);
        for (std::size_t n = 0; n < length; ++n) {
            const double angle = kTestTurn * hertz / 48000 * static_cast<double>(n) + 1.234;
            residual[n] = n % 2 == 0 ? 1e-4 : -1e-4;
            samples[n] = 0.9 * std::sin(angle) + 1e-3 * std::sin(3 * angle + 0.7) + residual[n];
        }
        record = EndOfRecord(48000, hertz, {{3, 1e-3, 0.7}}, samples, residual);
    }
    std::shared_ptr<const WaveRecord> record;
};

void ExpectSine(const std::vector<WaveColumn>& columns, double amplitude, int periods, int order,
                double phase, double tolerance) {
    for (std::size_t i = 0; i < columns.size(); ++i) {
        const double turns = periods * (static_cast<double>(i) + 0.5) / static_cast<double>(columns.size());
        const double value = amplitude * std::sin(kTestTurn * order * turns + phase);
        EXPECT_NEAR(0.5 * (columns[i].low + columns[i].high), value, tolerance) << i;
    }
}

TEST(WaveColumns, TheSignalBeginsAtARisingZeroCrossing) {
    for (const double hertz : {997.0, 6.1, 440.0, 5003.0}) {
        SCOPED_TRACE(hertz);
        const WaveCase tone(hertz);
        const WaveColumns columns = MakeWaveColumns(*tone.record, 2, 224);
        ASSERT_EQ(columns.signal.size(), 224U);
        ExpectSine(columns.signal, 0.9, 2, 1, 0.0, 4e-3);
    }
}

TEST(WaveColumns, AToneNearHalfTheRateIsASineToo) {
    const WaveCase tone(18500.0);
    const WaveColumns columns = MakeWaveColumns(*tone.record, 5, 448);
    ExpectSine(columns.signal, 0.9, 5, 1, 0.0, 0.03);
}

TEST(WaveColumns, TheHarmonicsKeepTheirPhase) {
    const WaveCase tone(997.0);
    ExpectSine(MakeWaveColumns(*tone.record, 1, 400).harmonics, 1e-3, 1, 3, 0.7, 3e-5);
}

TEST(WaveColumns, TheCapturedCurveReachesEverySample) {
    const WaveCase tone(997.0);
    const WaveColumns columns = MakeWaveColumns(*tone.record, 5, 300);
    // More than one sample in most columns: the alternating residual makes their height.
    int high = 0;
    for (const WaveColumn& column : columns.captured) high += column.high - column.low > 1.5e-4;
    EXPECT_GT(high, 150);
    EXPECT_NEAR(PeaksOf(*tone.record).captured, 1.1e-3, 3e-5);
    EXPECT_NEAR(PeaksOf(*tone.record).signal, 0.9, 2e-3);
}

TEST(WaveColumns, ColumnsTouch) {
    const WaveCase tone(6.1);
    for (const auto& curve :
         {MakeWaveColumns(*tone.record, 5, 224).captured, MakeWaveColumns(*tone.record, 5, 224).signal})
        for (std::size_t i = 1; i < curve.size(); ++i) {
            EXPECT_LE(curve[i].low, curve[i - 1].high + 1e-9) << i;
            EXPECT_GE(curve[i].high, curve[i - 1].low - 1e-9) << i;
        }
}

TEST(WaveColumns, WithoutAToneTheLastMillisecondsAreShown) {
    const std::vector<double> samples(4096, 0.25);
    const auto record = EndOfRecord(48000, std::nullopt, {}, samples, {});
    const WaveColumns columns = MakeWaveColumns(*record, 2, 100);
    ASSERT_EQ(columns.signal.size(), 100U);
    EXPECT_NEAR(columns.signal[50].high, 0.25, 1e-3);
    EXPECT_TRUE(columns.captured.empty());
    EXPECT_TRUE(columns.harmonics.empty());
}

TEST(WaveColumns, ATooShortRecordHasNoCurve) {
    const std::vector<double> samples(300, 0.25);
    EXPECT_TRUE(MakeWaveColumns(*EndOfRecord(48000, 20.0, {}, samples, samples), 5, 100).signal.empty());
    EXPECT_EQ(PeaksOf(*EndOfRecord(48000, 20.0, {}, {}, {})).signal, 0);
}

}  // namespace
}  // namespace sonavex
