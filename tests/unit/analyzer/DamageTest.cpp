// Records with damage are void, steady records with any interference are not.

#include <gtest/gtest.h>

#include <cstdlib>
#include <functional>
#include <string>

#include "core/analyzer/MeasureTone.h"
#include "unit/analyzer/Signals.h"

namespace sonavex {
namespace {

using signals::ExactFrequency;
using signals::Samples;

constexpr double kDamagedRateHz = 48000.0;
constexpr std::size_t kDamagedLength = 65536;
constexpr double kLevel = 0.8;

const RecordPlan& DamagedPlan() {
    static const RecordPlan kPlan(kDamagedLength, kDamagedRateHz);
    return kPlan;
}

// Four more samples than a record, for those that get lost.
Samples LongTone(double hertz) {
    return signals::Sine(kDamagedLength + 4, ExactFrequency(hertz, kDamagedRateHz), kLevel, 0.7);
}

Reading ReadingOf(const Samples& x, int bits = 53) {
    return AnalyzeTone(DamagedPlan(),
                       {.samples = std::span(x).first(kDamagedLength),
                        .rateHz = kDamagedRateHz,
                        .bits = bits,
                        .floatingPoint = bits == 53},
                       {});
}

bool Disturbed(const Reading& reading) {
    return reading.voids.size() == 1 && reading.voids.front().code == VoidCode::kDisturbed;
}

bool Warns(const Reading& reading, WarningCode code) {
    for (const Warning& warning : reading.warnings)
        if (warning.code == code) return true;
    return false;
}

// What is damaged, and where.
using Fault = void (*)(Samples&, std::ptrdiff_t);

void Lose(Samples& x, std::ptrdiff_t at) {
    x.erase(x.begin() + at);
}
void Repeat(Samples& x, std::ptrdiff_t at) {
    x.insert(x.begin() + at, x[static_cast<std::size_t>(at)]);
}
void Zero(Samples& x, std::ptrdiff_t at) {
    // A sample near a zero crossing changes too little.
    while (std::abs(x[static_cast<std::size_t>(at)]) < 0.3 * kLevel) ++at;
    x[static_cast<std::size_t>(at)] = 0.0;
}

struct NamedFault {
    const char* name;
    Fault fault;
};
constexpr NamedFault kFaults[] = {{"lost", Lose}, {"repeated", Repeat}, {"zeroed", Zero}};
constexpr double kPlaces[] = {0.03, 0.33, 0.6, 0.97};

// The long form of these tests: all places and ten seeds.
bool Thorough() {
    return std::getenv("SONAVEX_ALL_DAMAGE") != nullptr;
}

class Damaged : public testing::TestWithParam<double> {
protected:
    // Each fault at each place of a record that `prepare` has changed; `finish` follows the fault.
    static void ExpectAllFound(const std::function<void(Samples&)>& prepare,
                               const std::function<void(Samples&)>& finish) {
        Samples sound = LongTone(GetParam());
        prepare(sound);
        std::size_t turn = 0;
        for (const auto& [name, fault] : kFaults)
            for (const double place : kPlaces) {
                // Each fault at another place.
                if (!Thorough() && ++turn % 5 != 0 && turn != 1) continue;
                Samples x = sound;
                // A repeated sample at a crest is no change.
                fault(x, Slope(sound, place));
                finish(x);
                EXPECT_TRUE(Disturbed(ReadingOf(x))) << name << " at " << place << " of " << GetParam();
            }
    }

private:
    static std::ptrdiff_t Slope(const Samples& x, double place) {
        auto at = static_cast<std::size_t>(place * kDamagedLength);
        while (std::abs(x[at]) > 0.7 * kLevel) ++at;
        return static_cast<std::ptrdiff_t>(at);
    }
};

void Nothing(Samples&) {}

TEST_P(Damaged, OneSampleInDoubles) {
    ExpectAllFound(Nothing, Nothing);
}

TEST_P(Damaged, OneSampleIn16Bit) {
    ExpectAllFound(Nothing, [](Samples& x) { signals::Quantise(x, 16); });
}

TEST_P(Damaged, OneSampleInNoise) {
    // 57 dB below the tone, 70 dB for low tones, whose phase a lost sample turns less.
    const double noise =
        kLevel / std::sqrt(2.0) * std::pow(10.0, (GetParam() < 100.0 ? -70.0 : -57.0) / 20.0);
    ExpectAllFound([=](Samples& x) { signals::AddWhiteNoise(x, noise, 7); }, Nothing);
}

TEST_P(Damaged, OneSampleUnderDistortion) {
    // 12 % at harmonics 2 and 3, where they fit below half the rate.
    const ExactFrequency f(GetParam(), kDamagedRateHz);
    ExpectAllFound(
        [&](Samples& x) {
            signals::AddSine(x, f.Times(2), 0.1 * kLevel, 1.0);
            if (3.0 * GetParam() < 0.5 * kDamagedRateHz) signals::AddSine(x, f.Times(3), 0.066 * kLevel, 2.0);
        },
        Nothing);
}

INSTANTIATE_TEST_SUITE_P(Tones, Damaged, testing::Values(20.0, 100.0, 997.0, 10000.0));

TEST(DamageTest, SentenceNamesPlaceAndSize) {
    Samples x = LongTone(997.0);
    Lose(x, 19680);
    const Reading reading = ReadingOf(x);
    ASSERT_TRUE(Disturbed(reading));
    EXPECT_EQ(reading.voids.front().sentence, "Break at 0.41 s, 1 sample.");
    EXPECT_FALSE(reading.thdDb.value.has_value());
}

TEST(DamageTest, ManySamplesLostAreFound) {
    // Ten periods of a 1000.366 Hz tone but 1.3 degrees.
    Samples x = signals::Sine(kDamagedLength + 480, ExactFrequency(1000.366, kDamagedRateHz), kLevel);
    x.erase(x.begin() + 30000, x.begin() + 30480);
    EXPECT_TRUE(Disturbed(ReadingOf(x)));
}

TEST(DamageTest, BlockPlayedTwiceIsFound) {
    Samples x = LongTone(997.0);
    std::copy_n(x.begin() + 20480, 2048, x.begin() + 22528);
    EXPECT_TRUE(Disturbed(ReadingOf(x)));
}

TEST(DamageTest, ManyLossesAreFound) {
    Samples x = signals::Sine(kDamagedLength + 64, ExactFrequency(997.0, kDamagedRateHz), kLevel);
    for (std::ptrdiff_t i = 0; i < 32; ++i) Lose(x, 1000 + 2000 * i);
    EXPECT_TRUE(Disturbed(ReadingOf(x)));
}

TEST(DamageTest, FaintClickIn24BitIsFound) {
    Samples x = LongTone(997.0);
    x[40000] += 1e-4;
    signals::QuantiseWithDither(x, 24, 3);
    const Reading reading = ReadingOf(x, 24);
    ASSERT_TRUE(Disturbed(reading));
    EXPECT_EQ(reading.voids.front().sentence, "Burst at 0.83 s.");
}

TEST(DamageTest, SmallStepOfGainIsFound) {
    Samples x = LongTone(997.0);
    for (std::size_t n = 33000; n < x.size(); ++n) x[n] *= 1.001;  // 0.0087 dB
    signals::QuantiseWithDither(x, 24, 3);
    EXPECT_TRUE(Disturbed(ReadingOf(x, 24)));
}

// Interference on a steady tone. The parameters are the tone's frequency and a seed.
struct Steady {
    const char* name;
    void (*interfere)(Samples&, double hertz, std::uint32_t seed);
};

void MultiplyEach(Samples& x, const std::function<double(double seconds)>& gain) {
    for (std::size_t n = 0; n < x.size(); ++n) x[n] *= gain(static_cast<double>(n) / kDamagedRateHz);
}

// Integrated `times` over white noise, with the rms relative to the tone.
Samples ColouredNoise(std::size_t length, int times, double rms, std::uint32_t seed) {
    Samples noise(length);
    signals::AddWhiteNoise(noise, 1.0, seed);
    for (int i = 0; i < times; ++i) {
        double sum = 0.0;
        for (double& value : noise) value = sum = 0.9995 * sum + value;
    }
    double square = 0.0;
    for (const double value : noise) square += value * value / static_cast<double>(length);
    for (double& value : noise) value *= rms / std::sqrt(square);
    return noise;
}

void Add(Samples& x, const Samples& y) {
    for (std::size_t n = 0; n < x.size(); ++n) x[n] += y[n];
}

// A tone whose phase (radians) follows the function of time.
void ReplaceByPhase(Samples& x, double hertz, const std::function<double(std::size_t)>& phase) {
    const ExactFrequency f(hertz, kDamagedRateHz);
    for (std::size_t n = 0; n < x.size(); ++n)
        x[n] = kLevel * std::sin(static_cast<double>(f.Phase(n)) + phase(n));
}

// Phase in turns, 0 to 1.
double Turns(std::size_t n, double hertz) {
    const double turns = static_cast<double>(n) * hertz / kDamagedRateHz;
    return turns - std::floor(turns);
}

const Steady kSteady[] = {
    {"white noise", [](Samples& x, double, std::uint32_t seed) { signals::AddWhiteNoise(x, 0.03, seed); }},
    {"faint noise", [](Samples& x, double, std::uint32_t seed) { signals::AddWhiteNoise(x, 1e-7, seed); }},
    {"low noise",
     [](Samples& x, double, std::uint32_t seed) { Add(x, ColouredNoise(x.size(), 1, 0.01, seed)); }},
    {"lower noise",
     [](Samples& x, double, std::uint32_t seed) { Add(x, ColouredNoise(x.size(), 2, 0.01, seed)); }},
    {"phase noise",
     [](Samples& x, double hertz, std::uint32_t seed) {
         const Samples noise = ColouredNoise(x.size(), 1, 1e-3, seed);
         ReplaceByPhase(x, hertz, [&](std::size_t n) { return noise[n]; });
     }},
    {"wow, flutter and tremolo",
     [](Samples& x, double hertz, std::uint32_t seed) {
         ReplaceByPhase(x, hertz, [&](std::size_t n) {
             return 0.01 * std::sin(2.0 * std::numbers::pi * Turns(n, 4.0 + 0.1 * seed));
         });
         MultiplyEach(x, [](double t) { return 1.0 + 0.01 * std::sin(2.0 * std::numbers::pi * 6.3 * t); });
     }},
    {"hum",
     [](Samples& x, double, std::uint32_t) {
         signals::AddSine(x, ExactFrequency(50.0, kDamagedRateHz), 0.03 * kLevel);
         signals::AddSine(x, ExactFrequency(150.0, kDamagedRateHz), 0.01 * kLevel);
     }},
    {"spur",
     [](Samples& x, double hertz, std::uint32_t seed) {
         signals::AddSine(x, ExactFrequency(hertz * 1.37 + 10.0 * seed, kDamagedRateHz), 0.1 * kLevel);
     }},
    {"hard clipping",
     [](Samples& x, double, std::uint32_t) {
         for (double& value : x) value = std::clamp(value, -0.6 * kLevel, 0.6 * kLevel);
     }},
    {"crossover distortion",
     [](Samples& x, double, std::uint32_t) {
         for (double& value : x) value = std::abs(value) < 0.05 ? 0.0 : value - std::copysign(0.05, value);
     }},
    {"square without band limit",
     [](Samples& x, double, std::uint32_t) {
         for (double& value : x) value = std::copysign(kLevel, value);
     }},
    {"sawtooth without band limit",
     [](Samples& x, double hertz, std::uint32_t) {
         for (std::size_t n = 0; n < x.size(); ++n) x[n] = 2.0 * Turns(n, hertz) - 1.0;
     }},
    {"pulse",
     [](Samples& x, double hertz, std::uint32_t) {
         for (std::size_t n = 0; n < x.size(); ++n) x[n] = Turns(n, hertz) < 0.1 ? kLevel : 0.0;
     }},
    {"drift of level and clock",
     [](Samples& x, double hertz, std::uint32_t) {
         ReplaceByPhase(x, hertz, [&](std::size_t n) {
             const double t = static_cast<double>(n) / kDamagedRateHz;
             return 2.0 * std::numbers::pi * hertz * 0.5e-6 * t * t;
         });
         MultiplyEach(x, [](double t) { return 1.0 + 1e-3 * t; });
     }},
    {"8 bit", [](Samples& x, double, std::uint32_t) { signals::Quantise(x, 8); }},
    {"16 bit with dither",
     [](Samples& x, double, std::uint32_t seed) { signals::QuantiseWithDither(x, 16, seed); }},
    {"spikes",
     [](Samples& x, double, std::uint32_t seed) {
         const double every = kDamagedRateHz / (seed % 3 == 0 ? 50.0 : seed % 3 == 1 ? 100.0 : 120.0);
         for (double at = 100.0; at < static_cast<double>(x.size()); at += every)
             x[static_cast<std::size_t>(at)] += 0.05;
     }},
    {"noise bursts",
     [](Samples& x, double, std::uint32_t seed) {
         Samples noise(x.size());
         signals::AddWhiteNoise(noise, 0.02, seed);
         const double repetition = seed % 3 == 0 ? 50.0 : seed % 3 == 1 ? 100.0 : 120.0;
         for (std::size_t n = 0; n < x.size(); ++n)
             if (Turns(n, repetition) < 0.1) x[n] += noise[n];
     }},
};

TEST(DamageTest, SteadyRecordsAreNotDisturbed) {
    const bool all = Thorough();
    for (const auto& [name, interfere] : kSteady)
        for (const double hertz : {20.0, 63.1, 997.0, 4000.0, 10007.3}) {
            const std::uint32_t seeds = all ? 10 : 3;
            for (std::uint32_t seed = 0; seed < seeds; ++seed) {
                if (!all && seed != static_cast<std::uint32_t>(hertz) % 3 && std::string(name) != "spikes")
                    continue;
                Samples x = LongTone(hertz);
                interfere(x, hertz, seed);
                const Reading reading = ReadingOf(x);
                EXPECT_TRUE(reading.Valid()) << name << " " << hertz << " seed " << seed << ": "
                                             << (reading.Valid() ? "" : reading.voids.front().sentence);
            }
        }
}

TEST(DamageTest, RecurringBurstsAreAWarning) {
    Samples x = LongTone(997.0);
    for (std::size_t n = 100; n < x.size(); n += 480) x[n] += 0.05;
    EXPECT_TRUE(Warns(ReadingOf(x), WarningCode::kImpulsiveNoise));
    EXPECT_FALSE(Warns(ReadingOf(LongTone(997.0)), WarningCode::kImpulsiveNoise));
}

}  // namespace
}  // namespace sonavex
