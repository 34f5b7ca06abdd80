#include "support/SweepBench.h"

namespace sonavex {
namespace {

class SweepLoop : public SweepBench {};

TEST_F(SweepLoop, StartsALoopAgainOneTickAfterItsEnd) {
    for (const double endHz : {200.0, 50.0}) {
        generator.NumTones = 0;
        ToneRecord& tone = Sweep(100, endHz, 50);
        tone.Loop = true;
        Tick(50);
        EXPECT_EQ(tone.Frequency, endHz);
        generator.SweepCycleCount = 7;
        Tick();
        EXPECT_EQ(tone.Frequency, 100.0);
        EXPECT_EQ(tone.SweepFrequency, 100.0);
        EXPECT_EQ(generator.SweepCycleCount, 0);
        Tick(50);
        EXPECT_EQ(tone.Frequency, endHz);
    }
}

TEST_F(SweepLoop, LeavesTheCycleCountWhileSweepingOrEnded) {
    Sweep(100, 200, 100);
    generator.SweepCycleCount = 7;
    Tick(150);
    EXPECT_EQ(generator.SweepCycleCount, 7);
}

TEST_F(SweepLoop, ResetsALoopWithoutSweepEveryTick) {
    ToneRecord& tone = Sweep(100, 200, 100);
    tone.Sweep = false;
    tone.Loop = true;
    for (int i = 0; i < 3; ++i) {
        tone.Frequency = 150.0;
        tone.SweepFrequency = 160.0;
        generator.SweepCycleCount = 1;
        Tick();
        EXPECT_EQ(tone.Frequency, 100.0);
        EXPECT_EQ(tone.SweepFrequency, 100.0);
        EXPECT_EQ(generator.SweepCycleCount, 0);
    }
}

TEST_F(SweepLoop, WithoutIncrementResetsALoopEveryTick) {
    ToneRecord& tone = Sweep(100, 100, 100);
    tone.LoopIncrement = 0.0;
    tone.Loop = true;
    for (int i = 0; i < 3; ++i) {
        tone.Frequency = tone.SweepFrequency = 80.0;
        Tick();
        EXPECT_EQ(tone.Frequency, 100.0);
    }
}

}  // namespace
}  // namespace sonavex
