#include <gtest/gtest.h>

#include <cmath>
#include <span>

#include "core/analyzer/ToneAverage.h"
#include "unit/analyzer/Signals.h"

namespace sonavex {
namespace {

constexpr std::size_t kAverageLength = 4096;
constexpr double kAverageRateHz = 48000.0;

const RecordPlan& AveragePlan() {
    static const RecordPlan plan(kAverageLength, kAverageRateHz);
    return plan;
}

// Consecutive records of a signal that overlap by 75 %.
ToneMeasurement Measured(const signals::Samples& x, std::size_t record) {
    const std::span<const double> samples(x.data() + record * (kAverageLength / 4), kAverageLength);
    return MeasureTone(AveragePlan(), {samples, kAverageRateHz}, ToneSettings{});
}

// A tone with a second harmonic at -60 dBc.
signals::Samples TwoSecondsOfTone(double hertz = 997.3, double amplitude = 0.5) {
    const signals::ExactFrequency f(hertz, kAverageRateHz);
    signals::Samples x = signals::Sine(24 * kAverageLength, f, amplitude);
    signals::AddSine(x, f.Times(2), 1e-3 * amplitude, 0.5);
    return x;
}

TEST(ToneAverage, HarmonicsAreMeansOfComplexNumbersAndNoiseOfPowers) {
    signals::Samples x = TwoSecondsOfTone();
    signals::AddWhiteNoise(x, 1e-3, 1);
    ToneAverage average(AveragePlan(), 0);
    std::complex<double> ratios;
    double power = 0.0;
    for (std::size_t record = 0; record < 8; ++record) {
        const ToneMeasurement one = Measured(x, record);
        ratios += one.harmonics[0].ratio / 8.0;
        power += one.residualPower[500] / 8.0;
        average.Add(one);
    }
    const ToneMeasurement mean = average.Add(Measured(x, 0));  // a ninth
    EXPECT_EQ(mean.blocks, 9U);
    const std::complex<double> expected = (8.0 * ratios + Measured(x, 0).harmonics[0].ratio) / 9.0;
    EXPECT_LT(std::abs(mean.harmonics[0].ratio - expected), 1e-15);
    EXPECT_NEAR(mean.residualPower[500], (8.0 * power + Measured(x, 0).residualPower[500]) / 9.0, 1e-15);
}

TEST(ToneAverage, CountsOverlappingRecordsByTheirCorrelation) {
    const signals::Samples x = TwoSecondsOfTone();
    ToneAverage average(AveragePlan(), 0);
    ToneMeasurement mean;
    for (std::size_t record = 0; record < 17; ++record) mean = average.Add(Measured(x, record));
    const double n = 17.0;
    const double quarter = 0.2572;
    const double half = 0.0033;
    EXPECT_NEAR(mean.amplitudeRecords, n / (1 + 2 * (quarter * (1 - 1 / n) + half * (1 - 2 / n))), 1e-3);
    EXPECT_NEAR(mean.powerRecords,
                n / (1 + 2 * (quarter * quarter * (1 - 1 / n) + half * half * (1 - 2 / n))), 1e-3);
}

TEST(ToneAverage, ALastRecordThatOverlapsMoreCountsLess) {
    const ToneMeasurement one = Measured(TwoSecondsOfTone(), 0);
    const auto independent = [&](std::size_t records, std::size_t lastShift) {
        ToneAverage average(AveragePlan(), 0);
        for (std::size_t record = 1; record < records; ++record) average.Add(one);
        return average.Add(one, lastShift).amplitudeRecords;
    };
    // Nearly the same samples again.
    EXPECT_NEAR(independent(2, 1), 1.0, 1e-3);
    // The weights of the records are then 1/3 and 2/3.
    EXPECT_NEAR(independent(3, 1), 1.0 / (1.0 / 9 + 4.0 / 9 + 2 * 0.2572 * 2.0 / 9), 1e-3);
    EXPECT_DOUBLE_EQ(independent(3, kAverageLength / 4), independent(3, 0));
    EXPECT_LT(independent(8, kAverageLength / 8), independent(8, 0));
}

TEST(ToneAverage, TheOldestRecordDropsOut) {
    signals::Samples x = TwoSecondsOfTone();
    signals::AddWhiteNoise(x, 1e-3, 2);
    ToneAverage rolling(AveragePlan(), 3);
    ToneAverage last(AveragePlan(), 0);
    ToneMeasurement mean;
    ToneMeasurement expected;
    for (std::size_t record = 0; record < 8; ++record) mean = rolling.Add(Measured(x, record));
    for (std::size_t record = 5; record < 8; ++record) expected = last.Add(Measured(x, record));
    EXPECT_EQ(mean.blocks, 3U);
    EXPECT_DOUBLE_EQ(mean.amplitude, expected.amplitude);
    EXPECT_LT(std::abs(mean.harmonics[0].ratio - expected.harmonics[0].ratio), 1e-15);
    EXPECT_NEAR(mean.residualPower[700] / expected.residualPower[700], 1.0, 1e-6);
    EXPECT_DOUBLE_EQ(mean.powerRecords, expected.powerRecords);
}

TEST(ToneAverage, StartsOverAfterAChangeOfFrequencyOrLevel) {
    const ToneMeasurement first = Measured(TwoSecondsOfTone(), 0);
    for (const signals::Samples& changed :
         {TwoSecondsOfTone(997.3 * (1.0 + 2e-7)), TwoSecondsOfTone(997.3, 0.5 * 1.0013)}) {
        ToneAverage average(AveragePlan(), 4);
        average.Add(first);
        EXPECT_EQ(average.Add(first).blocks, 2U);
        EXPECT_EQ(average.Add(Measured(changed, 0)).blocks, 1U);
    }
}

TEST(ToneAverage, ContinuesAfterSmallerChanges) {
    const ToneMeasurement first = Measured(TwoSecondsOfTone(), 0);
    for (const signals::Samples& changed :
         {TwoSecondsOfTone(997.3 * (1.0 + 5e-8)), TwoSecondsOfTone(997.3, 0.5 * 1.0010)}) {
        ToneAverage average(AveragePlan(), 4);
        average.Add(first);
        EXPECT_EQ(average.Add(Measured(changed, 0)).blocks, 2U);
    }
}

TEST(ToneAverage, StartsOverAfterAVoidRecordAndOnRequest) {
    const ToneMeasurement first = Measured(TwoSecondsOfTone(), 0);
    ToneAverage average(AveragePlan(), 4);
    average.Add(first);
    average.Add(first);
    EXPECT_FALSE(average.Add(Measured(signals::Samples(kAverageLength), 0)).voids.empty());
    EXPECT_EQ(average.Add(first).blocks, 1U);
    EXPECT_EQ(average.Add(first).blocks, 2U);
    average.Restart();
    EXPECT_EQ(average.Add(first).blocks, 1U);
}

// A ToneAverage would start over with the second record.
TEST(ToneAverage, SeparateRecordsOfAnyLevelHaveAMean) {
    const ToneMeasurement one = Measured(TwoSecondsOfTone(997.3, 0.5), 0);
    const ToneMeasurement other = Measured(TwoSecondsOfTone(998.3, 0.4), 4);
    const ToneMeasurement mean = MeanOfSeparate(one, other);
    EXPECT_NEAR(mean.amplitude, 0.45, 1e-9);
    EXPECT_NEAR(mean.frequencyHz, 997.8, 1e-6);
    EXPECT_EQ(mean.blocks, 2U);
    EXPECT_EQ(mean.amplitudeRecords, 2.0);
    EXPECT_EQ(mean.powerRecords, 2.0);
    EXPECT_NEAR(std::abs(mean.harmonics[0].ratio), 1e-3, 1e-9);
    EXPECT_EQ(mean.residualPower[500], 0.5 * (one.residualPower[500] + other.residualPower[500]));
}

}  // namespace
}  // namespace sonavex
