#include "support/SweepBench.h"

namespace sonavex {
namespace {

class SweepSteps : public SweepBench {};

TEST_F(SweepSteps, MayBeSmall) {
    ToneRecord& up = Sweep(100.0, 101.0, 1000);
    ToneRecord& down = Sweep(101.0, 100.0, 1000);
    Tick(10);
    EXPECT_NEAR(up.Frequency, 100.01, 1e-9);
    EXPECT_NEAR(down.Frequency, 100.99, 1e-9);
}

TEST_F(SweepSteps, UpwardsWaitForTheFillHoweverSmall) {
    ToneRecord& up = Sweep(100.0, 101.0, 1000);
    ToneRecord& down = Sweep(101.0, 100.0, 1000);
    generator.ToneUpdateBusy = true;
    Tick(10);
    EXPECT_EQ(up.Frequency, 100.0);
    EXPECT_NEAR(down.Frequency, 100.99, 1e-9);
    generator.ToneUpdateBusy = false;
    Tick();
    EXPECT_NEAR(up.Frequency, 100.001, 1e-9);
}

// A sweep with a step of 0 plays at its own frequency, whatever played before. It does not wait for the fill.
TEST_F(SweepSteps, OfNothingAreStepsToo) {
    ToneRecord& tone = Sweep(400.0, 100.0, 300);
    tone.LoopIncrement = 0.0;
    tone.Frequency = 500.0;
    generator.ToneUpdateBusy = true;
    Tick();
    EXPECT_EQ(tone.Frequency, 400.0);
}

TEST_F(SweepSteps, NearZeroAreTakenAsTheyAre) {
    ToneRecord& within = Sweep(1.0, 0.005, 10);
    within.LoopIncrement = -0.994;
    ToneRecord& beyond = Sweep(1.0, 0.005, 10);
    beyond.LoopIncrement = -1.2;
    Tick();
    EXPECT_NEAR(within.Frequency, 0.006, 1e-12);
    EXPECT_EQ(beyond.Frequency, 0.005);
}

TEST_F(SweepSteps, AreNoneWhereTheEndIsTheStart) {
    const ToneRecord& tone = Sweep(1000.0, 1000.0, 100);
    EXPECT_FALSE(Generator::UnderWay(tone));
}

}  // namespace
}  // namespace sonavex
