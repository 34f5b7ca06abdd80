// Two tones with known products, multitones and noise against closed forms.

#include <gtest/gtest.h>

#include <algorithm>

#include "core/analyzer/MeasureLines.h"
#include "unit/analyzer/Signals.h"

namespace sonavex {
namespace {

using signals::ExactFrequency;
using LineSamples = signals::Samples;

constexpr double kLinesRateHz = 48000.0;
constexpr std::size_t kLinesLength = 32768;
constexpr Band kLinesBand{20.0, 20000.0};

const RecordPlan& LinesPlan() {
    static const RecordPlan kPlan(kLinesLength, kLinesRateHz);
    return kPlan;
}

struct ToneOf {
    double hertz;
    double amplitude;
};

// The frequency at which a tone is really generated times n1, plus that of another times n2.
ExactFrequency Mixed(double hertz1, int n1, double hertz2, int n2) {
    return {
        n1 * ExactFrequency(hertz1, kLinesRateHz).Hertz() + n2 * ExactFrequency(hertz2, kLinesRateHz).Hertz(),
        kLinesRateHz};
}

LineSamples Pair(ToneOf first, ToneOf second) {
    LineSamples x(kLinesLength);
    signals::AddSine(x, {first.hertz, kLinesRateHz}, first.amplitude, 0.2);
    signals::AddSine(x, {second.hertz, kLinesRateHz}, second.amplitude, 1.1);
    return x;
}

LinesReading PairReading(const LineSamples& x, std::vector<double> tones = {}) {
    return MakePairReading(LinesPlan(), MeasurePair(LinesPlan(), {x, kLinesRateHz}, tones, kLinesBand),
                           kLinesBand);
}

void Near(const Value& value, double expected, double relative) {
    ASSERT_TRUE(value.value.has_value());
    EXPECT_FALSE(value.atMost);
    EXPECT_NEAR(*value.value, expected, relative * std::abs(expected));
}

bool IsDropped(const LinesReading& reading, int n1, int n2) {
    return std::any_of(reading.dropped.begin(), reading.dropped.end(),
                       [=](const ProductValues& product) { return product.n1 == n1 && product.n2 == n2; });
}

// Side bands of known size beside the upper tone.
TEST(PairTest, ModulationOfSmallUpperTone) {
    for (const auto& [low, high] : {std::pair{60.3, 7000.7}, {250.0, 8000.0}, {41.0, 7993.0}}) {
        LineSamples x = Pair({low, 0.6}, {high, 0.15});
        signals::AddSine(x, Mixed(low, 1, high, 1), 0.15 * 0.010, 0.3);
        signals::AddSine(x, Mixed(low, -1, high, 1), 0.15 * 0.006, 0.4);
        signals::AddSine(x, Mixed(low, 2, high, 1), 0.15 * 0.003, 0.5);
        signals::AddSine(x, Mixed(low, -2, high, 1), 0.15 * 0.001, 0.6);
        const LinesReading reading = PairReading(x);
        ASSERT_TRUE(reading.reading.Valid()) << low;
        Near(reading.tones.at(0).frequencyHz, ExactFrequency(low, kLinesRateHz).Hertz(), 1e-9);
        Near(reading.tones.at(1).frequencyHz, ExactFrequency(high, kLinesRateHz).Hertz(), 1e-9);
        Near(reading.tones.at(0).levelDbfs, Decibels(0.6), 1e-6);
        Near(reading.tones.at(1).levelDbfs, Decibels(0.15), 1e-6);
        const Intermodulation& values = reading.intermodulation;
        Near(values.modD2, 0.016, 1e-7);
        Near(values.modD3, 0.004, 1e-7);
        Near(values.mod, std::hypot(0.016, 0.004), 1e-7);
        Near(values.modDb, Decibels(std::hypot(0.016, 0.004)), 1e-7);
        Near(values.modRms, std::sqrt(1e-6 * (100 + 36 + 9 + 1)), 1e-7);
        Near(values.modAes17, std::hypot(0.010, 0.006), 1e-7);
        EXPECT_TRUE(reading.reading.spurs.empty()) << reading.reading.spurs.front().frequencyHz;
    }
}

// a x + b x^2 + c x^3 of two equal tones.
TEST(PairTest, DifferenceTonesOfPolynomial) {
    constexpr double kEqualTones = 0.4;
    constexpr double kSquareFactor = 1e-3;
    constexpr double kCubeFactor = 5e-4;
    for (const auto& [low, high] : {std::pair{18999.3, 20001.1}, {18000.0, 20000.0}, {13000.0, 14000.0}}) {
        LineSamples x = Pair({low, kEqualTones}, {high, kEqualTones});
        for (double& value : x) value += kSquareFactor * value * value + kCubeFactor * value * value * value;
        const LinesReading reading = PairReading(x, {low, high});
        ASSERT_TRUE(reading.reading.Valid());
        const double tone = kEqualTones + kCubeFactor * 2.25 * std::pow(kEqualTones, 3.0);
        const double second = kSquareFactor * kEqualTones * kEqualTones;
        const double third = kCubeFactor * 0.75 * std::pow(kEqualTones, 3.0);
        const Intermodulation& values = reading.intermodulation;
        Near(values.dfdD2, second / (2.0 * tone), 1e-7);
        Near(values.dfdD3, 2.0 * third / (2.0 * tone), 1e-7);
        Near(values.dfdAes17, std::sqrt(second * second + 2.0 * third * third) / tone, 1e-7);
        Near(values.dfdAes17Db, Decibels(*values.dfdAes17.value), 1e-9);
    }
}

TEST(PairTest, PowerOfProductsInTheBand) {
    LineSamples x = Pair({3000.0, 0.4}, {4100.0, 0.3});
    signals::AddSine(x, Mixed(3000.0, 1, 4100.0, 1), 0.003);
    signals::AddSine(x, Mixed(3000.0, -1, 4100.0, 1), 0.004);
    signals::AddSine(x, Mixed(3000.0, 1, 4100.0, 4), 0.1);  // 19400 Hz
    signals::AddSine(x, Mixed(3000.0, 2, 4100.0, 0), 0.2);  // a harmonic is no product of both
    const LinesReading all = PairReading(x, {3000.0, 4100.0});
    Near(all.intermodulation.imdPower, std::sqrt(9e-6 + 16e-6 + 1e-2) / 0.5, 1e-7);
    const Band narrow{20.0, 10000.0};
    const LinesReading part = MakePairReading(
        LinesPlan(), MeasurePair(LinesPlan(), {x, kLinesRateHz}, std::vector{3000.0, 4100.0}, narrow),
        narrow);
    Near(part.intermodulation.imdPower, 0.005 / 0.5, 1e-7);
}

TEST(PairTest, ProductsBeyondTheRateAreNotDefined) {
    const LinesReading reading = PairReading(Pair({19000.0, 0.4}, {20000.0, 0.4}));
    EXPECT_FALSE(reading.intermodulation.modD2.value.has_value());
    EXPECT_FALSE(reading.intermodulation.mod.value.has_value());
    EXPECT_TRUE(reading.intermodulation.dfdD2.value.has_value());
}

TEST(PairTest, CoincidingProductsAreDroppedAndListed) {
    // f2 - f1 and 2 f1 - f2 are both 4000 Hz.
    const LinesReading reading = PairReading(Pair({8000.0, 0.4}, {12000.0, 0.4}));
    ASSERT_TRUE(reading.reading.Valid());
    EXPECT_FALSE(reading.intermodulation.dfdD3.value.has_value());
    EXPECT_FALSE(reading.intermodulation.dfdD2.value.has_value());
    EXPECT_TRUE(IsDropped(reading, -1, 1));
    EXPECT_TRUE(IsDropped(reading, 2, -1));
}

TEST(PairTest, ProductsNextToZeroOrHalfTheRateAreDroppedAndListed) {
    constexpr double kFiveBinsHz = 5.0 * kLinesRateHz / static_cast<double>(kLinesLength);
    const LinesReading low = PairReading(Pair({1000.0, 0.4}, {3000.0 + kFiveBinsHz, 0.4}));
    ASSERT_TRUE(low.reading.Valid());
    EXPECT_TRUE(IsDropped(low, -3, 1));
    const LinesReading high = PairReading(Pair({5000.0, 0.4}, {12000.0 - 0.5 * kFiveBinsHz, 0.4}));
    ASSERT_TRUE(high.reading.Valid());
    EXPECT_TRUE(IsDropped(high, 0, 2));
    EXPECT_FALSE(IsDropped(high, 0, 3)) << "it is above half the rate";
}

TEST(PairTest, NoiseHidesProducts) {
    LineSamples x = Pair({60.0, 0.6}, {7000.0, 0.15});
    signals::AddWhiteNoise(x, 1e-4, 5);
    const LinesReading reading = PairReading(x);
    ASSERT_TRUE(reading.reading.Valid());
    EXPECT_TRUE(reading.intermodulation.mod.atMost);
    EXPECT_FALSE(reading.intermodulation.mod.uncertainty.has_value());
    EXPECT_LT(*reading.intermodulation.mod.value, 1e-4);
    EXPECT_NEAR(*reading.reading.noiseDbfs.value, Decibels(1e-4 * std::sqrt(2.0)) - 0.79, 0.2);
}

TEST(PairTest, VoidWithoutTwoTones) {
    const auto codeOf = [](const LineSamples& x) {
        const LinesReading reading = PairReading(x);
        return reading.reading.Valid() ? std::string()
                                       : std::string(Name(reading.reading.voids.front().code));
    };
    EXPECT_EQ(codeOf(LineSamples(kLinesLength)), "silence");
    LineSamples noise(kLinesLength);
    signals::AddWhiteNoise(noise, 0.01, 3);
    EXPECT_EQ(codeOf(noise), "no tone");
    EXPECT_EQ(codeOf(LineSamples(100)), "too short");
    EXPECT_EQ(codeOf(Pair({60.0, 0.6}, {7000.0, 0.15})), "");
}

TEST(PairTest, LostSampleIsFound) {
    for (const auto& [low, high] : {std::pair{60.0, 7000.0}, {19000.0, 20000.0}}) {
        LineSamples x = Pair({low, 0.6}, {high, 0.15});
        x.insert(x.begin() + 12000, x[12000]);
        x.pop_back();
        const LinesReading reading = PairReading(x);
        ASSERT_FALSE(reading.reading.Valid()) << low;
        EXPECT_EQ(reading.reading.voids.front().code, VoidCode::kDisturbed);
    }
}

const std::vector<double> kMultitoneHz = {100.0, 317.3, 1003.1, 3171.0, 9997.7};

// A multitone whose clock is 12.3 ppm fast.
LineSamples Multitone() {
    LineSamples x(kLinesLength);
    double phase = 0.0;
    for (const double hertz : kMultitoneHz)
        signals::AddSine(x, {hertz * 1.0000123, kLinesRateHz}, 0.1, phase += 1.3);
    return x;
}

LinesReading MultitoneReading(const LineSamples& x, const Band& band = kLinesBand) {
    return MakeMultitoneReading(LinesPlan(),
                                MeasureMultitone(LinesPlan(), {x, kLinesRateHz}, kMultitoneHz, band), band);
}

TEST(MultitoneTest, PureTonesLeaveNothing) {
    const LinesReading reading = MultitoneReading(Multitone());
    ASSERT_TRUE(reading.reading.Valid());
    ASSERT_EQ(reading.tones.size(), kMultitoneHz.size());
    for (std::size_t i = 0; i < kMultitoneHz.size(); ++i) {
        Near(reading.tones[i].frequencyHz, kMultitoneHz[i] * 1.0000123, 1e-9);
        Near(reading.tones[i].levelDbfs, -20.0, 1e-6);
    }
    EXPECT_LT(*reading.tdnDb.value, -220.0);
}

TEST(MultitoneTest, DistortionAndNoiseRelativeToTheTotal) {
    LineSamples x = Multitone();
    signals::AddSine(x, {2345.6, kLinesRateHz}, 0.001);
    const double rest = 0.5e-6;
    EXPECT_NEAR(*MultitoneReading(x).tdnDb.value, 10.0 * std::log10(rest / (rest + 5 * 0.005)), 1e-4);
    signals::AddWhiteNoise(x, 1e-3, 9);
    const double noisy = rest + 1e-6 * 19980.0 / 24000.0;
    EXPECT_NEAR(*MultitoneReading(x).tdnDb.value, 10.0 * std::log10(noisy / (noisy + 5 * 0.005)), 0.2);
    // Only what lies in the band counts, tones too.
    const double narrow = 1e-6 * 1980.0 / 24000.0;
    EXPECT_NEAR(*MultitoneReading(x, {20.0, 2000.0}).tdnDb.value,
                10.0 * std::log10(narrow / (narrow + 3 * 0.005)), 0.5);
}

TEST(MultitoneTest, MissingToneIsVoid) {
    LineSamples x(kLinesLength);
    signals::AddSine(x, {kMultitoneHz[4], kLinesRateHz}, 0.1);
    signals::AddWhiteNoise(x, 1e-3, 9);
    const LinesReading reading = MultitoneReading(x);
    ASSERT_FALSE(reading.reading.Valid());
    EXPECT_EQ(reading.reading.voids.front().code, VoidCode::kNoTone);
}

TEST(MultitoneTest, OneDamagedSampleIsFound) {
    const LineSamples sound = Multitone();
    const auto place = std::find_if(sound.begin() + 12345, sound.end(), [](double x) { return x > 0.2; });
    const std::ptrdiff_t at = place - sound.begin();
    LineSamples lost = sound;
    lost.erase(lost.begin() + at);
    lost.push_back(sound.back());
    LineSamples repeated = sound;
    repeated.insert(repeated.begin() + at, *place);
    repeated.pop_back();
    LineSamples zeroed = sound;
    zeroed[static_cast<std::size_t>(at)] = 0.0;
    for (LineSamples x : {lost, repeated, zeroed}) {
        signals::AddWhiteNoise(x, 1e-4, 2);
        const LinesReading reading = MultitoneReading(x);
        ASSERT_FALSE(reading.reading.Valid());
        EXPECT_EQ(reading.reading.voids.front().code, VoidCode::kDisturbed);
    }
    LineSamples steady = sound;
    signals::AddWhiteNoise(steady, 1e-4, 2);
    EXPECT_TRUE(MultitoneReading(steady).reading.Valid());
}

TEST(MultitoneTest, TonesThatCannotBeFitted) {
    EXPECT_FALSE(TonesFault(LinesPlan(), kMultitoneHz).has_value());
    EXPECT_TRUE(TonesFault(LinesPlan(), std::vector{5.0, 1000.0}).has_value());
    EXPECT_TRUE(TonesFault(LinesPlan(), std::vector{1000.0, 23999.0}).has_value());
    EXPECT_TRUE(TonesFault(LinesPlan(), std::vector{1000.0, 1003.0}).has_value());
}

LinesReading NoiseReading(const LineSamples& x) {
    return MakeNoiseReading(LinesPlan(), MeasureNoise(LinesPlan(), {x, kLinesRateHz}), kLinesBand);
}

TEST(NoiseModeTest, LevelsOfWhiteNoise) {
    LineSamples x(kLinesLength, 0.01);
    signals::AddWhiteNoise(x, 1e-3, 4);
    const LinesReading reading = NoiseReading(x);
    ASSERT_TRUE(reading.reading.Valid());
    const double level = Decibels(1e-3 * std::sqrt(2.0));
    EXPECT_NEAR(*reading.reading.levelDbfs.value, level, 0.15);
    EXPECT_NEAR(*reading.reading.noiseDbfs.value, level + 10.0 * std::log10(19980.0 / 24000.0), 0.15);
    EXPECT_NEAR(*reading.reading.noiseADbfs.value, level - 2.84, 0.25);
    EXPECT_NEAR(*reading.reading.noiseCcirRmsDbfs.value, level + 0.875, 0.25);
    EXPECT_NEAR(*reading.reading.dc.value, 0.01, 1e-4);
    EXPECT_NEAR(*reading.peakDbfs.value, Decibels(0.0145), 1.0);
    EXPECT_TRUE(reading.reading.spurs.empty());
}

TEST(NoiseModeTest, ToneInNoiseIsSpurRelativeToFullScale) {
    LineSamples x(kLinesLength);
    signals::AddWhiteNoise(x, 1e-4, 4);
    signals::AddSine(x, {1234.5, kLinesRateHz}, 0.01);
    const LinesReading reading = NoiseReading(x);
    ASSERT_EQ(reading.reading.spurs.size(), 1U);
    EXPECT_NEAR(reading.reading.spurs[0].frequencyHz, 1234.5, 0.01);
    EXPECT_NEAR(reading.reading.spurs[0].levelDbc, -40.0, 0.05);
}

TEST(NoiseModeTest, SilenceIsValid) {
    const LinesReading reading = NoiseReading(LineSamples(kLinesLength));
    EXPECT_TRUE(reading.reading.Valid());
    EXPECT_EQ(*reading.reading.noiseDbfs.value, -400.0);
    LineSamples notFinite(kLinesLength);
    notFinite[5] = NAN;
    EXPECT_FALSE(NoiseReading(notFinite).reading.Valid());
}

TEST(NoiseModeTest, ConstantWordsShowNoPathOf16Bits) {
    LineSamples x(kLinesLength, 0.25);
    const Record record{x, kLinesRateHz, 24, false};
    EXPECT_TRUE(MeasureNoise(LinesPlan(), record).warnings.empty());
    for (std::size_t n = 0; n < x.size(); n += 2) x[n] += 1.0 / 32768.0;
    const LinesMeasurement flicker = MeasureNoise(LinesPlan(), record);
    ASSERT_EQ(flicker.warnings.size(), 1U);
    EXPECT_EQ(flicker.warnings.front().code, WarningCode::kLimitedBy16Bit);
}

TEST(NoiseModeTest, ClicksAreDamageAndManyAreAWarning) {
    LineSamples x(kLinesLength);
    signals::AddWhiteNoise(x, 1e-4, 4);
    x[20000] += 0.01;
    const LinesReading one = NoiseReading(x);
    ASSERT_EQ(one.reading.voids.size(), 1U);
    EXPECT_EQ(one.reading.voids.front().sentence, "Burst at 0.42 s.");
    for (std::size_t n = 100; n < x.size(); n += 960) x[n] += 0.01;
    const LinesReading many = NoiseReading(x);
    ASSERT_TRUE(many.reading.Valid());
    ASSERT_EQ(many.reading.warnings.size(), 1U);
    EXPECT_EQ(many.reading.warnings.front().code, WarningCode::kImpulsiveNoise);
}

TEST(NoiseModeTest, ALostSampleIsFoundInHumAndNotInWhiteNoise) {
    LineSamples hum(kLinesLength + 1);
    signals::AddSine(hum, {50.0, kLinesRateHz}, 0.01);
    signals::AddWhiteNoise(hum, 1e-7, 4);
    LineSamples white(kLinesLength + 1);
    signals::AddWhiteNoise(white, 1e-4, 4);
    for (LineSamples* const x : {&hum, &white}) x->erase(x->begin() + 12005);
    EXPECT_FALSE(NoiseReading(hum).reading.Valid());
    EXPECT_TRUE(NoiseReading(white).reading.Valid());
}

// Faint noise in words of 16 bits flickers by one code now and then.
TEST(NoiseModeTest, FlickerOfTheLastBitIsNoDamage) {
    for (const double codes : {0.1, 0.15, 0.2, 0.3, 0.5}) {
        for (std::uint32_t seed = 0; seed < 10; ++seed) {
            LineSamples x(kLinesLength);
            signals::AddWhiteNoise(x, codes / 32768.0, seed);
            signals::Quantise(x, 16);
            const LinesReading reading = MakeNoiseReading(
                LinesPlan(), MeasureNoise(LinesPlan(), {x, kLinesRateHz, 16, false}), kLinesBand);
            EXPECT_TRUE(reading.reading.Valid()) << codes << ' ' << seed;
        }
    }
}

// Records that overlap by 75 %, as they are averaged.
TEST(LinesMeanTest, NoiseOfTheMeanVariesLess) {
    LineSamples x(kLinesLength * 3);
    signals::AddWhiteNoise(x, 1e-4, 4);
    signals::AddSine(x, {60.0, kLinesRateHz}, 0.6);
    signals::AddSine(x, {7000.0, kLinesRateHz}, 0.15);
    std::optional<LinesMeasurement> mean;
    for (std::size_t start = 0; start + kLinesLength <= x.size(); start += kLinesLength / 4)
        AddToMean(mean, MeasurePair(LinesPlan(), {std::span(x).subspan(start, kLinesLength), kLinesRateHz},
                                    {}, kLinesBand));
    ASSERT_EQ(mean->blocks, 9U);
    const LinesReading averaged = MakePairReading(LinesPlan(), *mean, kLinesBand);
    const LinesReading single = PairReading(LineSamples(x.begin(), x.begin() + kLinesLength));
    EXPECT_LT(*averaged.tones[1].levelDbfs.uncertainty, 0.6 * *single.tones[1].levelDbfs.uncertainty);
    EXPECT_LT(*averaged.intermodulation.mod.value, *single.intermodulation.mod.value);
    // Another level begins a new mean.
    AddToMean(mean,
              MeasurePair(LinesPlan(), {Pair({60.0, 0.5}, {7000.0, 0.15}), kLinesRateHz}, {}, kLinesBand));
    EXPECT_EQ(mean->blocks, 1U);
}

}  // namespace
}  // namespace sonavex
