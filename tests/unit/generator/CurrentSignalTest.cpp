#include <gmock/gmock.h>

#include <cmath>

#include "support/PanelRig.h"

namespace sonavex {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class CurrentSignalTest : public PanelRig {
protected:
    CurrentSignalTest() { Init(); }
    // Frequency of a playing sine, computed from its increment.
    double SoundingHz() {
        bench.Fill();
        return Tone().PhaseIncrement / 6.28318530717958 * 44100.0;
    }
};

TEST_F(CurrentSignalTest, IsSavedInOrder) {
    SetSweep(1000, 3000, 2000);
    signal.cmbType.UserSelects(2);
    signal.chkLoop.UserSets(true);
    log.Clear();
    panel.CurrentSignal().SaveCurrentSignal();
    EXPECT_THAT(log.Lines(), ElementsAre("Save Signal Generator|Current Signal Loop Increment|0.01",
                                         "Save Signal Generator|Current Signal Start|1000",
                                         "Save Signal Generator|Current Signal End|3000",
                                         "Save Signal Generator|Current Signal Sweep Time|2000",
                                         "Save Signal Generator|Current Signal Sweep|True",
                                         "Save Signal Generator|Current Signal Type|2",
                                         "Save Signal Generator|Current Signal Loop|True"));
    EXPECT_EQ(Tone().LoopIncrement, 0.01);
}

TEST_F(CurrentSignalTest, IsSavedFromTheControls) {
    Tone() = ToneRecord{wave::kSquare, 1, true, 5, 6, 7, 8, 9, 10, true};
    panel.CurrentSignal().SaveCurrentSignal();
    EXPECT_EQ(Stored("Current Signal Start"), "1000");
    EXPECT_EQ(Stored("Current Signal End"), "20");
    EXPECT_EQ(Stored("Current Signal Sweep Time"), "0");
    EXPECT_EQ(Stored("Current Signal Sweep"), "False");
    EXPECT_EQ(Stored("Current Signal Type"), "0");
    EXPECT_EQ(Stored("Current Signal Loop"), "False");
    EXPECT_EQ(Stored("Current Signal Loop Increment"), "0");
    EXPECT_EQ(Tone().WaveType, wave::kSine);
}

TEST_F(CurrentSignalTest, IsSavedWithASmallDownwardStep) {
    SetSweep(1000, 20, 10000);
    panel.CurrentSignal().SaveCurrentSignal();
    EXPECT_EQ(Stored("Current Signal Loop Increment"), "-0.00098");
}

TEST_F(CurrentSignalTest, StartsATone) {
    generator.NumTones = 4;
    generator.SweepCycleCount = 3;
    Tone() = ToneRecord{wave::kSquare, 1, true, 5, 6, 7, 8, 1000, 10, true, 1.5, 0.1, 3, 12};
    signal.cmbType.SetListIndex(3);
    signal.Command1.Press();
    EXPECT_EQ(generator.NumTones, 1);
    EXPECT_EQ(generator.SweepCycleCount, 0);
    EXPECT_TRUE(generator.GeneratorRunning);
    EXPECT_TRUE(generator.SweepRunning);
    EXPECT_FALSE(timer.Enabled());
    const ToneRecord& tone = Tone();
    EXPECT_EQ(tone.WaveType, wave::kSawtooth);
    EXPECT_EQ(tone.StartFrequency, 1000.0);
    EXPECT_EQ(tone.EndFrequency, 20.0);
    EXPECT_EQ(tone.Frequency, 1000.0);
    EXPECT_EQ(tone.SweepFrequency, 1000.0);
    EXPECT_EQ(tone.SweepTime, 0);
    EXPECT_EQ(tone.LoopIncrement, 0.0);
    EXPECT_FALSE(tone.Sweep);
    EXPECT_FALSE(tone.Loop);
    // As after a change of frequency: phase 0 and its own period.
    EXPECT_EQ(tone.LastFrequency, 1000.0);
    EXPECT_EQ(tone.Period, 44.1);
    EXPECT_EQ(tone.Phase, 0.0);
    EXPECT_EQ(tone.SampleCount, 0.0);
    EXPECT_EQ(signal.Command1.Caption(), "Stop Current");
    EXPECT_TRUE(Shown(kGeneratorPlaying));
    EXPECT_THAT(log.Lines(), IsEmpty());
}

TEST_F(CurrentSignalTest, StartsASweep) {
    SetSweep(100, 1000, 2000);
    signal.chkLoop.UserSets(true);
    signal.Command1.Press();
    EXPECT_TRUE(timer.Enabled());
    EXPECT_TRUE(Tone().Sweep);
    EXPECT_TRUE(Tone().Loop);
    EXPECT_EQ(Tone().LoopIncrement, 0.45);
    EXPECT_EQ(Tone().SweepFrequency, 100.0);
    loop.Advance(std::chrono::milliseconds(1000));
    EXPECT_NEAR(Tone().Frequency, 550.0, 1e-6);
}

TEST_F(CurrentSignalTest, SweepsForItsSweepTime) {
    SetSweep(100, 1000, 2000);
    signal.Command1.Press();
    loop.Advance(std::chrono::milliseconds(1999));
    EXPECT_LT(Tone().Frequency, 999.56);
    loop.Advance(std::chrono::milliseconds(1));
    EXPECT_NEAR(Tone().Frequency, 1000.0, 0.45);
    loop.Advance(std::chrono::milliseconds(100));
    EXPECT_NEAR(Tone().Frequency, 1000.0, 0.46);
}

TEST_F(CurrentSignalTest, SaveDoesNotSlowTheNextSweep) {
    SetSweep(100, 1000, 2000);
    panel.CurrentSignal().SaveCurrentSignal();
    signal.Command1.Press();
    EXPECT_EQ(Tone().LoopIncrement, 0.45);
}

TEST_F(CurrentSignalTest, Stops) {
    SetSweep(100, 1000, 2000);
    signal.Command1.Press();
    signal.Command1.Press();
    EXPECT_FALSE(generator.GeneratorRunning);
    EXPECT_EQ(generator.GeneratorState, 8);
    EXPECT_FALSE(generator.SweepRunning);
    EXPECT_FALSE(timer.Enabled());
    EXPECT_EQ(signal.Command1.Caption(), "Start Current");
    EXPECT_TRUE(Shown(kGeneratorStopped));
}

TEST_F(CurrentSignalTest, DoesNotStartWithAWrongEntry) {
    signal.txtGenFreq.SetText("19.99");
    signal.Command1.Press();
    EXPECT_EQ(log.Count("Message"), 1U);
    EXPECT_FALSE(generator.GeneratorRunning);
    EXPECT_FALSE(generator.SweepRunning);
    EXPECT_EQ(signal.Command1.Caption(), "Start Current");
    EXPECT_TRUE(Shown(kGeneratorStopped));
}

TEST_F(CurrentSignalTest, StopsWithAWrongEntry) {
    signal.Command1.Press();
    signal.txtGenFreq.SetText("wrong");
    signal.Command1.Press();
    EXPECT_FALSE(generator.GeneratorRunning);
    EXPECT_THAT(log.Lines(), IsEmpty());
}

TEST_F(CurrentSignalTest, FollowsTheSliderAtOnce) {
    signal.Command1.Press();
    EXPECT_NEAR(SoundingHz(), 1000.0, 1e-9);
    signal.sldStartFreq.UserMoves(2000);
    EXPECT_NEAR(SoundingHz(), 2000.0, 1e-9);
    signal.sldStartFreq.UserMoves(1000);
    EXPECT_NEAR(SoundingHz(), 1000.0, 1e-9);
    signal.sldStartFreq.UserReleases();
    EXPECT_NEAR(SoundingHz(), 1000.0, 1e-9);
}

TEST_F(CurrentSignalTest, ComesBackWithinOneBlock) {
    signal.Command1.Press();
    bench.Fill();
    signal.sldStartFreq.UserMoves(2000);
    bench.Fill();
    signal.sldStartFreq.UserMoves(1000);
    EXPECT_NEAR(SoundingHz(), 1000.0, 1e-9);
    MoveTo(signal.sldStartFreq, 1500);
    MoveTo(signal.sldStartFreq, 1000);
    EXPECT_NEAR(SoundingHz(), 1000.0, 1e-9);
}

TEST_F(CurrentSignalTest, KeepsItsPhaseWhenTheSliderMoves) {
    signal.Command1.Press();
    const std::vector<double> before = bench.Fill();
    const double phase = Tone().Phase;
    signal.sldStartFreq.UserMoves(1001);
    const std::vector<double> after = bench.Fill();
    EXPECT_NEAR(after.front(), 8191.75 * std::sin(phase + 6.28318530717958 * 1001.0 / 44100.0), 1e-6);
    EXPECT_NEAR(before.back(), 8191.75 * std::sin(phase), 1e-6);
}

TEST_F(CurrentSignalTest, MayBeChangedWhileItPlays) {
    signal.Command1.Press();
    for (const Control* control : std::initializer_list<const Control*>{
             &signal.cmbType, &signal.sldStartFreq, &signal.txtGenFreq, &signal.sldSweepTime,
             &signal.txtSweepTime, &signal.sldLevel, &signal.Command1})
        EXPECT_TRUE(control->Enabled());
    signal.cmbType.UserSelects(1);
    EXPECT_EQ(Tone().WaveType, wave::kSquare);
}

}  // namespace
}  // namespace sonavex
