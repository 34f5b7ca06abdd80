#include <gtest/gtest.h>

#include "support/PanelRig.h"

namespace sonavex {
namespace {

TEST(FreshGenerator, PlaysNothing) {
    const SharedState shared;
    const Generator generator{shared};
    EXPECT_FALSE(generator.GeneratorRunning);
    EXPECT_EQ(generator.GeneratorState, 0);
    EXPECT_FALSE(generator.ToneUpdateBusy);
    EXPECT_FALSE(generator.SweepRunning);
    EXPECT_EQ(generator.SweepCycleCount, 0);
    EXPECT_EQ(generator.NumTones, 0);
}

TEST(FreshGenerator, HasEmptyRecords) {
    const ToneRecord tone;
    EXPECT_EQ(tone.WaveType, 0);
    EXPECT_FALSE(tone.Sweep);
    EXPECT_FALSE(tone.Loop);
    EXPECT_EQ(tone.SweepTime, 0);
    for (const double value :
         {tone.Frequency, tone.LoopIncrement, tone.StartFrequency, tone.EndFrequency, tone.SweepFrequency,
          tone.LastFrequency, tone.Phase, tone.PhaseIncrement, tone.Period, tone.SampleCount})
        EXPECT_EQ(value, 0.0);
}

TEST(FreshGenerator, HasLoadedNothing) {
    const SharedState shared;
    const Generator generator{shared};
    const Generator::Defaults& defaults = generator.LoadedDefaults();
    EXPECT_EQ(defaults.level, 0.0);
    EXPECT_FALSE(defaults.enabled);
    EXPECT_EQ(defaults.sampleRate, 0.0);
    EXPECT_EQ(defaults.referenceRate, 0);
    EXPECT_EQ(defaults.blockLength, 0);
}

class FreshPanel : public PanelRig {};

TEST_F(FreshPanel, ShowsItsSliderPositionsWhenLimitsChange) {
    EXPECT_EQ(panel.CurrentSignal().ToneType, 0);
    panel.FollowLimits();
    EXPECT_EQ(signal.txtGenFreq.Text(), "1");
    EXPECT_EQ(signal.txtGenEndFreq.Text(), "1");
}

TEST_F(FreshPanel, HasTheLimitsOfItsControls) {
    EXPECT_EQ(signal.sldLevel.Min(), -9600);
    EXPECT_EQ(signal.sldLevel.Max(), 0);
    EXPECT_EQ(signal.sldStartFreq.Min(), 1);
    EXPECT_EQ(signal.sldStartFreq.Max(), 22050);
    EXPECT_EQ(signal.sldEndFreq.Min(), 1);
    EXPECT_EQ(signal.sldSweepTime.Min(), 0);
    EXPECT_EQ(signal.sldSweepTime.Max(), 10000);
    EXPECT_EQ(signal.picGenRunning.BackColor(), (Colour{128, 128, 128})) << "grey";
}

// The same numbers as in the settings and the list.
TEST(Waveforms, AreNumberedAsTheyAreListed) {
    EXPECT_EQ(wave::kSine, 0);
    EXPECT_EQ(wave::kSquare, 1);
    EXPECT_EQ(wave::kTriangle, 2);
    EXPECT_EQ(wave::kSawtooth, 3);
}

}  // namespace
}  // namespace sonavex
