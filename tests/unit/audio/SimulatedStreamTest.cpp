#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

#include "core/ports/SoundErrors.h"
#include "platform/simulated/SimulatedSoundSystem.h"
#include "support/EngineBench.h"
#include "support/Errors.h"

namespace sonavex {
namespace {

using testing::ElementsAre;

constexpr std::size_t kSegmentFrames = 2048;

// The engine on the simulated card, which moves only when stepped.
class SimulatedStream : public testing::TestWithParam<std::int32_t>,
                        protected EngineOn<SimulatedSoundSystem> {
protected:
    SimulatedStream() : EngineOn(GetParam()) {
        store.Save("Signal Generator", "Level", "0");
        processor.onBlock = [this](std::span<const std::int16_t> captured, std::span<std::int16_t> playback) {
            segments.push_back(engine.CaptureSegment);
            lastCaptured.assign(captured.begin(), captured.end());
            // Every sample holds the number of its block.
            std::fill(playback.begin(), playback.end(), static_cast<std::int16_t>(++blocksMade % 30000));
        };
    }

    // Moves the card by one segment, then delivers the notifications.
    void StepSegment() {
        sound.Card().Step(kSegmentFrames);
        loop.DeliverSignals();
    }

    std::vector<std::int32_t> segments;
    std::vector<std::int16_t> lastCaptured;
    int blocksMade = 0;
};

INSTANTIATE_TEST_SUITE_P(Generations, SimulatedStream, testing::Values(5, 10));

TEST_P(SimulatedStream, StartsPlaybackAfterSevenBlocks) {
    Start();
    for (int n = 1; n <= 7; ++n) {
        EXPECT_EQ(engine.PlaybackStarts, 0U) << n;
        StepSegment();
    }
    EXPECT_EQ(engine.PlaybackStarts, 1U);
    EXPECT_EQ(engine.SecondaryBuffer()->GetCurrentPosition().write, 0);
    StepSegment();
    // The eighth segment returns the first block that was written.
    EXPECT_THAT(lastCaptured, testing::Each(1));
    EXPECT_EQ(engine.SecondaryBuffer()->GetCurrentPosition().write, 8192);
}

TEST_P(SimulatedStream, RunsAThousandBlocksWithoutOverrun) {
    Start();
    for (int n = 1; n <= 1000; ++n) {
        StepSegment();
        ASSERT_EQ(engine.Blocks, static_cast<std::uint64_t>(n));
        // Playback leads by seven blocks: block n - 7 is heard while n is captured.
        if (n <= 7) continue;
        ASSERT_TRUE(std::all_of(lastCaptured.begin(), lastCaptured.end(), [&](std::int16_t sample) {
            return sample == n - 7;
        })) << n;
    }
    EXPECT_EQ(engine.Overruns, 0U);
    EXPECT_EQ(engine.PlaybackStarts, 1U);
    EXPECT_EQ(engine.CaptureCounts().segmentsLost, 0U);
    EXPECT_EQ(engine.CaptureCounts().segmentsCompleted, 1000U);
    EXPECT_EQ(engine.CaptureCounts().framesCaptured, 1000U * kSegmentFrames);
}

TEST_P(SimulatedStream, DeliversEachSegmentOnceAfterAStallOfFive) {
    Start();
    for (int n = 0; n < 16; ++n) StepSegment();
    segments.clear();
    log.Clear();
    sound.Card().Step(5 * kSegmentFrames);
    loop.DeliverSignals();
    EXPECT_THAT(segments, ElementsAre(0, 1, 2, 3));
    EXPECT_EQ(engine.CaptureCounts().segmentsLost, 1U);
    EXPECT_EQ(engine.CaptureCounts().segmentsCompleted, 21U);
    EXPECT_THAT(log.Lines(), ElementsAre("StreamDisturbed", "ProcessCapturedBlock", "ProcessCapturedBlock",
                                         "ProcessCapturedBlock", "ProcessCapturedBlock"));
    StepSegment();
    EXPECT_THAT(segments, ElementsAre(0, 1, 2, 3, 1));
    EXPECT_EQ(engine.CaptureCounts().segmentsLost, 1U);
}

TEST_P(SimulatedStream, MovesOnAfterTheCardStoodStill) {
    Start();
    for (int n = 0; n < 8; ++n) StepSegment();
    sound.Card().SetStalled(true);
    for (int n = 0; n < 5; ++n) StepSegment();
    EXPECT_EQ(engine.Blocks, 8U);
    sound.Card().SetStalled(false);
    StepSegment();
    EXPECT_EQ(engine.Blocks, 9U);
    EXPECT_EQ(engine.Overruns, 0U);
}

TEST_P(SimulatedStream, CountsAnOverrunWhenTheBlocksComeTooLate) {
    Start();
    for (int n = 0; n < 8; ++n) StepSegment();
    // Playback catches up with the next block to write.
    sound.Card().Step(7 * kSegmentFrames + 100);
    loop.DeliverSignals();
    EXPECT_EQ(engine.Overruns, 1U);
    EXPECT_EQ(engine.RestartPending, GetParam() < 6);
    for (int n = 0; n < 8; ++n) StepSegment();
    EXPECT_EQ(engine.Overruns, 1U);
    EXPECT_EQ(engine.PlaybackStarts, GetParam() < 6 ? 2U : 1U);
}

TEST_P(SimulatedStream, DiscardsUndeliveredNotificationsOfDestroyedEvents) {
    Start();
    StepSegment();
    sound.Card().Step(3 * kSegmentFrames);
    ASSERT_EQ(loop.WaitingSignals(), 3U);
    ASSERT_TRUE(engine.SetEvents());
    loop.DeliverSignals();
    EXPECT_EQ(engine.Blocks, 1U);
    engine.StartCapture();
    sound.Card().Step(2 * kSegmentFrames);
    engine.Release();
    loop.DeliverSignals();
    EXPECT_EQ(engine.Blocks, 1U);
}

TEST_P(SimulatedStream, ReStartDropsWhatWasWaitingAndStartsAgain) {
    Start();
    for (int n = 0; n < 10; ++n) StepSegment();
    sound.Card().Step(2 * kSegmentFrames);
    ASSERT_TRUE(engine.ReStart());
    EXPECT_EQ(engine.Blocks, 10U);
    for (int n = 0; n < 7; ++n) StepSegment();
    EXPECT_EQ(engine.Blocks, 17U);
    EXPECT_EQ(engine.PlaybackStarts, 2U);
    EXPECT_EQ(engine.Overruns, 0U);
}

TEST_P(SimulatedStream, RaisesBufferLostWhenTheCardIsUnplugged) {
    Start();
    for (int n = 0; n < 8; ++n) StepSegment();
    sound.Card().Step(kSegmentFrames);
    sound.Unplug();
    EXPECT_EQ(ErrorOf([&] {
                  loop.DeliverSignals();
                  return 0;
              }),
              sound_error::kBufferLost);
    EXPECT_EQ(engine.Blocks, 8U);
    sound.Plug();
    EXPECT_TRUE(engine.ReStart());
    StepSegment();
    EXPECT_EQ(engine.Blocks, 9U);
}

TEST_P(SimulatedStream, KeepsPlayingWhenDevicesAreCreatedTwice) {
    ASSERT_TRUE(engine.CreateDevices());
    Start();
    for (int n = 0; n < 9; ++n) StepSegment();
    EXPECT_THAT(lastCaptured, testing::Each(2));
}

}  // namespace
}  // namespace sonavex
