#include <gtest/gtest.h>

#include <cmath>

#include "support/Errors.h"
#include "support/GeneratorBench.h"

namespace sonavex {
namespace {

constexpr double kPi = 3.14159265358979;
constexpr double kTwoPi = 6.28318530717958;

TEST(FrequencyCheck, RemembersTheSweepFrequencyAndComputesIncrements) {
    GeneratorBench bench(48000);
    ToneRecord& tone = bench.Add(wave::kSine, 1000.0);
    bench.Run();
    tone.Frequency = 2000.0;
    tone.SweepFrequency = 1500.0;
    bench.Fill();
    EXPECT_EQ(tone.LastFrequency, 1500.0);
    EXPECT_EQ(tone.Period, 24.0);
    EXPECT_EQ(tone.PhaseIncrement, kTwoPi / 24.0);
}

TEST(FrequencyCheck, ComputesAgainAsLongAsTheTwoDiffer) {
    GeneratorBench bench(48000);
    ToneRecord& tone = bench.Add(wave::kSine, 1000.0);
    bench.Run();
    tone.Frequency = 2000.0;
    tone.SweepFrequency = 1500.0;
    bench.Fill();
    bench.shared.SampleRate = 24000;
    bench.Fill();
    EXPECT_EQ(tone.Period, 12.0);
    tone.SweepFrequency = 2000.0;
    bench.Fill();
    EXPECT_EQ(tone.LastFrequency, 2000.0);
    bench.shared.SampleRate = 48000;
    bench.Fill();
    EXPECT_EQ(tone.Period, 12.0);
}

TEST(FrequencyCheck, IsOverWhenTheFillReturns) {
    GeneratorBench bench;
    bench.Add(wave::kSine, 1000.0);
    bench.Run();
    bench.generator.ToneUpdateBusy = true;
    bench.Fill();
    EXPECT_FALSE(bench.generator.ToneUpdateBusy);
}

TEST(Phase, OfASineIsContinuousOverAChangeOfFrequency) {
    GeneratorBench bench(48000);
    ToneRecord& tone = bench.Add(wave::kSine, 1000.0);
    bench.Run();
    bench.Fill();
    const double phase = tone.Phase;
    tone.Frequency = tone.SweepFrequency = 1234.5;
    const auto next = bench.Fill();
    EXPECT_NEAR(next[0], 8191.75 * std::sin(phase + kTwoPi / (48000 / 1234.5)), 1e-8);
}

TEST(Phase, OfTheOtherWavesContinuesAtItsCount) {
    for (const std::int16_t type : {wave::kSquare, wave::kTriangle, wave::kSawtooth}) {
        GeneratorBench bench(48000);
        ToneRecord& tone = bench.Add(type, 480.0);  // cycle of 101 samples
        bench.Run();
        bench.Fill();
        EXPECT_EQ(tone.SampleCount, kBlock % 101);
        tone.Frequency = tone.SweepFrequency = 240.0;  // period 200
        bench.Fill(1);
        EXPECT_EQ(tone.SampleCount, kBlock % 101 + 1);
        EXPECT_EQ(tone.Period, 200.0);
    }
}

// A square wave leaves its phase at three quarters of a turn.
TEST(Phase, OfASineThatWasASquareStaysWithinHalfATurn) {
    for (const double frequencyHz : {1000.0, 24000.0, 45600.0}) {
        GeneratorBench bench(48000);
        ToneRecord& tone = bench.Add(wave::kSquare, 100.0);
        bench.Run();
        bench.Fill(400);
        ASSERT_GT(tone.Phase, kPi);
        tone.WaveType = wave::kSine;
        tone.Frequency = tone.SweepFrequency = frequencyHz;
        const double before = tone.Phase;
        const auto sine = bench.Fill(1);
        EXPECT_GT(tone.Phase, -kPi) << frequencyHz;
        EXPECT_LE(tone.Phase, kPi) << frequencyHz;
        EXPECT_NEAR(sine[0], 8191.75 * std::sin(before + kTwoPi * frequencyHz / 48000.0), 1e-8);
    }
}

TEST(Phase, OfASineStaysWithinHalfATurn) {
    for (const double frequencyHz : {1.0, 997.0, 12000.0, 23999.0, 24000.0}) {
        GeneratorBench bench(48000);
        const ToneRecord& tone = bench.Add(wave::kSine, frequencyHz);
        bench.Run();
        for (int block = 0; block < 5000; ++block) {
            bench.generator.FillGeneratorBlock(bench.first, bench.second, 1 + block % 2048);
            ASSERT_GT(tone.Phase, -kPi - 1e-9) << frequencyHz;
            ASSERT_LE(tone.Phase, kPi) << frequencyHz;
        }
    }
}

TEST(Phase, OfASineStaysWithinHalfATurnAfterEveryStep) {
    GeneratorBench bench(44100);
    const ToneRecord& tone = bench.Add(wave::kSine, 7777.0);
    bench.Run();
    for (int i = 0; i < 20000; ++i) {
        const double before = tone.Phase;
        bench.generator.FillGeneratorBlock(bench.first, bench.second, 1);
        const double advanced = before + tone.PhaseIncrement;
        ASSERT_EQ(tone.Phase, advanced > kPi ? advanced - kTwoPi : advanced);
        ASSERT_GT(tone.Phase, -kPi);
        ASSERT_LE(tone.Phase, kPi);
    }
}

TEST(ResetTonePhases, StartsChangedTonesAndKeepsTheOthers) {
    GeneratorBench bench(48000);
    ToneRecord& kept = bench.Add(wave::kSine, 1000.0);
    ToneRecord& changed = bench.Add(wave::kSawtooth, 480.0);
    bench.Run();
    bench.Fill(30);
    const ToneRecord before = kept;
    ASSERT_NE(before.Phase, 0.0);
    changed.Frequency = 960.0;
    changed.SweepFrequency = 111.0;
    bench.generator.ResetTonePhases();
    EXPECT_EQ(kept.Phase, before.Phase);
    EXPECT_EQ(kept.PhaseIncrement, before.PhaseIncrement);
    EXPECT_EQ(changed.Phase, 0.0);
    EXPECT_EQ(changed.SampleCount, 0.0);
    EXPECT_EQ(changed.LastFrequency, 960.0);  // the frequency itself, unlike FillGeneratorBlock
    EXPECT_EQ(changed.Period, 50.0);
    EXPECT_EQ(changed.PhaseIncrement, kTwoPi / 50.0);
    EXPECT_EQ(changed.SweepFrequency, 111.0);
}

TEST(ResetTonePhases, KeepsTheCountOfAToneThatStaysAtItsFrequency) {
    GeneratorBench bench(48000);
    const ToneRecord& tone = bench.Add(wave::kSawtooth, 480.0);
    bench.Run();
    bench.Fill(30);
    bench.generator.ResetTonePhases();
    EXPECT_EQ(tone.SampleCount, 30.0);
}

TEST(ResetTonePhases, TouchesOnlyTheTonesInUse) {
    GeneratorBench bench;
    bench.Add(wave::kSine, 1000.0);
    bench.generator.Tones[1].Frequency = 500.0;
    bench.generator.ResetTonePhases();
    EXPECT_EQ(bench.generator.Tones[1].LastFrequency, 0.0);
    EXPECT_EQ(bench.generator.Tones[1].Period, 0.0);
}

TEST(ResetTonePhases, RaisesItsErrors) {
    GeneratorBench bench;
    ToneRecord& tone = bench.Add(wave::kSine, 1000.0);
    const auto reset = [&] {
        bench.generator.ResetTonePhases();
        return 0;
    };
    EXPECT_EQ(ErrorOf(reset), 0);
    tone.Frequency = 0.0;
    EXPECT_EQ(ErrorOf(reset), 11);
    bench.generator.NumTones = 10;
    for (ToneRecord& record : bench.generator.Tones) record.Frequency = 1.0;
    EXPECT_EQ(ErrorOf(reset), 9);
}

TEST(SetGeneratorRunning, KeepsItsState) {
    GeneratorBench bench;
    Generator& generator = bench.generator;
    EXPECT_FALSE(generator.GeneratorRunning);
    generator.SetGeneratorRunning(true);
    EXPECT_TRUE(generator.GeneratorRunning);
    EXPECT_EQ(generator.GeneratorState, 0);
    generator.SetGeneratorRunning(false);
    EXPECT_FALSE(generator.GeneratorRunning);
    EXPECT_EQ(generator.GeneratorState, 8);
    generator.SetGeneratorRunning(true);
    EXPECT_EQ(generator.GeneratorState, 8);
}

TEST(Phase, StaysInRangeBelowZeroHertz) {
    GeneratorBench bench;
    bench.Add(wave::kSine, -3652.0);
    bench.Run();
    for (int block = 0; block < 50; ++block) {
        bench.Fill();
        ASSERT_GT(bench.generator.Tones[0].Phase, -3.14159265358980);
        ASSERT_LE(bench.generator.Tones[0].Phase, 3.14159265358980);
    }
}

// Half a turn has a positive sign, in both directions.
TEST(Phase, OfHalfATurnIsPositive) {
    for (const double frequencyHz : {24000.0, -24000.0}) {
        GeneratorBench bench(48000);
        const ToneRecord& tone = bench.Add(wave::kSine, frequencyHz);
        bench.Run();
        bench.Fill(1);
        EXPECT_EQ(tone.Phase, kPi) << frequencyHz;
    }
}

// A memory tone stored at 48000 Hz and played at 4000 Hz.
TEST(Phase, OfASineAboveTheSamplingRateStaysWithinATurn) {
    GeneratorBench bench(4000);
    ToneRecord& tone = bench.Add(wave::kSine, 20100.0);
    bench.Run();
    for (int block = 0; block < 50; ++block) {
        for (const double sample : bench.Fill()) ASSERT_LE(std::abs(sample), 8191.76);
        ASSERT_GT(tone.Phase, -kPi - 1e-12) << block;
        ASSERT_LE(tone.Phase, kPi) << block;
    }
    // It plays as its alias, 100 Hz.
    GeneratorBench alias(4000);
    alias.Add(wave::kSine, 100.0);
    alias.Run();
    GeneratorBench above(4000);
    above.Add(wave::kSine, 20100.0);
    above.Run();
    const auto expected = alias.Fill();
    const auto heard = above.Fill();
    for (std::size_t i = 0; i < heard.size(); ++i) ASSERT_NEAR(heard[i], expected[i], 1e-5) << i;
}

}  // namespace
}  // namespace sonavex
