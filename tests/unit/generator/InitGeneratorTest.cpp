#include <gmock/gmock.h>

#include "support/Errors.h"
#include "support/PanelRig.h"

namespace sonavex {
namespace {

using testing::Each;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class InitGenerator : public PanelRig {
protected:
    std::string RefusalWith(std::int32_t number) {
        const auto error = Raised([this] { panel.InitGenerator(); });
        EXPECT_EQ(error ? error->Number() : 0, number);
        return error ? error->what() : "no error";
    }
};

TEST_F(InitGenerator, StoresTheLevelOnlyForAFreshAccount) {
    panel.InitGenerator();
    EXPECT_EQ(store.Stored.Size(), 1U);
    EXPECT_EQ(Stored("Level"), "-50");
    EXPECT_EQ(signal.sldLevel.Value(), -50);
    EXPECT_EQ(signal.lblGenLevel.Caption(), "-0.50 dB");
    EXPECT_EQ(generator.LoadedDefaults().level, -50.0);
    EXPECT_THAT(volumes, ElementsAre(-50, -50));
    EXPECT_THAT(log.Of("DeleteSection"), IsEmpty());
    EXPECT_THAT(log.Of("Message"), IsEmpty());
}

TEST_F(InitGenerator, ShowsAFreshAccount) {
    mnuPrint.SetEnabled(true);
    memory.cmdRemove.SetEnabled(true);
    memory.cmdStartMemory.SetEnabled(true);
    memory.ToneList.AddItem("left over");
    panel.InitGenerator();
    EXPECT_EQ(signal.Command1.Caption(), "Start Current");
    EXPECT_EQ(memory.cmdStartMemory.Caption(), "Start Memory");
    EXPECT_FALSE(mnuPrint.Enabled());
    EXPECT_EQ(signal.sldStartFreq.Value(), 1000);
    EXPECT_EQ(signal.txtGenFreq.Text(), "1000");
    EXPECT_EQ(signal.sldEndFreq.Value(), 20);
    EXPECT_EQ(signal.txtGenEndFreq.Text(), "20");
    EXPECT_EQ(signal.sldSweepTime.Value(), 0);
    EXPECT_EQ(signal.txtSweepTime.Text(), "0");
    EXPECT_EQ(signal.cmbType.Text(), "Sine");
    EXPECT_FALSE(signal.chkLoop.Checked());
    EXPECT_FALSE(signal.chkLoop.Enabled());
    EXPECT_FALSE(signal.sldEndFreq.Enabled());
    EXPECT_FALSE(signal.txtGenEndFreq.Enabled());
    EXPECT_TRUE(Shown(kGeneratorStopped));
    EXPECT_EQ(memory.ToneList.Count(), 0);
    EXPECT_TRUE(memory.cmdGenAdd.Enabled());
    EXPECT_FALSE(memory.cmdRemove.Enabled());
    EXPECT_FALSE(memory.cmdStartMemory.Enabled());
    EXPECT_EQ(generator.NumTones, 0);
    EXPECT_FALSE(generator.GeneratorRunning);
    EXPECT_FALSE(timer.Enabled());
}

TEST_F(InitGenerator, RestoresASweep) {
    Store("Level", "-1200");
    Store("Current Signal Start", "440.5");
    Store("Current Signal End", "4000");
    Store("Current Signal Sweep Time", "2000");
    Store("Current Signal Sweep", "True");
    Store("Current Signal Type", "2");
    Store("Current Signal Loop", "-1");
    Store("Current Signal Loop Increment", "0.0178");
    panel.InitGenerator();
    EXPECT_EQ(signal.sldLevel.Value(), -1200);
    EXPECT_EQ(signal.sldStartFreq.Value(), 440);
    EXPECT_EQ(signal.txtGenFreq.Text(), "440");
    EXPECT_EQ(signal.txtGenEndFreq.Text(), "4000");
    EXPECT_EQ(signal.txtSweepTime.Text(), "2000");
    EXPECT_EQ(signal.cmbType.ListIndex(), 2);
    EXPECT_EQ(signal.chkLoop.Value(), 1);
    EXPECT_TRUE(signal.chkLoop.Enabled());
    EXPECT_TRUE(signal.sldEndFreq.Enabled());
    EXPECT_TRUE(signal.txtGenEndFreq.Enabled());
    const ToneRecord& tone = Tone();
    EXPECT_EQ(tone.StartFrequency, 440.0);
    EXPECT_EQ(tone.EndFrequency, 4000.0);
    EXPECT_EQ(tone.SweepTime, 2000);
    EXPECT_TRUE(tone.Sweep);
    EXPECT_EQ(tone.WaveType, wave::kTriangle);
    EXPECT_TRUE(tone.Loop);
    EXPECT_EQ(tone.LoopIncrement, 0.0178);
    EXPECT_THAT(log.Of("Save"), Each("Save Signal Generator|Level|-1200"));
}

TEST_F(InitGenerator, ClampsWhatIsStored) {
    Store("Level", "50");
    Store("Current Signal Start", "1e300");
    Store("Current Signal End", "-3");
    Store("Current Signal Sweep Time", "20000");
    panel.InitGenerator();
    EXPECT_EQ(signal.sldLevel.Value(), 0);
    EXPECT_EQ(Stored("Level"), "0");
    EXPECT_EQ(signal.txtGenFreq.Text(), "22050");
    EXPECT_EQ(signal.txtGenEndFreq.Text(), "1");
    EXPECT_EQ(signal.txtSweepTime.Text(), "10000");
    EXPECT_EQ(Tone().StartFrequency, 22050.0);
    EXPECT_EQ(Tone().SweepTime, 10000);
}

TEST_F(InitGenerator, LoadsTheMemoryTones) {
    Store("NumberOfTones", "2");
    Store("Memory Signal Start 1", " 1000");
    Store("Memory Signal End 1", " 5000");
    Store("Memory Signal Sweep Time 1", " 2000");
    Store("Memory Signal Sweep 1", "True");
    Store("Memory Signal Type 1", " 0");
    Store("Memory Signal Loop 1", "True");
    Store("Memory Signal Selected 1", "True");
    Store("Memory Signal Loop Increment 1", " 2");
    Store("Memory Signal Start 2", "12.5");
    Store("Memory Signal Type 2", " 1");
    panel.InitGenerator();
    EXPECT_THAT(Lines(), ElementsAre("1000Hz / 5000Hz  / Sine / 2000ms / Loop",
                                     "12.5Hz / NA / Square / NA / No Loop"));
    EXPECT_TRUE(memory.ToneList.Selected(0));
    EXPECT_FALSE(memory.ToneList.Selected(1));
    EXPECT_EQ(generator.NumTones, 2);
    EXPECT_EQ(Tone(1).StartFrequency, 1000.0);
    EXPECT_EQ(Tone(1).EndFrequency, 5000.0);
    EXPECT_EQ(Tone(1).SweepTime, 2000);
    EXPECT_TRUE(Tone(1).Sweep);
    EXPECT_TRUE(Tone(1).Loop);
    EXPECT_EQ(Tone(1).LoopIncrement, 2.0);
    EXPECT_EQ(Tone(2).StartFrequency, 12.5);
    EXPECT_EQ(Tone(2).WaveType, wave::kSquare);
    // A restored selection enables the buttons, like one made by the user.
    EXPECT_TRUE(memory.cmdRemove.Enabled());
    EXPECT_TRUE(memory.cmdStartMemory.Enabled());
}

TEST_F(InitGenerator, NeedsASelectionForTheButtonsOfTheMemoryTones) {
    Store("NumberOfTones", "1");
    panel.InitGenerator();
    EXPECT_EQ(memory.ToneList.Count(), 1);
    EXPECT_FALSE(memory.cmdRemove.Enabled());
    EXPECT_FALSE(memory.cmdStartMemory.Enabled());
}

TEST_F(InitGenerator, HasDefaultsForMemoryTones) {
    Store("NumberOfTones", "1");
    Tone(1) = ToneRecord{wave::kSquare, 1, true, 5, 6, 7, 8, 9, 10, true};
    panel.InitGenerator();
    const std::string get = "Get Signal Generator|";
    const std::vector<std::string> reads = log.Of("Get");
    ASSERT_GE(reads.size(), 8U);
    EXPECT_THAT(
        std::vector<std::string>(reads.end() - 8, reads.end()),
        ElementsAre(get + "Memory Signal Start 1|1000", get + "Memory Signal End 1|0",
                    get + "Memory Signal Sweep Time 1|0", get + "Memory Signal Sweep 1|False",
                    get + "Memory Signal Type 1|0", get + "Memory Signal Loop 1|0",
                    get + "Memory Signal Loop Increment 1|0", get + "Memory Signal Selected 1|False"));
    EXPECT_THAT(Lines(), ElementsAre("1000Hz / NA / Sine / NA / No Loop"));
    EXPECT_EQ(Tone(1).EndFrequency, 0.0);
    EXPECT_EQ(Tone(1).LoopIncrement, 0.0);
    EXPECT_FALSE(Tone(1).Loop);
}

TEST_F(InitGenerator, LoadsEightTones) {
    Store("NumberOfTones", "8");
    panel.InitGenerator();
    EXPECT_EQ(memory.ToneList.Count(), 8);
    EXPECT_FALSE(memory.cmdGenAdd.Enabled());
}

TEST_F(InitGenerator, LoadsSevenTones) {
    Store("NumberOfTones", "7");
    panel.InitGenerator();
    EXPECT_EQ(memory.ToneList.Count(), 7);
    EXPECT_TRUE(memory.cmdGenAdd.Enabled());
}

TEST_F(InitGenerator, RefusesNineTones) {
    Store("NumberOfTones", "9");
    const std::string text = RefusalWith(9);
    EXPECT_THAT(text, HasSubstr("Subscript out of range"));
    EXPECT_THAT(text, HasSubstr("section \"Signal Generator\", key \"NumberOfTones\", value \"9\""));
    EXPECT_THAT(text, HasSubstr("recorded settings"));
}

TEST_F(InitGenerator, NamesTheKeyThatDoesNotConvert) {
    Store("NumberOfTones", "1");
    Store("Memory Signal Sweep Time 1", "soon");
    const std::string text = RefusalWith(13);
    EXPECT_THAT(text, HasSubstr("key \"Memory Signal Sweep Time 1\", value \"soon\""));
}

TEST_F(InitGenerator, RefusesAWaveformThatDoesNotExist) {
    Store("Current Signal Type", "4");
    EXPECT_THAT(RefusalWith(5), HasSubstr("key \"Current Signal Type\", value \"4\""));
    for (const char* value : {"-1", "-2"}) {
        Store("Current Signal Type", value);
        EXPECT_THAT(RefusalWith(5), HasSubstr("value \"" + std::string(value) + "\""));
    }
    Store("Current Signal Type", "3");
    Store("NumberOfTones", "1");
    Store("Memory Signal Type 1", "4");
    EXPECT_THAT(RefusalWith(9), HasSubstr("key \"Memory Signal Type 1\", value \"4\""));
}

// Without the rest of the panel, which enables and disables controls too.
TEST_F(InitGenerator, OfTheCurrentSignalAloneShowsItsLoop) {
    for (const auto& [timeMs, enabled] :
         {std::pair{"0", false}, std::pair{"1", true}, std::pair{"700", true}}) {
        Store("Current Signal Sweep Time", timeMs);
        Store("Current Signal Loop", "True");
        panel.CurrentSignal().Restore();
        EXPECT_EQ(signal.chkLoop.Enabled(), enabled) << timeMs;
        EXPECT_EQ(signal.chkLoop.Value(), 1);
    }
}

}  // namespace
}  // namespace sonavex
