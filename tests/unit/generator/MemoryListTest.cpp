#include <gmock/gmock.h>

#include "support/PanelRig.h"

namespace sonavex {
namespace {

using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;

const std::string kSave = "Save Signal Generator|";

class MemoryList : public PanelRig {
protected:
    MemoryList() { Init(); }
    // Three entries of 100, 200 and 300 Hz.
    void AddThree() {
        for (const std::int32_t startHz : {100, 200, 300}) {
            MoveTo(signal.sldStartFreq, startHz);
            Add();
        }
        log.Clear();
    }
};

TEST_F(MemoryList, TakesATone) {
    signal.cmbType.UserSelects(1);
    Add();
    EXPECT_THAT(Lines(), ElementsAre("1000Hz / NA / Square / NA / No Loop"));
    EXPECT_FALSE(memory.ToneList.Selected(0));
    EXPECT_EQ(generator.NumTones, 0);
    EXPECT_FALSE(memory.cmdRemove.Enabled());
    EXPECT_FALSE(memory.cmdStartMemory.Enabled());
}

TEST_F(MemoryList, TakesASweep) {
    SetSweep(1000, 5000, 2000);
    signal.chkLoop.UserSets(true);
    Add();
    signal.chkLoop.UserSets(false);
    Add();
    EXPECT_THAT(Lines(), ElementsAre("1000Hz / 5000Hz  / Sine / 2000ms / Loop",
                                     "1000Hz / 5000Hz  / Sine / 2000ms / No Loop"));
    EXPECT_EQ(generator.NumTones, 1);
}

TEST_F(MemoryList, LoopsOnlyWhereTheBoxIsEnabled) {
    signal.chkLoop.UserSets(true);
    EXPECT_FALSE(signal.chkLoop.Enabled());
    Add();
    EXPECT_THAT(Lines(), ElementsAre("1000Hz / NA / Sine / NA / No Loop"));
}

TEST_F(MemoryList, TakesASweepTimeThatIsStillBeingTyped) {
    signal.txtSweepTime.UserTypes("500");
    EXPECT_FALSE(Tone().Sweep);
    Add();
    EXPECT_TRUE(Tone().Sweep);
    EXPECT_THAT(Lines(), ElementsAre("1000Hz / 20Hz  / Sine / 500ms / No Loop"));
}

TEST_F(MemoryList, TakesWhatTheControlsHold) {
    Tone() = ToneRecord{wave::kSquare, 1, true, 5, 6, 7, 8, 9, 10, true};
    Add();
    EXPECT_THAT(Lines(), ElementsAre("1000Hz / NA / Sine / NA / No Loop"));
}

TEST_F(MemoryList, RefusesAWrongEntry) {
    signal.txtGenFreq.SetText("22051");
    generator.NumTones = 3;
    Add();
    EXPECT_THAT(Lines(), IsEmpty());
    EXPECT_THAT(log.Lines(), ElementsAre("Message information Invalid Start Frequency\r\rValue has to be 20 "
                                         "to 22050"));
    EXPECT_EQ(generator.NumTones, 3);
}

TEST_F(MemoryList, EndsAtEightEntries) {
    Add(7);
    EXPECT_TRUE(memory.cmdGenAdd.Enabled());
    Add();
    EXPECT_EQ(memory.ToneList.Count(), 8);
    EXPECT_FALSE(memory.cmdGenAdd.Enabled());
    Add();
    EXPECT_EQ(memory.ToneList.Count(), 8);
    EXPECT_EQ(generator.NumTones, 7);
    EXPECT_EQ(Stored("NumberOfTones"), "8");
}

TEST_F(MemoryList, IsWrittenLetterForLetter) {
    chkMuteOutput.SetValue(1);
    SetSweep(1000, 5000, 2000);
    signal.chkLoop.UserSets(true);
    Add();
    Select(0);
    SetSweep(20, 12000, 0);
    signal.cmbType.UserSelects(3);
    MoveTo(signal.sldLevel, -150);
    log.Clear();
    Add();
    EXPECT_THAT(log.Lines(), ElementsAreArray({std::string("DeleteSection Signal Generator"),
                                               kSave + "Current Signal Loop Increment|0",
                                               kSave + "Current Signal Start|20",
                                               kSave + "Current Signal End|12000",
                                               kSave + "Current Signal Sweep Time|0",
                                               kSave + "Current Signal Sweep|False",
                                               kSave + "Current Signal Type|3",
                                               kSave + "Current Signal Loop|True",
                                               kSave + "Memory Signal Start 1| 1000",
                                               kSave + "Memory Signal End 1| 5000",
                                               kSave + "Memory Signal Sweep Time 1| 2000",
                                               kSave + "Memory Signal Sweep 1|True",
                                               kSave + "Memory Signal Type 1| 0",
                                               kSave + "Memory Signal Loop 1|True",
                                               kSave + "Memory Signal Selected 1|True",
                                               kSave + "Memory Signal Loop Increment 1| 2",
                                               kSave + "Memory Signal Start 2| 20",
                                               kSave + "Memory Signal End 2| 0",
                                               kSave + "Memory Signal Sweep Time 2| 0",
                                               kSave + "Memory Signal Sweep 2|False",
                                               kSave + "Memory Signal Type 2| 3",
                                               kSave + "Memory Signal Loop 2|False",
                                               kSave + "Memory Signal Selected 2|False",
                                               kSave + "Memory Signal Loop Increment 2| 0",
                                               kSave + "NumberOfTones|2",
                                               kSave + "Level|-150",
                                               kSave + "MuteMeter|1"}));
}

TEST_F(MemoryList, StoresAFractionalDownwardStep) {
    SetSweep(1000, 20, 2000);
    Add();
    EXPECT_EQ(Stored("Memory Signal Loop Increment 1"), "-.49");
    EXPECT_EQ(Stored("Current Signal Loop Increment"), "-0.0049");
    EXPECT_EQ(Stored("MuteMeter"), "0");
}

TEST_F(MemoryList, LosesTheToneTypeAndForeignKeys) {
    Store("Memory Signal Start 8", " 5");
    Store("NumberOfTones", "4");
    Store("Anything", "else");
    signal.cmbType.UserSelects(2);
    EXPECT_EQ(Stored("ToneType"), "2");
    panel.WriteMemoryToRegistry();
    EXPECT_EQ(Stored("ToneType"), "(absent)");
    EXPECT_EQ(Stored("Memory Signal Start 8"), "(absent)");
    EXPECT_EQ(Stored("Anything"), "(absent)");
    EXPECT_EQ(Stored("NumberOfTones"), "0");
    EXPECT_EQ(store.Stored.Size(), 10U);
}

TEST_F(MemoryList, IsWrittenWithoutASectionToDelete) {
    store.Stored.DeleteSection("Signal Generator");
    panel.WriteMemoryToRegistry();
    EXPECT_EQ(store.Stored.Size(), 10U);
}

TEST_F(MemoryList, RenumbersWhatIsLeft) {
    AddThree();
    Select(1);
    memory.cmdRemove.Press();
    EXPECT_THAT(Lines(), ElementsAre("100Hz / NA / Sine / NA / No Loop", "300Hz / NA / Sine / NA / No Loop"));
    EXPECT_EQ(Stored("Memory Signal Start 1"), " 100");
    EXPECT_EQ(Stored("Memory Signal Start 2"), " 300");
    EXPECT_EQ(Stored("Memory Signal Start 3"), "(absent)");
    EXPECT_EQ(Stored("NumberOfTones"), "2");
    EXPECT_EQ(generator.NumTones, 2);
    EXPECT_FALSE(memory.cmdRemove.Enabled());
    EXPECT_FALSE(memory.cmdStartMemory.Enabled());
    EXPECT_TRUE(memory.cmdGenAdd.Enabled());
}

TEST_F(MemoryList, RemovesNeighbours) {
    AddThree();
    Select(0);
    Select(1);
    memory.cmdRemove.Press();
    EXPECT_THAT(Lines(), ElementsAre("300Hz / NA / Sine / NA / No Loop"));
    Select(0);
    memory.cmdRemove.Press();
    EXPECT_THAT(Lines(), IsEmpty());
    EXPECT_EQ(Stored("NumberOfTones"), "0");
}

TEST_F(MemoryList, TakesMoreAfterRemovingFromAFullOne) {
    Add(8);
    Select(7);
    memory.cmdRemove.Press();
    EXPECT_TRUE(memory.cmdGenAdd.Enabled());
    Add();
    EXPECT_FALSE(memory.cmdGenAdd.Enabled());
    // Nothing is selected, so nothing is removed and the list stays full.
    panel.MemoryTones().cmdRemove_Click();
    EXPECT_EQ(memory.ToneList.Count(), 8);
    EXPECT_FALSE(memory.cmdGenAdd.Enabled());
}

TEST_F(MemoryList, EnablesItsButtonsBySelection) {
    AddThree();
    Select(2);
    EXPECT_TRUE(memory.cmdRemove.Enabled());
    EXPECT_TRUE(memory.cmdStartMemory.Enabled());
    Select(0);
    Select(2, false);
    EXPECT_TRUE(memory.cmdRemove.Enabled());
    Select(0, false);
    EXPECT_FALSE(memory.cmdRemove.Enabled());
    EXPECT_FALSE(memory.cmdStartMemory.Enabled());
    EXPECT_THAT(log.Lines(), IsEmpty());
}

TEST_F(MemoryList, ComesBackAtTheNextStart) {
    SetSweep(1000, 5000, 2000);
    signal.chkLoop.UserSets(true);
    signal.cmbType.UserSelects(2);
    Add();
    MoveTo(signal.sldSweepTime, 0);
    Add();
    Select(1);
    panel.WriteMemoryToRegistry();
    const std::vector<std::string> lines = Lines();
    GeneratorPanel next(needs, mnuPrint, chkMuteOutput);
    next.InitGenerator();
    ASSERT_EQ(next.MemoryControls.ToneList.Count(), 2);
    EXPECT_EQ(next.MemoryControls.ToneList.List(0), lines[0]);
    EXPECT_EQ(next.MemoryControls.ToneList.List(1), lines[1]);
    EXPECT_FALSE(next.MemoryControls.ToneList.Selected(0));
    EXPECT_TRUE(next.MemoryControls.ToneList.Selected(1));
    EXPECT_EQ(next.Controls.cmbType.Text(), "Triangle");
    EXPECT_TRUE(next.Controls.chkLoop.Checked());
}

}  // namespace
}  // namespace sonavex
