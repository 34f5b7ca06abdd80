#include <gmock/gmock.h>

#include "support/PanelRig.h"

namespace sonavex {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class SignalHandlers : public PanelRig {
protected:
    SignalHandlers() { Init(); }
};

TEST_F(SignalHandlers, ListTheWaveforms) {
    EXPECT_THAT(signal.cmbType.Items(), ElementsAre("Sine", "Square", "Triangle", "Sawtooth"));
}

TEST_F(SignalHandlers, StoreAChosenWaveform) {
    for (std::int32_t index = 3; index >= 0; --index) {
        log.Clear();
        signal.cmbType.UserSelects(index);
        EXPECT_EQ(panel.CurrentSignal().ToneType, index);
        EXPECT_EQ(Tone().WaveType, index);
        EXPECT_THAT(log.Lines(), ElementsAre("Save Signal Generator|ToneType|" + std::to_string(index)));
    }
}

TEST_F(SignalHandlers, TakeTheLoopBox) {
    signal.chkLoop.UserSets(true);
    EXPECT_TRUE(Tone().Loop);
    signal.chkLoop.UserSets(false);
    EXPECT_FALSE(Tone().Loop);
    EXPECT_THAT(log.Lines(), IsEmpty());
}

TEST_F(SignalHandlers, MoveTheStartFrequency) {
    generator.NumTones = 0;
    Tone().Frequency = 5.0;
    Tone().SweepFrequency = 6.0;
    Tone().LastFrequency = 7.0;
    signal.sldStartFreq.UserMoves(440);
    EXPECT_EQ(signal.txtGenFreq.Text(), "440");
    EXPECT_EQ(Tone().StartFrequency, 440.0);
    EXPECT_EQ(Tone().Frequency, 5.0);
    EXPECT_EQ(Tone().SweepFrequency, 6.0);
    EXPECT_EQ(Tone().LastFrequency, 7.0);
    EXPECT_THAT(log.Lines(), IsEmpty());
}

TEST_F(SignalHandlers, MoveTheOnlyTone) {
    generator.NumTones = 1;
    Tone().LastFrequency = 7.0;
    Tone().SweepFrequency = 6.0;
    signal.sldStartFreq.UserMoves(440);
    EXPECT_EQ(Tone().Frequency, 440.0);
    EXPECT_EQ(Tone().LastFrequency, 0.0);
    EXPECT_EQ(Tone().SweepFrequency, 6.0);
    generator.NumTones = 2;
    signal.sldStartFreq.UserMoves(550);
    EXPECT_EQ(Tone().Frequency, 440.0);
    EXPECT_EQ(Tone().StartFrequency, 550.0);
}

TEST_F(SignalHandlers, LetTheStartFrequencyGo) {
    Tone().Sweep = true;
    Tone().SweepTime = 200;
    Tone().EndFrequency = 2440.0;
    Tone().Frequency = 5.0;
    generator.NumTones = 1;
    signal.sldStartFreq.SetValue(440);
    signal.txtGenFreq.SetText("4");
    signal.sldStartFreq.UserReleases();
    EXPECT_EQ(signal.txtGenFreq.Text(), "440");
    EXPECT_EQ(Tone().StartFrequency, 440.0);
    EXPECT_EQ(Tone().SweepFrequency, 440.0);
    EXPECT_EQ(Tone().LoopIncrement, 10.0);
    EXPECT_EQ(Tone().Frequency, 5.0);
}

TEST_F(SignalHandlers, KeepTheStepWithoutASweep) {
    Tone().LoopIncrement = 123.0;
    Tone().SweepTime = 200;
    Tone().Sweep = false;
    signal.sldStartFreq.UserReleases();
    signal.sldEndFreq.UserReleases();
    EXPECT_EQ(Tone().LoopIncrement, 123.0);
}

TEST_F(SignalHandlers, NeverDivideByASweepTimeOfZero) {
    Tone().LoopIncrement = 123.0;
    Tone().Sweep = true;
    signal.sldSweepTime.UserMoves(0);
    signal.sldStartFreq.UserReleases();
    signal.sldEndFreq.UserReleases();
    EXPECT_TRUE(Tone().Sweep);
    EXPECT_EQ(Tone().LoopIncrement, 123.0);
}

TEST_F(SignalHandlers, MoveTheEndFrequency) {
    Tone().Sweep = true;
    Tone().SweepTime = 200;
    Tone().LoopIncrement = 123.0;
    Tone().StartFrequency = 1000.0;
    signal.sldEndFreq.UserMoves(3000);
    EXPECT_EQ(signal.txtGenEndFreq.Text(), "3000");
    EXPECT_EQ(Tone().EndFrequency, 3000.0);
    EXPECT_EQ(Tone().LoopIncrement, 123.0);
    signal.txtGenEndFreq.SetText("3");
    signal.sldEndFreq.UserReleases();
    EXPECT_EQ(signal.txtGenEndFreq.Text(), "3000");
    EXPECT_EQ(Tone().LoopIncrement, 10.0);
}

TEST_F(SignalHandlers, MoveTheSweepTime) {
    signal.sldSweepTime.UserMoves(250);
    EXPECT_EQ(signal.txtSweepTime.Text(), "250");
    EXPECT_EQ(Tone().SweepTime, 250);
    EXPECT_TRUE(signal.sldEndFreq.Enabled());
    EXPECT_TRUE(signal.txtGenEndFreq.Enabled());
    EXPECT_FALSE(signal.chkLoop.Enabled());
    EXPECT_FALSE(Tone().Sweep);
    EXPECT_EQ(Tone().LoopIncrement, 0.0);
    signal.chkLoop.SetEnabled(true);
    Tone().Sweep = true;
    signal.sldSweepTime.UserMoves(0);
    EXPECT_FALSE(signal.sldEndFreq.Enabled());
    EXPECT_FALSE(signal.txtGenEndFreq.Enabled());
    EXPECT_TRUE(signal.chkLoop.Enabled());
    EXPECT_TRUE(Tone().Sweep);
}

TEST_F(SignalHandlers, LetTheSweepTimeGo) {
    Tone().StartFrequency = 1000.0;
    Tone().EndFrequency = 20.0;
    signal.sldSweepTime.SetValue(100);
    signal.sldSweepTime.UserReleases();
    EXPECT_EQ(signal.txtSweepTime.Text(), "100");
    EXPECT_EQ(Tone().SweepTime, 100);
    EXPECT_TRUE(signal.sldEndFreq.Enabled());
    EXPECT_TRUE(signal.txtGenEndFreq.Enabled());
    EXPECT_TRUE(signal.chkLoop.Enabled());
    EXPECT_TRUE(Tone().Sweep);
    EXPECT_EQ(Tone().LoopIncrement, -9.8);
    signal.sldSweepTime.SetValue(0);
    signal.sldSweepTime.UserReleases();
    EXPECT_FALSE(signal.sldEndFreq.Enabled());
    EXPECT_FALSE(signal.txtGenEndFreq.Enabled());
    EXPECT_FALSE(signal.chkLoop.Enabled());
    EXPECT_FALSE(Tone().Sweep);
}

TEST_F(SignalHandlers, StartASweepWhileTheTonePlays) {
    MoveTo(signal.sldStartFreq, 100);
    MoveTo(signal.sldEndFreq, 1100);
    signal.Command1.Press();
    bench.Fill();
    Tone().Frequency = 123.0;
    signal.sldSweepTime.UserMoves(500);
    EXPECT_FALSE(timer.Enabled()) << "the slider is still held";
    EXPECT_EQ(Tone().Frequency, 123.0);
    signal.sldSweepTime.UserReleases();
    EXPECT_TRUE(timer.Enabled());
    EXPECT_EQ(Tone().Frequency, 100.0);
    EXPECT_EQ(Tone().SweepFrequency, 100.0);
    EXPECT_EQ(Tone().LastFrequency, 0.0);
    loop.Advance(std::chrono::milliseconds(250));
    EXPECT_NEAR(Tone().Frequency, 600.0, 1e-6);
}

TEST_F(SignalHandlers, EndASweepWhileItPlays) {
    SetSweep(100, 1100, 500);
    signal.Command1.Press();
    loop.Advance(std::chrono::milliseconds(250));
    bench.Fill();
    ASSERT_NEAR(Tone().Frequency, 600.0, 1e-6);
    MoveTo(signal.sldSweepTime, 0);
    EXPECT_FALSE(timer.Enabled());
    EXPECT_EQ(Tone().Frequency, 100.0);
    EXPECT_EQ(Tone().SweepFrequency, 100.0);
    EXPECT_EQ(Tone().LastFrequency, 0.0);
    bench.Fill();
    EXPECT_EQ(Tone().Period, 441.0);
}

TEST_F(SignalHandlers, ChangeTheSpeedOfASweepThatPlays) {
    SetSweep(100, 1100, 500);
    signal.Command1.Press();
    loop.Advance(std::chrono::milliseconds(250));
    bench.Fill();
    MoveTo(signal.sldSweepTime, 1000);
    EXPECT_TRUE(timer.Enabled());
    EXPECT_EQ(Tone().LoopIncrement, 1.0);
    EXPECT_NEAR(Tone().Frequency, 600.0, 1e-6);
    EXPECT_NEAR(Tone().LastFrequency, 600.0, 1e-6);
    loop.Advance(std::chrono::milliseconds(100));
    EXPECT_NEAR(Tone().Frequency, 700.0, 1e-6);
}

// Also while memory tones play in the record of the current signal.
TEST_F(SignalHandlers, LeaveTheSweepClockUnlessTheCurrentSignalPlays) {
    MoveTo(signal.sldSweepTime, 500);
    EXPECT_FALSE(timer.Enabled());
    Add();
    Select(0);
    memory.cmdStartMemory.Press();
    ASSERT_TRUE(timer.Enabled());
    MoveTo(signal.sldSweepTime, 0);
    EXPECT_TRUE(timer.Enabled());
}

TEST_F(SignalHandlers, ShowStoreAndApplyTheLevel) {
    volumes.clear();
    signal.sldLevel.UserMoves(-1234);
    EXPECT_EQ(signal.lblGenLevel.Caption(), "-12.34 dB");
    EXPECT_THAT(log.Lines(), ElementsAre("Save Signal Generator|Level|-1234"));
    EXPECT_THAT(volumes, ElementsAre(-1234));
    log.Clear();
    signal.sldLevel.SetValue(-7);
    signal.sldLevel.UserReleases();
    EXPECT_EQ(signal.lblGenLevel.Caption(), "-0.07 dB");
    EXPECT_THAT(log.Lines(), ElementsAre("Save Signal Generator|Level|-7"));
    EXPECT_THAT(volumes, ElementsAre(-1234, -7));
}

TEST_F(SignalHandlers, ShowTheLevelInDecibels) {
    for (const auto& [level, text] : {std::pair{-50, "-0.50 dB"}, std::pair{0, "0.00 dB"},
                                      std::pair{-9600, "-96.00 dB"}, std::pair{-105, "-1.05 dB"}}) {
        signal.sldLevel.UserMoves(level);
        EXPECT_EQ(signal.lblGenLevel.Caption(), text);
    }
}

TEST_F(SignalHandlers, DoWithoutAPlaybackBuffer) {
    panel.CurrentSignal().OnLevel = nullptr;
    volumes.clear();
    signal.sldLevel.UserMoves(-300);
    EXPECT_EQ(signal.lblGenLevel.Caption(), "-3.00 dB");
    EXPECT_THAT(volumes, IsEmpty());
}

TEST_F(SignalHandlers, KeepTheirLimits) {
    MoveTo(signal.sldLevel, 1);
    EXPECT_EQ(signal.sldLevel.Value(), 0);
    MoveTo(signal.sldLevel, -9601);
    EXPECT_EQ(signal.sldLevel.Value(), -9600);
    MoveTo(signal.sldSweepTime, -1);
    EXPECT_EQ(signal.sldSweepTime.Value(), 0);
    MoveTo(signal.sldSweepTime, 10001);
    EXPECT_EQ(signal.sldSweepTime.Value(), 10000);
    for (Slider* slider : {&signal.sldStartFreq, &signal.sldEndFreq}) {
        MoveTo(*slider, 0);
        EXPECT_EQ(slider->Value(), 1);
        MoveTo(*slider, 22051);
        EXPECT_EQ(slider->Value(), 22050);
    }
}

TEST_F(SignalHandlers, FollowALowerRate) {
    MoveTo(signal.sldStartFreq, 15000);
    MoveTo(signal.sldEndFreq, 3000);
    signal.txtGenEndFreq.SetText("untouched");
    bench.shared.SampleRate = 16000;
    signal.sldStartFreq.SetMax(8000);
    signal.sldEndFreq.SetMax(8000);
    EXPECT_EQ(signal.txtGenFreq.Text(), "15000");
    panel.FollowLimits();
    EXPECT_EQ(signal.txtGenFreq.Text(), "8000");
    EXPECT_EQ(Tone().StartFrequency, 8000.0);
    EXPECT_EQ(signal.txtGenEndFreq.Text(), "untouched");
    signal.sldEndFreq.SetMax(2000);
    panel.FollowLimits();
    EXPECT_EQ(signal.txtGenEndFreq.Text(), "2000");
    EXPECT_EQ(Tone().EndFrequency, 2000.0);
    signal.txtGenFreq.SetText("untouched");
    signal.sldStartFreq.SetMax(22050);
    panel.FollowLimits();
    EXPECT_EQ(signal.txtGenFreq.Text(), "untouched");
}

}  // namespace
}  // namespace sonavex
