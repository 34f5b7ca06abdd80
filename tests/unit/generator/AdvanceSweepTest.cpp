#include <gtest/gtest.h>

#include <cmath>

#include "support/Errors.h"
#include "support/SweepBench.h"

namespace sonavex {
namespace {

class AdvanceSweep : public SweepBench {};

TEST_F(AdvanceSweep, OnlyYieldsOnceWithoutTones) {
    Tick();
    EXPECT_EQ(yields, 1);
}

TEST_F(AdvanceSweep, YieldsBeforeEveryTone) {
    for (int i = 0; i < 9; ++i) Sweep(100, 200, 100);
    Tick();
    EXPECT_EQ(yields, 10);
    for (const ToneRecord& tone : generator.Tones) EXPECT_EQ(tone.Frequency, 101.0);
}

TEST_F(AdvanceSweep, MovesBothFrequenciesUp) {
    const ToneRecord& tone = Sweep(100, 1000, 2000);
    Tick(2000);
    EXPECT_EQ(tone.Frequency, tone.SweepFrequency);
    EXPECT_GE(tone.Frequency, 1000.0 - 1e-6);
    EXPECT_LE(tone.Frequency, 1000.0 + tone.LoopIncrement);
    const double end = tone.Frequency;
    Tick(100);
    EXPECT_EQ(tone.Frequency, end);
}

TEST_F(AdvanceSweep, PassesTheEndByAtMostOneStepUpwards) {
    ToneRecord& tone = Sweep(100, 200, 100);
    tone.LoopIncrement = 7.0;
    Tick(14);
    EXPECT_EQ(tone.Frequency, 198.0);
    Tick();
    EXPECT_EQ(tone.Frequency, 205.0);
    Tick(10);
    EXPECT_EQ(tone.Frequency, 205.0);
}

TEST_F(AdvanceSweep, PassesTheEndByAtMostOneStepDownwards) {
    ToneRecord& tone = Sweep(200, 100, 100);
    EXPECT_EQ(tone.LoopIncrement, -1.0);
    tone.LoopIncrement = -7.0;
    Tick(15);
    EXPECT_EQ(tone.Frequency, 95.0);
    Tick(10);
    EXPECT_EQ(tone.Frequency, 95.0);
    EXPECT_EQ(tone.SweepFrequency, 95.0);
}

TEST_F(AdvanceSweep, EndsExactlyAtAnEndThatIsReached) {
    const ToneRecord& up = Sweep(100, 200, 100);
    const ToneRecord& down = Sweep(200, 100, 100);
    Tick(100);
    EXPECT_EQ(up.Frequency, 200.0);
    EXPECT_EQ(down.Frequency, 100.0);
    Tick();
    EXPECT_EQ(up.Frequency, 200.0);
    EXPECT_EQ(down.Frequency, 100.0);
}

TEST_F(AdvanceSweep, LeavesAToneWithoutSweepAndLoop) {
    ToneRecord& tone = Sweep(100, 200, 100);
    tone.Sweep = false;
    Tick(5);
    EXPECT_EQ(tone.Frequency, 100.0);
}

TEST_F(AdvanceSweep, WithoutIncrementNeverChangesTheFrequency) {
    for (const double endHz : {20.0, 100.0, 500.0}) {
        generator.NumTones = 0;
        ToneRecord& tone = Sweep(100, endHz, 100);
        tone.LoopIncrement = 0.0;
        Tick(5);
        EXPECT_EQ(tone.Frequency, 100.0);
    }
}

TEST_F(AdvanceSweep, DoesNothingUnlessPlaying) {
    ToneRecord& up = Sweep(100, 200, 100);
    ToneRecord& down = Sweep(200, 100, 100);
    generator.SweepRunning = false;
    up.Frequency = up.SweepFrequency = 120.0;
    down.Frequency = down.SweepFrequency = 180.0;
    Tick();
    EXPECT_EQ(up.Frequency, 120.0);
    EXPECT_EQ(down.Frequency, 180.0);
    down.Loop = true;
    Tick();
    EXPECT_EQ(down.Frequency, 200.0);
}

TEST_F(AdvanceSweep, HoldsUpwardSweepsWhileTheFillLooksAtThem) {
    for (const bool looping : {false, true}) {
        generator.NumTones = 0;
        ToneRecord& up = Sweep(100, 200, 100);
        ToneRecord& down = Sweep(200, 100, 100);
        up.Loop = down.Loop = looping;
        Tick(20);
        generator.ToneUpdateBusy = true;
        Tick();
        EXPECT_EQ(up.Frequency, 120.0);
        EXPECT_EQ(down.Frequency, 179.0);
        generator.ToneUpdateBusy = false;
        Tick();
        EXPECT_EQ(up.Frequency, 121.0);
        EXPECT_EQ(down.Frequency, 178.0);
    }
}

TEST_F(AdvanceSweep, RaisesItsErrors) {
    const auto tick = [&] {
        Tick();
        return 0;
    };
    for (int i = 0; i < 9; ++i) Sweep(100, 200, 100);
    generator.NumTones = 10;
    EXPECT_EQ(ErrorOf(tick), 9);
    EXPECT_EQ(yields, 11);                           // also before the tone that does not exist
    EXPECT_EQ(generator.Tones[8].Frequency, 101.0);  // the others were advanced
    ToneRecord& tone = generator.Tones[0];
    tone.SweepFrequency = -1e308;
    tone.EndFrequency = -1.7e308;
    tone.LoopIncrement = -1e308;
    EXPECT_EQ(ErrorOf(tick), 6);
    EXPECT_EQ(tone.SweepFrequency, -1e308);
}

TEST_F(AdvanceSweep, EndsWhenTheYieldSaysSo) {
    const ToneRecord& first = Sweep(100, 200, 100);
    const ToneRecord& second = Sweep(100, 200, 100);
    generator.AdvanceSweep([&] { return ++yields < 3; });
    EXPECT_EQ(yields, 3);
    EXPECT_EQ(first.Frequency, 101.0);
    EXPECT_EQ(second.Frequency, 100.0);
}

TEST_F(AdvanceSweep, IsHeardWithoutABreakInThePhase) {
    const ToneRecord& tone = Sweep(100, 4000, 500);
    bench.Run();
    // 48000 Hz: a block is 42.67 ms.
    double lastPhase = 0.0;
    for (int block = 0; block < 12; ++block) {
        const auto samples = bench.Fill();
        const double first = lastPhase + tone.PhaseIncrement;
        EXPECT_NEAR(samples[0], 8191.75 * std::sin(first), 1e-6) << block;
        EXPECT_NEAR(samples[kBlock - 1], 8191.75 * std::sin(tone.Phase), 1e-6) << block;
        lastPhase = tone.Phase;
        Tick(block % 3 == 0 ? 42 : 43);
    }
    EXPECT_GT(tone.Frequency, 3900.0);
}

}  // namespace
}  // namespace sonavex
