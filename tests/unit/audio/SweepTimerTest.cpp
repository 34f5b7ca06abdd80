#include <gtest/gtest.h>

#include "core/audio/SweepTimer.h"
#include "support/Errors.h"
#include "support/VirtualEventLoop.h"

namespace sonavex {
namespace {

using namespace std::chrono_literals;

class HiTimer1 : public testing::Test {
protected:
    // One playing tone that sweeps from start to end.
    ToneRecord& Sweep(double startHz, double endHz, std::int32_t timeMs) {
        ToneRecord& tone = generator.Tones[static_cast<std::size_t>(generator.NumTones++)];
        tone.StartFrequency = startHz;
        tone.EndFrequency = endHz;
        tone.SweepFrequency = startHz;
        tone.Frequency = startHz;
        tone.SweepTime = timeMs;
        tone.LoopIncrement = (endHz - startHz) / timeMs;
        tone.Sweep = true;
        generator.SweepRunning = true;
        return tone;
    }

    SharedState shared;
    VirtualEventLoop loop;
    Generator generator{shared};
    bool paused = false;
    SweepTimer timer{loop, generator, [this] { return paused; }};
};

TEST_F(HiTimer1, IsDisabledAtFirst) {
    EXPECT_FALSE(timer.Enabled());
    EXPECT_EQ(loop.Timers(), 0U);
    loop.Advance(10ms);
    EXPECT_EQ(loop.Yields(), 0U);
}

TEST_F(HiTimer1, TicksEveryMillisecondWhileEnabled) {
    timer.SetEnabled(true);
    EXPECT_EQ(loop.Interval(), 1ms);
    loop.Advance(25ms);
    EXPECT_EQ(loop.Yields(), 25U);  // without tones a tick yields once
    timer.SetEnabled(false);
    EXPECT_EQ(loop.Timers(), 0U);
    loop.Advance(25ms);
    EXPECT_EQ(loop.Yields(), 25U);
}

TEST_F(HiTimer1, EnablingTwiceStartsOneTimer) {
    timer.SetEnabled(true);
    timer.SetEnabled(true);
    EXPECT_EQ(loop.Timers(), 1U);
    timer.SetEnabled(false);
    timer.SetEnabled(false);
    EXPECT_EQ(loop.Timers(), 0U);
}

TEST_F(HiTimer1, TakesItsIntervalWhenEnabled) {
    timer.SetInterval(3ms);
    timer.SetEnabled(true);
    EXPECT_EQ(loop.Interval(), 3ms);
}

TEST_F(HiTimer1, StopsWithTheObject) {
    {
        SweepTimer other(loop, generator, [] { return false; });
        other.SetEnabled(true);
        ASSERT_EQ(loop.Timers(), 1U);
    }
    EXPECT_EQ(loop.Timers(), 0U);
}

TEST_F(HiTimer1, YieldsOnceAndOnceMoreForEveryTone) {
    timer.SetEnabled(true);
    for (std::size_t tones = 0; tones <= 9; ++tones) {
        generator.NumTones = static_cast<std::int32_t>(tones);
        const std::size_t before = loop.Yields();
        timer.Tick();
        EXPECT_EQ(loop.Yields() - before, 1 + tones);
    }
}

TEST_F(HiTimer1, SweepsForExactlyTheSweepTime) {
    ToneRecord& tone = Sweep(100, 1000, 2000);
    timer.SetEnabled(true);
    int ticksOnTheWay = 0;
    while (tone.SweepFrequency < tone.EndFrequency) {
        loop.Advance(1ms);
        ASSERT_LE(++ticksOnTheWay, 2001);
    }
    EXPECT_EQ(ticksOnTheWay, 2000);
    EXPECT_EQ(loop.Now(), 2000ms);
    EXPECT_LT(tone.Frequency, 1000 + 0.45);
    const double end = tone.Frequency;
    loop.Advance(500ms);
    EXPECT_EQ(tone.Frequency, end);
}

TEST_F(HiTimer1, MakesTheStepsThatALateTickOwes) {
    const ToneRecord& up = Sweep(100, 1100, 1000);
    const ToneRecord& down = Sweep(1100, 100, 1000);
    timer.SetEnabled(true);
    loop.Skip(50ms + 900us);
    loop.Advance(0ms);
    EXPECT_EQ(up.Frequency, 150);
    EXPECT_EQ(down.Frequency, 1050);
    EXPECT_EQ(loop.Yields(), 3U) << "owed steps deliver no events";
    loop.Advance(1ms);
    EXPECT_EQ(up.Frequency, 151);
    EXPECT_EQ(loop.Yields(), 6U);
}

TEST_F(HiTimer1, MakesTheStepsOwedByEventsOfItsTick) {
    const ToneRecord& tone = Sweep(100, 1100, 1000);
    timer.SetEnabled(true);
    loop.OnYield([this] { loop.Skip(7ms); });
    loop.Advance(1ms);
    EXPECT_EQ(loop.Now(), 15ms);
    EXPECT_EQ(tone.Frequency, 115);
}

TEST_F(HiTimer1, OwesNothingForTheTimeBeforeItsStart) {
    const ToneRecord& tone = Sweep(100, 1100, 1000);
    loop.Skip(500ms);
    timer.SetEnabled(true);
    loop.Advance(3ms);
    EXPECT_EQ(tone.Frequency, 103);
    timer.SetEnabled(false);
    loop.Skip(500ms);
    timer.SetEnabled(true);
    loop.Advance(3ms);
    EXPECT_EQ(tone.Frequency, 106);
}

TEST_F(HiTimer1, OwesNothingForTheTimeOfARebuild) {
    const ToneRecord& tone = Sweep(100, 1100, 1000);
    timer.SetEnabled(true);
    loop.Advance(10ms);
    loop.Skip(400ms);
    timer.ForgetOwed();
    loop.Advance(1ms);
    EXPECT_EQ(tone.Frequency, 112) << "the late tick and the next";
    loop.Advance(10ms);
    EXPECT_EQ(tone.Frequency, 122);
}

TEST_F(HiTimer1, DropsWhatExceedsAThousandSteps) {
    for (const auto& [late, steps] :
         {std::pair{1001ms, 1001}, std::pair{1002ms, 1001}, std::pair{9000ms, 1001}}) {
        generator.NumTones = 0;
        const ToneRecord& tone = Sweep(100, 10100, 10000);
        timer.SetEnabled(true);
        loop.Skip(late);
        loop.Advance(0ms);
        EXPECT_EQ(tone.Frequency, 100 + steps);
        loop.Advance(1ms);
        EXPECT_EQ(tone.Frequency, 101 + steps) << "the rest is dropped";
        timer.SetEnabled(false);
    }
}

TEST_F(HiTimer1, CountsAFailingStepWhichEndsTheTick) {
    ToneRecord& tone = Sweep(0, 1.7e308, 1);
    tone.LoopIncrement = 5e307;
    const auto tick = [this] { return timer.Tick(), 0; };
    timer.SetEnabled(true);
    loop.Skip(10ms);
    EXPECT_EQ(ErrorOf(tick), 6) << "in the fourth step";
    EXPECT_DOUBLE_EQ(tone.Frequency, 1.5e308);
    tone = ToneRecord{};
    tone.Sweep = true;
    tone.EndFrequency = 1000;
    tone.LoopIncrement = 1;
    timer.Tick();
    EXPECT_EQ(tone.Frequency, 6) << "the fifth to the tenth";
}

TEST_F(HiTimer1, RestartsALoopInOneStep) {
    ToneRecord& tone = Sweep(100, 110, 10);
    tone.Loop = true;
    timer.SetEnabled(true);
    loop.Skip(15ms);
    loop.Advance(0ms);
    EXPECT_EQ(tone.Frequency, 104);
}

TEST_F(HiTimer1, MakesNoOwedStepsWhenItsTickEndedEarly) {
    const ToneRecord& tone = Sweep(100, 1100, 1000);
    timer.SetEnabled(true);
    loop.Skip(10ms);
    loop.OnYield([this] { paused = true; });
    timer.Tick();
    EXPECT_EQ(tone.Frequency, 100);
    paused = false;
    loop.OnYield([this] { timer.SetEnabled(false); });
    timer.Tick();
    EXPECT_EQ(tone.Frequency, 100);
}

TEST_F(HiTimer1, IsHalfWayAfterHalfTheTime) {
    const ToneRecord& tone = Sweep(100, 1000, 2000);
    timer.SetEnabled(true);
    loop.Advance(1000ms);
    EXPECT_NEAR(tone.Frequency, 550, 1e-9);
}

TEST_F(HiTimer1, DoesNothingWhenDisabledOrPaused) {
    ToneRecord& tone = Sweep(100, 1000, 100);
    timer.Tick();
    EXPECT_EQ(loop.Yields(), 0U);
    timer.SetEnabled(true);
    paused = true;
    timer.Tick();
    EXPECT_EQ(loop.Yields(), 0U);
    EXPECT_EQ(tone.Frequency, 100);
    paused = false;
    timer.Tick();
    EXPECT_EQ(tone.Frequency, 109);
}

TEST_F(HiTimer1, EndsTheTickWhenDisabledDuringAYield) {
    const ToneRecord& first = Sweep(100, 200, 100);
    const ToneRecord& second = Sweep(100, 200, 100);
    // Yields: 1 before all tones, 2 before the first one, 3 before the second.
    for (const std::size_t at : {1U, 2U, 3U}) {
        timer.SetEnabled(true);
        const double firstBefore = first.Frequency;
        const double secondBefore = second.Frequency;
        const std::size_t yieldsBefore = loop.Yields();
        loop.OnYield([&] {
            if (loop.Yields() - yieldsBefore == at) timer.SetEnabled(false);
        });
        timer.Tick();
        EXPECT_EQ(loop.Yields() - yieldsBefore, at);
        EXPECT_EQ(first.Frequency, firstBefore + (at == 3 ? 1 : 0));
        EXPECT_EQ(second.Frequency, secondBefore);
    }
}

TEST_F(HiTimer1, EndsTheTickWhenPausedDuringAYield) {
    const ToneRecord& tone = Sweep(100, 200, 100);
    timer.SetEnabled(true);
    loop.OnYield([&] { paused = true; });
    timer.Tick();
    EXPECT_EQ(loop.Yields(), 1U);
    EXPECT_EQ(tone.Frequency, 100);
}

TEST_F(HiTimer1, LooksAtTheNumberOfTonesAfterEachYield) {
    for (int i = 0; i < 3; ++i) Sweep(100, 200, 100);
    timer.SetEnabled(true);
    loop.OnYield([&] {
        if (loop.Yields() == 3) generator.NumTones = 1;  // before the second tone
    });
    timer.Tick();
    EXPECT_EQ(loop.Yields(), 3U);
    EXPECT_EQ(generator.Tones[0].Frequency, 101);
    EXPECT_EQ(generator.Tones[1].Frequency, 100);
    EXPECT_EQ(generator.Tones[2].Frequency, 100);
}

TEST_F(HiTimer1, NeverTicksInsideATick) {
    const ToneRecord& tone = Sweep(100, 200, 100);
    timer.SetEnabled(true);
    EXPECT_FALSE(timer.Ticking());
    loop.OnYield([&] {
        EXPECT_TRUE(timer.Ticking());
        timer.Tick();
    });
    timer.Tick();
    EXPECT_FALSE(timer.Ticking());
    EXPECT_EQ(loop.Yields(), 2U);
    EXPECT_EQ(tone.Frequency, 101);
    loop.OnYield(nullptr);
    timer.Tick();
    EXPECT_EQ(tone.Frequency, 102);
}

TEST_F(HiTimer1, TicksAgainAfterATickThatFailed) {
    ToneRecord& tone = Sweep(100, 200, 100);
    tone.LoopIncrement = 1e308;
    tone.EndFrequency = 1.7e308;
    tone.SweepFrequency = 1e308;
    timer.SetEnabled(true);
    EXPECT_EQ(ErrorOf([&] {
                  timer.Tick();
                  return 0;
              }),
              6);
    tone.SweepFrequency = 0.0;
    timer.Tick();
    EXPECT_EQ(tone.Frequency, 1e308);
}

}  // namespace
}  // namespace sonavex
