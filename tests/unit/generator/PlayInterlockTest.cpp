#include <gtest/gtest.h>

#include "support/MemoryRig.h"

namespace sonavex {
namespace {

class PlayInterlockTest : public MemoryRig {};

TEST_F(PlayInterlockTest, LocksTheControls) {
    Select(0);
    EXPECT_TRUE(SignalEnabled(true));
    memory.cmdStartMemory.Press();
    EXPECT_TRUE(SignalEnabled(false));
    EXPECT_TRUE(SweepEnabled(false));
    EXPECT_TRUE(signal.sldLevel.Enabled());
    EXPECT_FALSE(memory.cmdGenAdd.Enabled());
    EXPECT_FALSE(memory.cmdRemove.Enabled());
    EXPECT_TRUE(memory.ToneList.Locked());
    memory.cmdStartMemory.Press();
    EXPECT_TRUE(SignalEnabled(true));
    EXPECT_TRUE(SweepEnabled(false));
    EXPECT_TRUE(memory.cmdGenAdd.Enabled());
    EXPECT_FALSE(memory.ToneList.Locked());
}

TEST_F(PlayInterlockTest, GivesTheSweepControlsBack) {
    MoveTo(signal.sldSweepTime, 100);
    Select(0);
    memory.cmdStartMemory.Press();
    EXPECT_TRUE(SweepEnabled(false));
    memory.cmdStartMemory.Press();
    EXPECT_TRUE(SweepEnabled(true));
}

TEST_F(PlayInterlockTest, DoesNotEnableAFullListAgain) {
    Add(5);
    Select(7);
    memory.cmdStartMemory.Press();
    memory.cmdStartMemory.Press();
    EXPECT_FALSE(memory.cmdGenAdd.Enabled());
    signal.Command1.Press();
    signal.Command1.Press();
    EXPECT_FALSE(memory.cmdGenAdd.Enabled());
}

TEST_F(PlayInterlockTest, ExcludesTheCurrentSignal) {
    Select(1);
    signal.Command1.Press();
    EXPECT_FALSE(memory.cmdStartMemory.Enabled());
    EXPECT_FALSE(memory.cmdGenAdd.Enabled());
    EXPECT_FALSE(memory.cmdRemove.Enabled());
    EXPECT_TRUE(memory.ToneList.Locked());
    memory.cmdStartMemory.Press();
    EXPECT_EQ(memory.cmdStartMemory.Caption(), "Start Memory");
    Select(1, false);
    EXPECT_TRUE(memory.ToneList.Selected(1));
    signal.Command1.Press();
    EXPECT_TRUE(memory.cmdStartMemory.Enabled());
    EXPECT_TRUE(memory.cmdGenAdd.Enabled());
    EXPECT_TRUE(memory.cmdRemove.Enabled());
    EXPECT_FALSE(memory.ToneList.Locked());
    memory.cmdStartMemory.Press();
    signal.Command1.Press();
    EXPECT_EQ(signal.Command1.Caption(), "Start Current");
    EXPECT_EQ(Tone().StartFrequency, 200.0);
}

TEST_F(PlayInterlockTest, LeavesNothingForTheNextCurrentSignal) {
    Select(0);
    Select(1);
    memory.cmdStartMemory.Press();
    memory.cmdStartMemory.Press();
    EXPECT_TRUE(Tone().Loop);
    signal.chkLoop.SetValue(0);
    signal.Command1.Press();
    EXPECT_EQ(generator.NumTones, 1);
    EXPECT_EQ(Tone().WaveType, wave::kSine);
    EXPECT_EQ(Tone().Frequency, 300.0);
    EXPECT_EQ(Tone().EndFrequency, 1000.0);
    EXPECT_FALSE(Tone().Sweep);
    EXPECT_FALSE(Tone().Loop);
    EXPECT_FALSE(timer.Enabled());
}

TEST_F(PlayInterlockTest, LeavesNothingForTheNextEntry) {
    signal.chkLoop.SetValue(0);
    Select(0);
    memory.cmdStartMemory.Press();
    memory.cmdStartMemory.Press();
    MoveTo(signal.sldSweepTime, 50);
    Add();
    EXPECT_EQ(Lines().back(), "300Hz / 1000Hz  / Sine / 50ms / No Loop");
    EXPECT_EQ(Stored("Current Signal Start"), "300");
    EXPECT_EQ(Stored("Current Signal Type"), "0");
}

}  // namespace
}  // namespace sonavex
