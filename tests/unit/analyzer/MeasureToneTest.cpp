#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <functional>
#include <limits>
#include <numbers>
#include <random>

#include "core/analyzer/MeasureTone.h"
#include "core/analyzer/Weightings.h"
#include "unit/analyzer/Signals.h"

namespace sonavex {
namespace {

using signals::ExactFrequency;
using signals::Samples;

constexpr std::size_t kToneLength = 16384;
constexpr double kToneRateHz = 48000.0;
constexpr double kToneBinHz = kToneRateHz / kToneLength;

const RecordPlan& TonePlan() {
    static const RecordPlan plan(kToneLength, kToneRateHz);
    return plan;
}

Reading Read(const Samples& x, const ToneSettings& settings = {}) {
    return AnalyzeTone(TonePlan(), {x, kToneRateHz}, settings);
}

Samples Tone(double hertz, double amplitude = 0.5) {
    return signals::Sine(kToneLength, ExactFrequency(hertz, kToneRateHz), amplitude, 0.3);
}

// The phases of AddHarmonic are those that a reading shows.
void AddHarmonic(Samples& x, double hertz, int order, double amplitude, double degrees) {
    const double phase = order * 0.3 + degrees * std::numbers::pi / 180.0;
    signals::AddSine(x, ExactFrequency(hertz, kToneRateHz).Times(static_cast<std::uint64_t>(order)),
                     amplitude, phase);
}

const Harmonic& HarmonicOf(const Reading& reading, int order) {
    return reading.harmonics.at(static_cast<std::size_t>(order - 2));
}

bool ReadingWarns(const Reading& reading, WarningCode code) {
    for (const Warning& warning : reading.warnings)
        if (warning.code == code) return true;
    return false;
}

void ExpectVoid(const Reading& reading, VoidCode code) {
    ASSERT_EQ(reading.voids.size(), 1U);
    EXPECT_STREQ(Name(reading.voids[0].code), Name(code));
    EXPECT_FALSE(reading.voids[0].sentence.empty());
    EXPECT_FALSE(reading.frequencyHz.value || reading.thdDb.value || reading.noiseDbfs.value);
}

TEST(MeasureTone, HarmonicsHaveTheirLevelsAndPhases) {
    Samples x = Tone(997.31);
    double squares = 0.0;
    for (int order = 2; order <= 9; ++order) {
        const double ratio = std::pow(10.0, -(20.0 + 20.0 * order) / 20.0);
        squares += ratio * ratio;
        AddHarmonic(x, 997.31, order, 0.5 * ratio, 37.0 * order - 180.0);
    }
    for (double& value : x) value += 0.01;
    const Reading reading = Read(x);
    ASSERT_TRUE(reading.Valid());
    EXPECT_EQ(reading.lines, 20U);
    EXPECT_EQ(reading.harmonics.size(), 19U);
    for (int order = 2; order <= 9; ++order) {
        EXPECT_NEAR(*HarmonicOf(reading, order).levelDbc.value, -20.0 - 20.0 * order, 1e-5) << order;
        EXPECT_NEAR(*HarmonicOf(reading, order).phaseDegrees.value, 37.0 * order - 180.0, 1e-3) << order;
    }
    EXPECT_NEAR(*reading.dc.value, 0.01, 1e-12);
    EXPECT_NEAR(*reading.levelDbfs.value, Decibels(0.5), 1e-9);
    EXPECT_NEAR(*reading.thdDb.value, 10.0 * std::log10(squares), 1e-7);
    EXPECT_NEAR(*reading.thdPercent.value, 100.0 * std::sqrt(squares), 1e-8);
    EXPECT_NEAR(*reading.thdRPercent.value, 100.0 * std::sqrt(squares / (1.0 + squares)), 1e-8);
    EXPECT_NEAR(*reading.thdnDb.value, *reading.thdDb.value, 1e-6);
    EXPECT_NEAR(*reading.thdnRDb.value, Decibels(std::sqrt(squares / (1.0 + squares))), 1e-6);
    EXPECT_NEAR(*reading.sinadDb.value, -*reading.thdnDb.value, 1e-12);
    EXPECT_NEAR(*reading.sfdrDb.value, 60.0, 1e-5);
}

TEST(MeasureTone, WithoutNoiseNoUncertaintyIsBelow1e9) {
    Samples x = Tone(997.31);
    AddHarmonic(x, 997.31, 2, 1e-3, 0.0);
    const Reading reading = Read(x);
    const double leastDb = 20.0 / std::numbers::ln10 * 1e-9;
    EXPECT_GE(*reading.frequencyHz.uncertainty, 1e-9 * 997.31);
    EXPECT_GE(*reading.levelDbfs.uncertainty, leastDb);
    EXPECT_GE(*reading.thdDb.uncertainty, leastDb);
    EXPECT_GE(*reading.thdPercent.uncertainty, 0.999999e-9 * *reading.thdPercent.value);
    EXPECT_GE(*reading.thdnDb.uncertainty, leastDb);
    EXPECT_GE(*reading.dc.uncertainty, 1e-9 * 0.5);
    EXPECT_GE(*HarmonicOf(reading, 2).levelDbc.uncertainty, leastDb);
    EXPECT_GE(*HarmonicOf(reading, 2).phaseDegrees.uncertainty, 180.0 / std::numbers::pi * 1e-9);
}

TEST(MeasureTone, APolynomialMakesTheHarmonicsOfTheory) {
    constexpr double kA = 0.7;
    constexpr double kSquare = 1e-3;
    constexpr double kCube = -2e-4;
    Samples x = Tone(1234.5, kA);
    for (double& value : x) value += kSquare * value * value + kCube * value * value * value;
    const Reading reading = Read(x);
    const double fundamental = kA + 0.75 * kCube * kA * kA * kA;
    EXPECT_NEAR(*reading.levelDbfs.value, Decibels(fundamental), 1e-9);
    EXPECT_NEAR(*reading.dc.value, 0.5 * kSquare * kA * kA, 1e-12);
    EXPECT_NEAR(*HarmonicOf(reading, 2).levelDbc.value, Decibels(0.5 * kSquare * kA * kA / fundamental),
                1e-7);
    EXPECT_NEAR(*HarmonicOf(reading, 3).levelDbc.value, Decibels(-0.25 * kCube * kA * kA * kA / fundamental),
                1e-7);
    EXPECT_NEAR(*HarmonicOf(reading, 2).phaseDegrees.value, -90.0, 1e-5);
    EXPECT_NEAR(*HarmonicOf(reading, 3).phaseDegrees.value, 0.0, 1e-5);
}

TEST(MeasureTone, AClippedSineHasTheHarmonicsOfItsFourierSeries) {
    constexpr double kHertz = 111.7;
    constexpr double kClip = 0.4;
    Samples x = Tone(kHertz);
    for (double& value : x) value = std::clamp(value, -kClip, kClip);
    const Reading reading = Read(x);
    ASSERT_TRUE(reading.Valid());
    const double angle = std::asin(kClip / 0.5);
    const double fundamental = 0.5 * 2.0 / std::numbers::pi * (angle + 0.5 * std::sin(2.0 * angle));
    EXPECT_NEAR(*reading.levelDbfs.value, Decibels(fundamental), 1e-4);
    for (int k = 3; k <= 9; k += 2) {
        const double below = std::sin((k - 1) * angle) / (k - 1) - std::sin((k + 1) * angle) / (k + 1);
        const double clipped = 2.0 * kClip / 0.5 * std::cos(k * angle) / k;
        const double ratio = std::abs(0.5 * 2.0 / std::numbers::pi * (below + clipped)) / fundamental;
        EXPECT_NEAR(*HarmonicOf(reading, k).levelDbc.value, Decibels(ratio), 0.01) << k;
    }
}

class Shape : public testing::TestWithParam<double> {
protected:
    // Harmonics in steps of `step` orders, each at order^-power.
    static void ExpectHarmonics(int step, double power) {
        const ExactFrequency f(GetParam(), kToneRateHz);
        Samples x(kToneLength);
        double squares = 0.0;
        for (int k = 1; k * GetParam() < 0.45 * kToneRateHz; k += step) {
            const double ratio = std::pow(k, -power);
            signals::AddSine(x, f.Times(static_cast<std::uint64_t>(k)), 0.4 * ratio);
            if (k >= 2 && k <= 9 && k * GetParam() <= 20000.0) squares += ratio * ratio;
        }
        const Reading reading = Read(x);
        ASSERT_TRUE(reading.Valid());
        EXPECT_NEAR(*reading.levelDbfs.value, Decibels(0.4), 1e-5);
        EXPECT_NEAR(*reading.thdDb.value, 10.0 * std::log10(squares), 1e-5);
        for (int k = 1 + step; k <= 9 && k * GetParam() < 0.45 * kToneRateHz; k += step)
            EXPECT_NEAR(*HarmonicOf(reading, k).levelDbc.value, -power * Decibels(k), 1e-5) << k;
    }
};

TEST_P(Shape, ASawtoothHasItsHarmonicsAtAnyFrequency) {
    ExpectHarmonics(1, 1.0);
}

TEST_P(Shape, ASquareHasItsHarmonicsAtAnyFrequency) {
    ExpectHarmonics(2, 1.0);
}

TEST_P(Shape, ATriangleHasItsHarmonicsAtAnyFrequency) {
    ExpectHarmonics(2, 2.0);
}

INSTANTIATE_TEST_SUITE_P(Frequencies, Shape, testing::Values(8.6 * kToneBinHz, 41.3, 440.1, 2345.6));

// A tone whose sampling instants vary: its phase in radians.
Samples JitteredTone(double hertz, const std::function<double(std::size_t)>& phase) {
    const ExactFrequency f(hertz, kToneRateHz);
    Samples x(kToneLength);
    for (std::size_t n = 0; n < x.size(); ++n)
        x[n] = static_cast<double>(0.5L * std::sin(f.Phase(n) + static_cast<long double>(phase(n))));
    return x;
}

TEST(MeasureTone, PeriodicJitterIsAPairOfSpurs) {
    constexpr double kPeakRadians = 1e-3;
    const ExactFrequency jitter(1000.7, kToneRateHz);
    const Reading reading = Read(JitteredTone(5000.3, [&](std::size_t n) {
        return kPeakRadians * std::sin(static_cast<double>(jitter.Phase(n)));
    }));
    ASSERT_TRUE(reading.Valid());
    ASSERT_GE(reading.spurs.size(), 4U);
    for (std::size_t i = 0; i < 4; ++i) {
        // First and second side bands, by Bessel's functions.
        const double order = i < 2 ? 1.0 : 2.0;
        const double level = i < 2 ? kPeakRadians / 2.0 : kPeakRadians * kPeakRadians / 8.0;
        EXPECT_NEAR(std::abs(reading.spurs[i].frequencyHz - 5000.3), order * 1000.7, 0.001);
        EXPECT_NEAR(reading.spurs[i].levelDbc, Decibels(level), 1e-3);
    }
    EXPECT_NEAR(*reading.thdnDb.value, Decibels(kPeakRadians / std::numbers::sqrt2), 1e-3);
}

TEST(MeasureTone, RandomJitterIsNoise) {
    constexpr double kRmsRadians = 1e-4;
    std::mt19937_64 random(5);
    std::normal_distribution<double> gaussian(0.0, kRmsRadians);
    const Reading reading = Read(JitteredTone(5000.3, [&](std::size_t) { return gaussian(random); }));
    ASSERT_TRUE(reading.Valid());
    EXPECT_NEAR(*reading.thdnDb.value, Decibels(kRmsRadians) + 10.0 * std::log10(19980.0 / 24000.0), 0.2);
    EXPECT_TRUE(reading.thdDb.atMost);
}

TEST(MeasureTone, TheNoiseOfDitherIsThatOfTheory) {
    struct Point {
        double rateHz;
        int bits;
    };
    for (const Point point :
         {Point{8000, 24}, {32000, 24}, {44100, 24}, {48000, 24}, {48000, 16}, {96000, 24}, {192000, 24}}) {
        const RecordPlan plan(DefaultRecordLength(point.rateHz), point.rateHz);
        const ExactFrequency f(997.0, point.rateHz);
        Samples x = signals::Sine(plan.Length(), f, 0.89);
        signals::QuantiseWithDither(x, point.bits, 7);
        const Reading reading = AnalyzeTone(plan, {x, point.rateHz, point.bits, false}, ToneSettings{});
        ASSERT_TRUE(reading.Valid());
        const double bandHz = std::min(20000.0, 0.5 * point.rateHz) - 20.0;
        const double expected = Decibels(std::ldexp(1.0, 1 - point.bits) / std::numbers::sqrt2) +
                                10.0 * std::log10(bandHz / (0.5 * point.rateHz));
        EXPECT_NEAR(*reading.noiseDbfs.value, expected, 0.2) << point.rateHz;
        EXPECT_NEAR(*reading.thdnDb.value, expected - Decibels(0.89), 0.2) << point.rateHz;
        EXPECT_NEAR(*reading.snrDb.value, Decibels(0.89) - expected, 0.2) << point.rateHz;
        const double rms = std::pow(10.0, *reading.thdnDb.value / 20.0) * 0.89 / std::numbers::sqrt2;
        EXPECT_NEAR(*reading.enob.value, std::log2(2.0 / (std::sqrt(12.0) * rms)), 1e-5);
        EXPECT_TRUE(reading.spurs.empty()) << point.rateHz;
    }
}

// Mean square of a weighting from 20 Hz to 20 kHz relative to white noise over the whole spectrum, in dB.
double WeightedBandDb(double (*gain)(double)) {
    double sum = 0.0;
    for (double hertz = 20.5; hertz < 20000.0; hertz += 1.0) sum += gain(hertz) * gain(hertz);
    return 10.0 * std::log10(sum / (0.5 * kToneRateHz));
}

TEST(MeasureTone, WeightedNoiseIsTheIntegralOfTheWeighting) {
    Samples x = Tone(997.0);
    signals::AddWhiteNoise(x, 1e-4, 3);
    const Reading reading = Read(x);
    const double white = Decibels(1e-4 * std::numbers::sqrt2);
    EXPECT_NEAR(WeightedBandDb(AWeighting), -2.84, 0.01);
    EXPECT_NEAR(*reading.noiseADbfs.value, white + WeightedBandDb(AWeighting), 0.25);
    EXPECT_NEAR(*reading.noise468Dbfs.value, white + WeightedBandDb(Weighting468), 0.25);
    EXPECT_NEAR(*reading.noiseCcirRmsDbfs.value, *reading.noise468Dbfs.value - 5.63, 1e-12);
}

TEST(MeasureTone, TheNotchAttenuatesTheFirstHarmonics) {
    Samples x = Tone(1000.3);
    AddHarmonic(x, 1000.3, 2, 0.5e-3, 0.0);
    const Reading reading = Read(x);
    EXPECT_NEAR(*reading.thdnDb.value, -60.0, 1e-5);
    EXPECT_NEAR(*reading.thdnNotchDb.value, -60.458, 1e-3);
}

TEST(MeasureTone, FoldedHarmonicsAreNoiseAndSpurs) {
    Samples x = Tone(7501.3);
    AddHarmonic(x, 7501.3, 2, 0.5e-4, 0.0);
    AddHarmonic(x, 7501.3, 4, 0.5e-3, 0.0);  // folds to 17994.8 Hz
    const Reading reading = Read(x);
    EXPECT_NEAR(*reading.thdDb.value, -80.0, 1e-4);
    EXPECT_NEAR(*reading.thdnDb.value, 10.0 * std::log10(1e-8 + 1e-6), 0.01);
    ASSERT_EQ(reading.spurs.size(), 1U);
    EXPECT_NEAR(reading.spurs[0].frequencyHz, kToneRateHz - 4 * 7501.3, 0.01);
    EXPECT_NEAR(reading.spurs[0].levelDbc, -60.0, 0.001);
}

TEST(MeasureTone, HumIsNoiseAndASpurAndChangesNoHarmonic) {
    Samples x = Tone(997.0);
    signals::AddSine(x, ExactFrequency(50.0, kToneRateHz), 0.5e-4, 1.0);
    signals::AddSine(x, ExactFrequency(1234.5, kToneRateHz), 0.5e-2, 1.0);
    const Reading reading = Read(x);
    EXPECT_LE(*reading.thdDb.value, -217.0);  // side lobes of the stronger spur
    EXPECT_NEAR(*reading.thdnDb.value, 10.0 * std::log10(1e-8 + 1e-4), 1e-3);
    ASSERT_EQ(reading.spurs.size(), 2U);
    EXPECT_NEAR(reading.spurs[0].frequencyHz, 1234.5, 0.001);
    EXPECT_NEAR(reading.spurs[0].levelDbc, -40.0, 1e-4);
    EXPECT_NEAR(reading.spurs[1].frequencyHz, 50.0, 0.001);
    EXPECT_NEAR(reading.spurs[1].levelDbc, -80.0, 1e-3);
    EXPECT_NEAR(*reading.sfdrDb.value, 40.0, 1e-4);
}

TEST(MeasureTone, SlowModulationIsSkirtAndNotNoise) {
    Samples x = Tone(997.0);
    constexpr double kDepth = 1e-3;
    double sideBands = 0.0;  // power as the window sees it, relative to the tone
    for (std::size_t n = 0; n < x.size(); ++n) {
        // 1.7 bins; odd about the centre, so that the fit takes no part of it for the tone.
        const double seconds = (static_cast<double>(n) - 0.5 * (kToneLength - 1)) / kToneRateHz;
        const double modulation = kDepth * std::sin(2.0 * std::numbers::pi * 5.0 * seconds);
        const double w = TonePlan().Window().Values()[n];
        sideBands += w * w * modulation * modulation / TonePlan().Window().SumOfSquares();
        x[n] *= 1.0 + modulation;
    }
    const Reading reading = Read(x);
    ASSERT_TRUE(reading.Valid());
    EXPECT_TRUE(ReadingWarns(reading, WarningCode::kUnsteadyTone));
    EXPECT_NEAR(*reading.skirtDb.value, 10.0 * std::log10(sideBands), 0.001);
    EXPECT_LE(*reading.thdnDb.value, -180.0);
}

TEST(MeasureTone, SlowDriftOfTheClockIsNotNoise) {
    Samples x(kToneLength);
    for (std::size_t n = 0; n < x.size(); ++n) {
        const long double t = static_cast<long double>(n) / kToneRateHz;
        // 1 ppm per second
        const long double turns = std::fmod(997.0L * (t + 0.5e-6L * t * t), 1.0L);
        x[n] = static_cast<double>(0.5L * std::sin(2.0L * std::numbers::pi_v<long double> * turns));
    }
    const Reading reading = Read(x);
    ASSERT_TRUE(reading.Valid());
    EXPECT_LE(*reading.thdDb.value, -255.0);
    EXPECT_LE(*reading.thdnDb.value, -215.0);
}

TEST(MeasureTone, HiddenHarmonicsAreBounds) {
    Samples x = Tone(997.0);
    signals::AddWhiteNoise(x, 1e-4, 5);
    const Reading reading = Read(x);
    int hidden = 0;
    for (const Harmonic& harmonic : reading.harmonics) {
        if (!harmonic.levelDbc.atMost) continue;
        ++hidden;
        EXPECT_FALSE(harmonic.levelDbc.uncertainty);
        EXPECT_FALSE(harmonic.phaseDegrees.value);
    }
    EXPECT_GE(hidden, 17);
    EXPECT_TRUE(reading.thdDb.atMost);
    EXPECT_TRUE(reading.thdPercent.atMost);
    EXPECT_TRUE(reading.thdRPercent.atMost);
    EXPECT_FALSE(reading.thdDb.uncertainty);
    EXPECT_FALSE(reading.thdnDb.atMost);
    EXPECT_NEAR(*reading.thdPercent.value, 100.0 * std::pow(10.0, *reading.thdDb.value / 20.0), 1e-12);
}

TEST(MeasureTone, ThdIsNotDefinedWithoutAHarmonicInTheBand) {
    const Reading reading = Read(Tone(11000.0));
    ASSERT_TRUE(reading.Valid());
    EXPECT_FALSE(reading.thdDb.value || reading.thdPercent.value || reading.thdRPercent.value);
    EXPECT_TRUE(reading.thdnDb.value);
    EXPECT_EQ(reading.harmonics.size(), 1U);  // 22 kHz: shown, not summed
    EXPECT_TRUE(ReadingWarns(reading, WarningCode::kNoHarmonicInBand));
}

TEST(MeasureTone, TheBandAndTheOrderLimitTheSums) {
    Samples x = Tone(1000.1);
    AddHarmonic(x, 1000.1, 2, 0.5e-2, 0.0);
    AddHarmonic(x, 1000.1, 3, 0.5e-3, 0.0);
    AddHarmonic(x, 1000.1, 15, 0.5e-3, 0.0);
    ToneSettings settings;
    settings.highestOrder = 2;
    EXPECT_NEAR(*Read(x, settings).thdDb.value, -40.0, 1e-6);
    EXPECT_NEAR(*Read(x, settings).thdnDb.value, 10.0 * std::log10(1e-4 + 2e-6), 1e-5);
    settings.band = {2500.0, 10000.0};
    settings.highestOrder = 15;
    EXPECT_NEAR(*Read(x, settings).thdDb.value, -60.0, 1e-6);
    EXPECT_NEAR(*Read(x, settings).thdnDb.value, -60.0, 1e-5);
    settings.band = {20.0, 100000.0};
    EXPECT_EQ(Read(x, settings).band.highHz, 0.5 * kToneRateHz);
}

TEST(MeasureTone, FitsAsManyOrdersAsAreAskedFor) {
    ToneSettings settings;
    settings.highestOrder = 35;
    EXPECT_EQ(Read(Tone(200.0), settings).lines, 35U);
    EXPECT_EQ(Read(Tone(200.0)).lines, 20U);
    EXPECT_EQ(Read(Tone(7000.0)).lines, 3U);
}

TEST(MeasureTone, FindsTheFundamentalWhereItIsExpected) {
    Samples x = Tone(1000.0, 0.1);
    signals::AddSine(x, ExactFrequency(3300.5, kToneRateHz), 0.5);
    EXPECT_NEAR(*Read(x).frequencyHz.value, 3300.5, 1e-6);
    ToneSettings typed;
    typed.fundamentalHz = 1008.0;
    EXPECT_NEAR(*Read(x, typed).frequencyHz.value, 1000.0, 1e-6);
    ToneSettings played;
    played.playedHz = 1000.9;
    const Reading reading = Read(x, played);
    EXPECT_NEAR(*reading.frequencyHz.value, 1000.0, 1e-6);
    ASSERT_FALSE(reading.spurs.empty());
    EXPECT_NEAR(reading.spurs[0].levelDbc, Decibels(5.0), 1e-3);
    played.playedHz = 1500.0;
    ExpectVoid(Read(x, played), VoidCode::kNoTone);
}

TEST(MeasureTone, ATone20DecibelsAboveNoiseIsValid) {
    for (std::uint32_t seed = 0; seed < 20; ++seed) {
        Samples x = Tone(997.0);
        signals::AddWhiteNoise(x, 0.5 * std::numbers::sqrt2 / 2.0 / 10.0, seed);
        EXPECT_TRUE(Read(x).Valid()) << seed;
    }
}

TEST(MeasureTone, NoiseIsNoTone) {
    for (std::uint32_t seed = 0; seed < 20; ++seed) {
        Samples x(kToneLength);
        signals::AddWhiteNoise(x, 0.1, seed);
        ExpectVoid(Read(x), VoidCode::kNoTone);
    }
}

TEST(MeasureTone, SilenceIsVoid) {
    ExpectVoid(Read(Samples(kToneLength)), VoidCode::kSilence);
    ExpectVoid(Read(Samples(kToneLength, 0.25)), VoidCode::kSilence);
    ExpectVoid(Read(Tone(997.0, 0.99e-7)), VoidCode::kSilence);
    EXPECT_TRUE(Read(Tone(997.0, 1.01e-7)).Valid());
}

TEST(MeasureTone, FewerThan8PeriodsAreVoid) {
    ExpectVoid(Read(Tone(7.9 * kToneBinHz)), VoidCode::kFrequencyTooLow);
    ExpectVoid(Read(Tone(3.3 * kToneBinHz)), VoidCode::kFrequencyTooLow);
    EXPECT_TRUE(Read(Tone(8.01 * kToneBinHz)).Valid());
}

TEST(MeasureTone, ALineAtHalfTheRateIsNoTone) {
    ExpectVoid(Read(Tone(0.5 * kToneRateHz - 5.0 * kToneBinHz)), VoidCode::kNoTone);
}

TEST(MeasureTone, FewerSamplesThanTheLengthAreVoidAndOfMoreTheLastCount) {
    Samples x = Tone(997.0);
    x.pop_back();
    ExpectVoid(Read(x), VoidCode::kTooShort);
    Samples longer(100, 0.7);
    const Samples tone = Tone(997.0);
    longer.insert(longer.end(), tone.begin(), tone.end());
    EXPECT_LE(*Read(longer).thdnDb.value, -280.0);
}

TEST(MeasureTone, ALossReportedByTheEngineIsVoid) {
    const Samples x = Tone(997.0);
    Record record{x, kToneRateHz};
    record.loss = "512 frames lost";
    const Reading reading = AnalyzeTone(TonePlan(), record, ToneSettings{});
    ExpectVoid(reading, VoidCode::kDisturbed);
    EXPECT_EQ(reading.voids[0].sentence, "512 frames lost");
}

TEST(MeasureTone, LargeDcNeitherHidesTheToneNorPassesForOne) {
    for (const double dc : {0.5, -0.3}) {
        Samples x = Tone(997.0);
        for (double& value : x) value = 1e-3 * value + dc;
        const Reading reading = Read(x);
        ASSERT_TRUE(reading.Valid());
        EXPECT_NEAR(*reading.frequencyHz.value, 997.0, 1e-6);
        EXPECT_NEAR(*reading.dc.value, dc, 1e-12);
    }
}

TEST(MeasureTone, SamplesThatAreNotFiniteAreVoid) {
    for (const double wrong :
         {std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::infinity(),
          -std::numeric_limits<double>::infinity(), 1e300}) {
        Samples x = Tone(997.0);
        x[kToneLength - 1] = wrong;
        ExpectVoid(Read(x), VoidCode::kNotFinite);
    }
}

// A tone whose largest sample has this value.
Samples ToneWithPeak(double peak) {
    Samples x = Tone(997.0);
    const double highest = *std::max_element(x.begin(), x.end());
    for (double& value : x) value *= peak / highest;
    return x;
}

TEST(MeasureTone, FullScaleIsAnOverloadLiveAndAWarningInARecording) {
    const Samples loud = ToneWithPeak(1.0 - 1.4 / 32768.0);
    Record record{loud, kToneRateHz, 16, false};
    EXPECT_TRUE(ReadingWarns(AnalyzeTone(TonePlan(), record, ToneSettings{}), WarningCode::kClipped));
    record.live = true;
    ExpectVoid(AnalyzeTone(TonePlan(), record, ToneSettings{}), VoidCode::kOverload);
    const Samples lower = ToneWithPeak(1.0 - 1.6 / 32768.0);
    record.samples = lower;
    EXPECT_TRUE(AnalyzeTone(TonePlan(), record, ToneSettings{}).Valid());
}

TEST(MeasureTone, FloatsOverloadAtFullScale) {
    const Samples below = ToneWithPeak(0.9999999);
    Record record{below, kToneRateHz, 24, true, true};
    EXPECT_TRUE(AnalyzeTone(TonePlan(), record, ToneSettings{}).Valid());
    const Samples full = ToneWithPeak(1.0);
    record.samples = full;
    ExpectVoid(AnalyzeTone(TonePlan(), record, ToneSettings{}), VoidCode::kOverload);
}

TEST(MeasureTone, ALivePathOf16BitsIsAWarning) {
    const Samples x = Tone(997.0);
    Record record{x, kToneRateHz, 16, false, true};
    EXPECT_TRUE(ReadingWarns(AnalyzeTone(TonePlan(), record, ToneSettings{}), WarningCode::kLimitedBy16Bit));
    record.live = false;
    EXPECT_FALSE(ReadingWarns(AnalyzeTone(TonePlan(), record, ToneSettings{}), WarningCode::kLimitedBy16Bit));
    record = {x, kToneRateHz, 24, false, true};
    EXPECT_FALSE(ReadingWarns(AnalyzeTone(TonePlan(), record, ToneSettings{}), WarningCode::kLimitedBy16Bit));
}

// A recording of 24 bits that was made through 16 is not what its format promises.
TEST(MeasureTone, WordsThatMoveOnlyTheUpper16BitsAreAWarning) {
    const auto warns = [](std::span<const double> samples, int bits, bool floatingPoint = false) {
        const Record record{samples, kToneRateHz, bits, floatingPoint};
        return ReadingWarns(AnalyzeTone(TonePlan(), record, ToneSettings{}), WarningCode::kLimitedBy16Bit);
    };
    Samples narrow = Tone(997.0);
    for (double& sample : narrow) sample = std::round(sample * 32768.0) / 32768.0;
    EXPECT_TRUE(warns(narrow, 24));
    EXPECT_TRUE(warns(narrow, 17));
    EXPECT_FALSE(warns(narrow, 16)) << "no more is expected";
    EXPECT_FALSE(warns(narrow, 24, true));
    narrow[kToneLength / 2] += 1.0 / 65536.0;
    EXPECT_FALSE(warns(narrow, 17));
    EXPECT_FALSE(warns(narrow, 24));
}

TEST(MeasureTone, GainChangesOnlyTheLevel) {
    Samples x = Tone(997.0);
    AddHarmonic(x, 997.0, 2, 1e-4, 50.0);
    AddHarmonic(x, 997.0, 5, 1e-6, -70.0);
    signals::AddWhiteNoise(x, 1e-6, 9);
    const Reading full = Read(x);
    for (double& value : x) value *= -0.37;
    const Reading lower = Read(x);
    EXPECT_NEAR(*lower.levelDbfs.value, *full.levelDbfs.value + Decibels(0.37), 1e-10);
    EXPECT_NEAR(*lower.noiseDbfs.value, *full.noiseDbfs.value + Decibels(0.37), 1e-9);
    EXPECT_NEAR(*lower.frequencyHz.value, *full.frequencyHz.value, 1e-10);
    EXPECT_NEAR(*lower.thdDb.value, *full.thdDb.value, 1e-9);
    EXPECT_NEAR(*lower.thdnDb.value, *full.thdnDb.value, 1e-9);
    EXPECT_NEAR(*lower.snrDb.value, *full.snrDb.value, 1e-9);
    // Turned over, even harmonics turn by half a turn.
    EXPECT_NEAR(*HarmonicOf(lower, 2).phaseDegrees.value, 50.0 - 180.0, 0.01);
    EXPECT_NEAR(*HarmonicOf(lower, 5).phaseDegrees.value, *HarmonicOf(full, 5).phaseDegrees.value, 1e-6);
}

TEST(MeasureTone, TheStartOfTheRecordChangesNothing) {
    const ExactFrequency f(1003.7, kToneRateHz);
    Samples x = signals::Sine(kToneLength + 1000, f, 0.5, 0.1);
    signals::AddSine(x, f.Times(2), 1e-4, 1.0);
    signals::AddSine(x, f.Times(7), 1e-7, 2.0);
    const Reading late = Read(x);
    x.resize(kToneLength);
    const Reading early = Read(x);
    EXPECT_NEAR(*late.frequencyHz.value, *early.frequencyHz.value, 1e-10);
    EXPECT_NEAR(*late.thdDb.value, *early.thdDb.value, 1e-9);
    for (const int order : {2, 7}) {
        EXPECT_NEAR(*HarmonicOf(late, order).levelDbc.value, *HarmonicOf(early, order).levelDbc.value, 1e-6);
        EXPECT_NEAR(*HarmonicOf(late, order).phaseDegrees.value, *HarmonicOf(early, order).phaseDegrees.value,
                    1e-4);
    }
}

TEST(MeasureTone, ThdIsNeverAboveThdPlusNoise) {
    for (std::uint32_t seed = 0; seed < 30; ++seed) {
        Samples x = Tone(200.0 + 97.3 * seed);
        for (int order = 2; order <= 9; ++order)
            AddHarmonic(x, 200.0 + 97.3 * seed, order, 1e-5 * order, 10.0 * seed);
        signals::AddWhiteNoise(x, std::pow(10.0, -3.0 - 0.2 * seed), seed);
        const Reading reading = Read(x);
        ASSERT_TRUE(reading.Valid());
        EXPECT_LE(reading.thdDb.atMost ? -400.0 : *reading.thdDb.value, *reading.thdnDb.value) << seed;
    }
}

}  // namespace
}  // namespace sonavex
