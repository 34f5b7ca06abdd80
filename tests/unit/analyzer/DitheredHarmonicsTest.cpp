// Known harmonics in dithered words of 24 and 16 bits.

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstdint>
#include <numbers>
#include <span>

#include "core/analyzer/ToneAverage.h"
#include "unit/analyzer/Signals.h"

namespace sonavex {
namespace {

constexpr std::size_t kWordsLength = 65536;
constexpr double kWordsRateHz = 48000.0;

struct Step {
    double levelDbc;
    double toleranceDb;
};

// Harmonics 2, 3 ... of a tone at -1 dBFS with psi = 60 degrees.
signals::Samples Ladder(std::size_t length, std::span<const Step> steps) {
    const signals::ExactFrequency f(997.0, kWordsRateHz);
    const double amplitude = std::pow(10.0, -1.0 / 20.0);
    signals::Samples x = signals::Sine(length, f, amplitude);
    std::uint64_t order = 2;
    for (const Step& step : steps)
        signals::AddSine(x, f.Times(order++), amplitude * std::pow(10.0, step.levelDbc / 20.0),
                         std::numbers::pi / 3.0);
    return x;
}

Reading AverageOf(const signals::Samples& x, int bits) {
    const RecordPlan plan(kWordsLength, kWordsRateHz);
    ToneAverage average(plan, 0);
    Reading reading;
    for (std::size_t start = 0; start + kWordsLength <= x.size(); start += kWordsLength / 4) {
        const std::span<const double> samples(x.data() + start, kWordsLength);
        reading = MakeReading(
            plan, average.Add(MeasureTone(plan, {samples, kWordsRateHz, bits, false}, ToneSettings{})),
            ToneSettings{});
    }
    return reading;
}

void ExpectSteps(const Reading& reading, std::span<const Step> steps) {
    ASSERT_TRUE(reading.Valid());
    for (std::size_t i = 0; i < steps.size(); ++i)
        EXPECT_NEAR(*reading.harmonics[i].levelDbc.value, steps[i].levelDbc, steps[i].toleranceDb);
}

TEST(DitheredHarmonics, ALadderDownToMinus140IsReadFrom24Bits) {
    constexpr std::array<Step, 4> kSteps = {Step{-110, 0.002}, {-120, 0.005}, {-130, 0.02}, {-140, 0.06}};
    signals::Samples x = Ladder(kWordsLength + 11 * kWordsLength / 4, kSteps);
    signals::QuantiseWithDither(x, 24, 1);
    const Reading reading = AverageOf(x, 24);
    EXPECT_EQ(reading.blocks, 12U);
    ExpectSteps(reading, kSteps);
}

TEST(DitheredHarmonics, OneRecordOf24BitsReadsMinus70AndItsPhase) {
    constexpr std::array<Step, 2> kSteps = {Step{-60, 5e-4}, {-70, 5e-4}};
    signals::Samples x = Ladder(kWordsLength, kSteps);
    signals::QuantiseWithDither(x, 24, 2);
    const Reading reading = AverageOf(x, 24);
    ExpectSteps(reading, kSteps);
    for (int i = 0; i < 2; ++i) EXPECT_NEAR(*reading.harmonics.at(i).phaseDegrees.value, 60.0, 0.05);
}

TEST(DitheredHarmonics, OneRecordOf16BitsReadsMinus60) {
    constexpr std::array<Step, 1> kSteps = {Step{-60, 0.03}};
    signals::Samples x = Ladder(kWordsLength, kSteps);
    signals::QuantiseWithDither(x, 16, 3);
    ExpectSteps(AverageOf(x, 16), kSteps);
}

TEST(DitheredHarmonics, WordsOf16BitsWithoutDitherReadTheirRounding) {
    signals::Samples x = Ladder(kWordsLength, {});
    signals::Quantise(x, 16);
    const Reading reading = AverageOf(x, 16);
    // A twelfth of a code squared, in the band.
    const double expected =
        Decibels(std::ldexp(1.0, -15) / std::sqrt(6.0)) + 10.0 * std::log10(19980.0 / 24000.0);
    EXPECT_NEAR(*reading.thdnDb.value, expected + 1.0, 0.4);
}

}  // namespace
}  // namespace sonavex
