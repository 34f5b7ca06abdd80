#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "support/GeneratorBench.h"

namespace sonavex {
namespace {

constexpr double kSinePeak = 32767.0 / 2.0 / 2.0;  // one tone
constexpr double kRampPeak = 32767.0 / 2.0;        // one tone, unipolar

// One cycle of a waveform, in units of its peak, at 44100 Hz.
std::vector<double> Cycle(std::int16_t waveType, double frequencyHz, std::size_t length) {
    GeneratorBench bench(44100);
    bench.Add(waveType, frequencyHz);
    bench.Run();
    std::vector<double> samples = bench.Samples(10 * length);
    for (std::size_t i = length; i < samples.size(); ++i) EXPECT_EQ(samples[i], samples[i - length]) << i;
    samples.resize(length);
    const double peak = waveType == wave::kSquare ? kSinePeak : kRampPeak;
    for (double& sample : samples) sample /= peak;
    return samples;
}

struct Period {
    double frequencyHz;  // at 44100 Hz
    double period;
    std::size_t cycle;
    std::ptrdiff_t squareHigh;
};

class Cycles : public testing::TestWithParam<Period> {};

INSTANTIATE_TEST_SUITE_P(Periods, Cycles,
                         testing::Values(Period{441.0, 100.0, 101, 51}, Period{1000.0, 44.1, 46, 23}));

TEST_P(Cycles, OfTheSquareAreHighWhileTheCountIsAtMostHalfThePeriod) {
    const auto cycle = Cycle(wave::kSquare, GetParam().frequencyHz, GetParam().cycle);
    const auto high = GetParam().squareHigh;
    for (std::size_t i = 0; i < cycle.size(); ++i)
        EXPECT_NEAR(cycle[i], static_cast<std::ptrdiff_t>(i) < high ? 1.0 : -1.0, 1e-12) << i;
}

TEST_P(Cycles, OfTheTriangleRiseAndFall) {
    const auto cycle = Cycle(wave::kTriangle, GetParam().frequencyHz, GetParam().cycle);
    for (std::size_t i = 0; i < cycle.size(); ++i) {
        const auto count = static_cast<double>(i);
        const double period = GetParam().period;
        const double expected = period / 2 < count ? 2 * (period - count) / period : 2 * count / period;
        EXPECT_NEAR(cycle[i], expected, 1e-12) << i;
    }
}

TEST_P(Cycles, OfTheSawtoothRise) {
    const auto cycle = Cycle(wave::kSawtooth, GetParam().frequencyHz, GetParam().cycle);
    for (std::size_t i = 0; i < cycle.size(); ++i)
        EXPECT_NEAR(cycle[i], static_cast<double>(i) / GetParam().period, 1e-12) << i;
    EXPECT_EQ(cycle.front(), 0.0);
}

TEST(Triangle, OfPeriod100PeaksAtCount50AndHasTwoZeros) {
    const auto cycle = Cycle(wave::kTriangle, 441.0, 101);
    EXPECT_EQ(std::max_element(cycle.begin(), cycle.end()) - cycle.begin(), 50);
    EXPECT_NEAR(cycle[50], 1.0, 1e-12);
    EXPECT_EQ(std::count(cycle.begin(), cycle.end(), 0.0), 2);
    EXPECT_EQ(cycle[0], 0.0);
    EXPECT_EQ(cycle[100], 0.0);
}

TEST(Triangle, OfPeriod44Point1MissesItsPeakAndFallsBelowZero) {
    const auto cycle = Cycle(wave::kTriangle, 1000.0, 46);
    EXPECT_NEAR(*std::max_element(cycle.begin(), cycle.end()), 0.99773, 5e-6);
    EXPECT_NEAR(*std::min_element(cycle.begin(), cycle.end()), -0.04082, 5e-6);
}

TEST(Sawtooth, PeaksAtTheRoundedUpPeriodOverThePeriod) {
    const auto whole = Cycle(wave::kSawtooth, 441.0, 101);
    EXPECT_NEAR(*std::max_element(whole.begin(), whole.end()), 1.0, 1e-12);
    const auto fraction = Cycle(wave::kSawtooth, 1000.0, 46);
    EXPECT_NEAR(*std::max_element(fraction.begin(), fraction.end()), 1.02041, 5e-6);
}

TEST(Square, HasPlusAndMinusHalfTheAmplitude) {
    GeneratorBench bench(48000);
    bench.Add(wave::kSquare, 480.0);
    bench.Run();
    const auto samples = bench.Samples(202);
    EXPECT_EQ(
        std::count_if(samples.begin(), samples.end(), [](double s) { return std::abs(s - 8191.75) < 1e-9; }),
        2 * 51);
    EXPECT_EQ(
        std::count_if(samples.begin(), samples.end(), [](double s) { return std::abs(s + 8191.75) < 1e-9; }),
        2 * 50);
}

TEST(Cycle, LastsTheRoundedUpPeriodAndOneSample) {
    for (const double frequencyHz : {20.0, 333.0, 997.0, 1000.0, 4410.0, 10000.0, 21000.0}) {
        GeneratorBench bench(44100);
        bench.Add(wave::kSawtooth, frequencyHz);
        bench.Run();
        const auto samples = bench.Samples(20000);
        // A sawtooth is 0 once per cycle.
        std::vector<std::ptrdiff_t> zeros;
        for (std::size_t i = 0; i < samples.size(); ++i)
            if (samples[i] == 0.0) zeros.push_back(static_cast<std::ptrdiff_t>(i));
        const auto expected = static_cast<std::ptrdiff_t>(std::ceil(44100 / frequencyHz)) + 1;
        ASSERT_GE(zeros.size(), 5U) << frequencyHz;
        for (std::size_t i = 1; i < zeros.size(); ++i) EXPECT_EQ(zeros[i] - zeros[i - 1], expected);
    }
}

TEST(Sine, IsAdvancedBeforeItIsUsed) {
    GeneratorBench bench(48000);
    const ToneRecord& tone = bench.Add(wave::kSine, 1000.0);
    bench.Run();
    EXPECT_EQ(tone.Period, 48.0);
    EXPECT_EQ(tone.PhaseIncrement, 6.28318530717958 / 48.0);
    EXPECT_NEAR(tone.PhaseIncrement, 0.1308996938995746, 1e-16);
    const auto samples = bench.Samples(2);
    EXPECT_NEAR(samples[0], 8191.75 * std::sin(0.1308996938995746), 1e-9);
    EXPECT_NEAR(samples[1], 8191.75 * std::sin(2 * 0.1308996938995746), 1e-9);
}

TEST(Sine, HasItsExactFrequency) {
    GeneratorBench bench(44100);
    bench.Add(wave::kSine, 1000.0);
    bench.Run();
    const auto samples = bench.Samples(44100);
    for (const std::size_t second : {441U, 4410U, 44099U})
        EXPECT_NEAR(samples[second],
                    8191.75 * std::sin(6.283185307179586 * 1000.0 * static_cast<double>(second + 1) / 44100),
                    1e-4);
}

class OtherWaves : public testing::TestWithParam<std::int16_t> {};

INSTANTIATE_TEST_SUITE_P(Types, OtherWaves, testing::Values(-1, 4, 5, 32767, -32768));

TEST_P(OtherWaves, SoundAsTheConstantOfTheirPhase) {
    GeneratorBench bench;
    ToneRecord& tone = bench.Add(GetParam(), 1000.0);
    bench.Run();
    tone.Phase = 0.25;
    tone.SampleCount = 3.0;
    for (const double sample : bench.Fill()) ASSERT_EQ(sample, 0.25 * (32767.0 / 2));
    EXPECT_EQ(tone.Phase, 0.25);
    EXPECT_EQ(tone.SampleCount, 3.0);
}

}  // namespace
}  // namespace sonavex
