#include <gmock/gmock.h>

#include <algorithm>
#include <cmath>

#include "support/Errors.h"
#include "support/MemoryRig.h"

namespace sonavex {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class MemoryPlayback : public MemoryRig {};

TEST_F(MemoryPlayback, StartsTheSelectedTones) {
    Select(1);
    Select(2);
    generator.SweepCycleCount = 5;
    memory.cmdStartMemory.Press();
    EXPECT_EQ(generator.NumTones, 2);
    EXPECT_TRUE(generator.GeneratorRunning);
    EXPECT_TRUE(generator.SweepRunning);
    EXPECT_EQ(generator.SweepCycleCount, 0);
    EXPECT_FALSE(timer.Enabled());
    EXPECT_EQ(memory.cmdStartMemory.Caption(), "Stop Memory");
    EXPECT_TRUE(Shown(kGeneratorPlaying));
    EXPECT_EQ(Tone(0).WaveType, wave::kSquare);
    EXPECT_EQ(Tone(0).StartFrequency, 200.0);
    EXPECT_EQ(Tone(0).Frequency, 200.0);
    EXPECT_EQ(Tone(0).SweepFrequency, 200.0);
    EXPECT_EQ(Tone(0).LastFrequency, 200.0);
    EXPECT_EQ(Tone(0).Period, 220.5);
    EXPECT_EQ(Tone(1).WaveType, wave::kSine);
    EXPECT_EQ(Tone(1).Frequency, 300.0);
}

TEST_F(MemoryPlayback, ReadsTheSettingsInOrder) {
    Select(2);
    store.Stored.DeleteSection("Signal Generator");
    memory.cmdStartMemory.Press();
    const std::string get = "Get Signal Generator|";
    EXPECT_THAT(log.Lines(),
                ElementsAre(get + "Memory Signal Start 3|1", get + "Memory Signal End 3|1",
                            get + "Memory Signal Sweep Time 3|0", get + "Memory Signal Sweep 3|False",
                            get + "Memory Signal Type 3|0", get + "Memory Signal Loop 3|False",
                            get + "Memory Signal Loop Increment 3|1000"));
    EXPECT_EQ(Tone().StartFrequency, 1.0);
    EXPECT_EQ(Tone().EndFrequency, 1.0);
    EXPECT_EQ(Tone().LoopIncrement, 1000.0);
    EXPECT_EQ(Tone().Frequency, 1.0);
    EXPECT_FALSE(Tone().Sweep);
    EXPECT_FALSE(Tone().Loop);
}

TEST_F(MemoryPlayback, SweepsEachToneByItself) {
    SetSweep(2000, 1000, 1000);
    signal.chkLoop.UserSets(false);
    Add();
    Select(0);
    Select(2);
    Select(3);
    memory.cmdStartMemory.Press();
    EXPECT_EQ(generator.NumTones, 3);
    EXPECT_TRUE(timer.Enabled());
    loop.Advance(std::chrono::milliseconds(250));
    EXPECT_NEAR(Tone(0).Frequency, 550.0, 1e-6);
    EXPECT_EQ(Tone(1).Frequency, 300.0);
    EXPECT_NEAR(Tone(2).Frequency, 1750.0, 1e-6);
    loop.Advance(std::chrono::milliseconds(260));
    EXPECT_LT(Tone(0).Frequency, 130.0);
    EXPECT_NEAR(Tone(2).Frequency, 1490.0, 1e-6);
    loop.Advance(std::chrono::milliseconds(800));
    EXPECT_NEAR(Tone(2).Frequency, 1000.0, 1.0);
}

TEST_F(MemoryPlayback, Stops) {
    Select(0);
    memory.cmdStartMemory.Press();
    memory.cmdStartMemory.Press();
    EXPECT_FALSE(generator.GeneratorRunning);
    EXPECT_EQ(generator.GeneratorState, 8);
    EXPECT_FALSE(generator.SweepRunning);
    EXPECT_FALSE(timer.Enabled());
    EXPECT_EQ(memory.cmdStartMemory.Caption(), "Start Memory");
    EXPECT_TRUE(Shown(kGeneratorStopped));
    EXPECT_TRUE(memory.cmdStartMemory.Enabled());
    EXPECT_TRUE(memory.cmdRemove.Enabled());
}

TEST_F(MemoryPlayback, StartsWithNothingSelected) {
    panel.MemoryTones().cmdStartMemory_Click();
    EXPECT_EQ(generator.NumTones, 0);
    EXPECT_EQ(memory.cmdStartMemory.Caption(), "Stop Memory");
    EXPECT_THAT(bench.Fill(), testing::Each(0.0));
    EXPECT_THAT(log.Lines(), IsEmpty());
    EXPECT_TRUE(memory.cmdStartMemory.Enabled());
    memory.cmdStartMemory.Press();
    EXPECT_EQ(memory.cmdStartMemory.Caption(), "Start Memory");
    EXPECT_FALSE(memory.cmdStartMemory.Enabled());
    EXPECT_FALSE(memory.cmdRemove.Enabled());
}

TEST_F(MemoryPlayback, IsStoredWhileItPlaysAsTheControlsSay) {
    Select(0);
    memory.cmdStartMemory.Press();
    panel.WriteMemoryToRegistry();
    EXPECT_EQ(Stored("Current Signal Start"), "300");
    EXPECT_EQ(Stored("Current Signal Sweep"), "False");
    EXPECT_EQ(Stored("Memory Signal Start 1"), " 100");
    EXPECT_EQ(Stored("Memory Signal Selected 1"), "True");
    EXPECT_EQ(Stored("NumberOfTones"), "3");
}

TEST_F(MemoryPlayback, ChangesTheLevelMeanwhile) {
    Select(0);
    memory.cmdStartMemory.Press();
    volumes.clear();
    signal.sldLevel.UserMoves(-600);
    EXPECT_THAT(volumes, ElementsAre(-600));
}

TEST_F(MemoryPlayback, RefusesATenthTone) {
    for (std::int32_t entry = 3; entry < 10; ++entry) memory.ToneList.AddItem("entry");
    for (std::int32_t entry = 0; entry < 9; ++entry) memory.ToneList.SetSelected(entry, true);
    panel.MemoryTones().cmdStartMemory_Click();
    EXPECT_EQ(generator.NumTones, 9);
    panel.MemoryTones().cmdStartMemory_Click();
    memory.ToneList.SetSelected(9, true);
    EXPECT_EQ(ErrorOf([this] {
                  panel.MemoryTones().cmdStartMemory_Click();
                  return 0;
              }),
              9);
}

// After any failure of a start, the panel is as if nothing had been started.
TEST_F(MemoryPlayback, PlaysNothingAfterAFailedStart) {
    Select(0);
    Select(2);
    for (const auto& [value, number] :
         {std::pair{"wrong", 13}, std::pair{"1e999", 6}, std::pair{"1e-310", 6}}) {
        Store("Memory Signal Start 3", value);
        EXPECT_EQ(ErrorOf([this] {
                      memory.cmdStartMemory.Press();
                      return 0;
                  }),
                  number);
        EXPECT_FALSE(generator.GeneratorRunning);
        EXPECT_FALSE(generator.SweepRunning);
        EXPECT_EQ(generator.NumTones, 0);
        EXPECT_FALSE(timer.Enabled());
        EXPECT_EQ(memory.cmdStartMemory.Caption(), "Start Memory");
        EXPECT_TRUE(Shown(kGeneratorStopped));
        EXPECT_TRUE(SignalEnabled(true));
        EXPECT_TRUE(memory.cmdStartMemory.Enabled());
        EXPECT_FALSE(memory.ToneList.Locked());
    }
}

// A tone above half the rate would alias.
TEST_F(MemoryPlayback, RefusesTonesAboveHalfTheRateBeforeAnythingChanges) {
    Select(0);
    Select(2);
    Tone(0).Frequency = 777.0;
    const auto expectRefusal = [this](const std::string& text) {
        log.Clear();
        memory.cmdStartMemory.Press();
        EXPECT_THAT(log.Of("Message"), ElementsAre("Message information " + text));
        EXPECT_FALSE(generator.GeneratorRunning);
        EXPECT_FALSE(generator.SweepRunning);
        EXPECT_FALSE(timer.Enabled());
        EXPECT_EQ(generator.NumTones, 2);
        EXPECT_EQ(Tone(0).Frequency, 777.0);
        EXPECT_EQ(memory.cmdStartMemory.Caption(), "Start Memory");
        EXPECT_TRUE(memory.cmdStartMemory.Enabled());
        EXPECT_FALSE(memory.ToneList.Locked());
        EXPECT_TRUE(Shown(kGeneratorStopped));
    };
    Store("Memory Signal Start 3", "22050.5");
    expectRefusal(
        "Invalid Start Frequency\r\rValue has to be 20 to 22050\r\r300Hz / NA / Sine / NA / No Loop");
    Store("Memory Signal Start 3", "300");
    bench.shared.SampleRate = 1999;
    expectRefusal(
        "Invalid End Frequency\r\rValue has to be 20 to 999\r\r100Hz / 1000Hz  / Sine / 500ms / Loop");
    Store("Memory Signal Start 1", "1000");
    expectRefusal(
        "Invalid Start Frequency\r\rValue has to be 20 to 999\r\r100Hz / 1000Hz  / Sine / 500ms / Loop");
}

TEST_F(MemoryPlayback, PlaysTonesUpToHalfTheRateWithoutALowerLimit) {
    bench.shared.SampleRate = 2001;
    Select(0);
    Select(1);
    Select(2);
    Store("Memory Signal Start 1", "1000");
    Store("Memory Signal End 1", "1000");
    Store("Memory Signal Start 2", "0.5");
    Store("Memory Signal End 3", "5000");  // without a sweep
    memory.cmdStartMemory.Press();
    EXPECT_THAT(log.Of("Message"), IsEmpty());
    EXPECT_TRUE(generator.GeneratorRunning);
    EXPECT_EQ(Tone(0).Frequency, 1000.0);
    EXPECT_EQ(Tone(1).Frequency, 0.5);
    EXPECT_EQ(generator.NumTones, 3);
}

TEST_F(MemoryPlayback, StaysBelowFullScale) {
    Add(5);
    for (std::int32_t entry = 1; entry < 8; ++entry) Select(entry);
    memory.cmdStartMemory.Press();
    EXPECT_EQ(generator.NumTones, 7);
    const std::vector<double> samples = bench.Samples(44100);
    const double largest = std::abs(*std::max_element(
        samples.begin(), samples.end(), [](double a, double b) { return std::abs(a) < std::abs(b); }));
    EXPECT_GT(largest, 10000.0);
    EXPECT_LE(largest, 7.0 * 32767.0 / 2.0 / 8.0 + 1e-6);
}

TEST_F(MemoryPlayback, StopsWithWhateverPlays) {
    Select(0);
    memory.cmdStartMemory.Press();
    panel.StopPlaying();
    EXPECT_FALSE(generator.SweepRunning);
    EXPECT_EQ(memory.cmdStartMemory.Caption(), "Start Memory");
    signal.Command1.Press();
    panel.StopPlaying();
    EXPECT_FALSE(generator.SweepRunning);
    EXPECT_EQ(signal.Command1.Caption(), "Start Current");
    panel.StopPlaying();
    EXPECT_FALSE(generator.SweepRunning);
}

// Even for very low frequencies; the record's old period must not be used.
TEST_F(MemoryPlayback, GivesEveryToneItsOwnPeriod) {
    for (const char* startHz : {"0.01", "0.5", "300"}) {
        Store("Memory Signal Start 2", startHz);
        Select(1);
        memory.cmdStartMemory.Press();
        EXPECT_EQ(Tone().Period, 44100.0 / std::stod(startHz)) << startHz;
        memory.cmdStartMemory.Press();
    }
}

}  // namespace
}  // namespace sonavex
