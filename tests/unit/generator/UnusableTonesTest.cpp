#include <gmock/gmock.h>

#include <cmath>

#include "support/Errors.h"
#include "support/MemoryRig.h"

namespace sonavex {
namespace {

using testing::AllOf;
using testing::Each;
using testing::Ge;
using testing::HasSubstr;
using testing::Le;

// Stored tones that cannot play, as only edited settings contain.
class UnusableTones : public MemoryRig {
protected:
    // Number and text of the error raised by the start button.
    std::pair<std::int32_t, std::string> PressStart() {
        const auto error = Raised([this] { memory.cmdStartMemory.Press(); });
        return error ? std::pair(error->Number(), std::string(error->what())) : std::pair(0, std::string());
    }
    void ExpectNothingPlays() {
        EXPECT_FALSE(generator.GeneratorRunning);
        EXPECT_FALSE(generator.SweepRunning);
        EXPECT_FALSE(timer.Enabled());
        EXPECT_EQ(generator.NumTones, 0);
        EXPECT_EQ(memory.cmdStartMemory.Caption(), "Start Memory");
        EXPECT_TRUE(Shown(kGeneratorStopped));
        EXPECT_TRUE(SignalEnabled(true));
        EXPECT_THAT(bench.Fill(), Each(0.0));
    }
};

// The step between such frequencies is not finite; the tones must not be lost.
TEST_F(UnusableTones, OfHugeFrequenciesAreStoredAgain) {
    Store("NumberOfTones", "1");
    Store("Memory Signal Start 1", "1E308");
    Store("Memory Signal End 1", "-1E308");
    Store("Memory Signal Sweep Time 1", "1");
    Store("Memory Signal Sweep 1", "True");
    Init();
    EXPECT_NO_THROW(panel.WriteMemoryToRegistry());
    EXPECT_EQ(Stored("Memory Signal Start 1"), " 1E+308");
    EXPECT_EQ(Stored("Memory Signal Loop Increment 1"), "-1.79769313486231E+308");
    EXPECT_EQ(Stored("NumberOfTones"), "1");
    EXPECT_NO_THROW(Init());
}

TEST_F(UnusableTones, OfZeroHertzAreRefusedForEveryWaveform) {
    Select(1);
    for (int waveType = 0; waveType < 4; ++waveType) {
        // The previous content of the record must not play.
        Tone() = ToneRecord{};
        Tone().Phase = 1.0;
        Tone().PhaseIncrement = 0.1;
        Tone().Period = 60.0;
        Store("Memory Signal Start 2", " 0");
        Store("Memory Signal Type 2", std::to_string(waveType));
        const auto [number, text] = PressStart();
        EXPECT_EQ(number, 11);
        EXPECT_THAT(text, HasSubstr("key \"Memory Signal Start 2\", value \" 0\""));
        ExpectNothingPlays();
    }
}

TEST_F(UnusableTones, BelowZeroHertzAreRefused) {
    Select(1);
    Store("Memory Signal Start 2", "-440");
    const auto [number, text] = PressStart();
    EXPECT_EQ(number, 5);
    EXPECT_THAT(text, HasSubstr("key \"Memory Signal Start 2\", value \"-440\""));
    ExpectNothingPlays();
}

TEST_F(UnusableTones, AreRefusedWhereASweepEndsAtZero) {
    Select(0);
    for (const auto& [value, expected] : {std::pair{"0", 11}, std::pair{"-20", 5}}) {
        Store("Memory Signal End 1", value);
        const auto [number, text] = PressStart();
        EXPECT_EQ(number, expected);
        EXPECT_THAT(text, HasSubstr("key \"Memory Signal End 1\""));
        ExpectNothingPlays();
    }
}

TEST_F(UnusableTones, HaveAnEndThatMattersOnlyForASweep) {
    Select(1);
    Store("Memory Signal End 2", "0");
    EXPECT_EQ(PressStart().first, 0);
    EXPECT_TRUE(generator.GeneratorRunning);
    EXPECT_EQ(Tone().Frequency, 200.0);
}

// A stored step that does not fit its sweep: the sweep stops at its end frequency.
TEST_F(UnusableTones, WithAStepTooLargePlayOn) {
    Select(0);
    Store("Memory Signal Start 1", "1000");
    Store("Memory Signal End 1", "20");
    Store("Memory Signal Loop Increment 1", "-700");
    ASSERT_EQ(PressStart().first, 0);
    for (int ms = 0; ms < 10; ++ms) {
        loop.Advance(std::chrono::milliseconds(1));
        ASSERT_GE(Tone().Frequency, 20.0);
        EXPECT_THAT(bench.Fill(), Each(AllOf(Ge(-8192.0), Le(8192.0))));
    }
}

TEST_F(UnusableTones, OfAnUnknownWaveformAreSilent) {
    Select(1);
    Store("Memory Signal Type 2", "7");
    Tone().Phase = 1.0;
    ASSERT_EQ(PressStart().first, 0);
    EXPECT_THAT(bench.Fill(), Each(0.0));
}

}  // namespace
}  // namespace sonavex
