#include "core/audio/StreamWatch.h"
#include "support/EngineBench.h"

namespace sonavex {
namespace {

using namespace std::chrono_literals;

TEST(FreshEngine, HasDoneNothing) {
    const EngineBench bench;
    const StreamEngine& engine = bench.engine;
    for (const EventHandle event : engine.NotifyEvents) EXPECT_EQ(event, 0);
    EXPECT_EQ(engine.CaptureSegment, 0);
    EXPECT_EQ(engine.PlayBlockIndex, 0);
    EXPECT_EQ(engine.BlockOffset, 0);
    EXPECT_EQ(engine.BlockEnd, 0);
    EXPECT_FALSE(engine.RestartPending);
    EXPECT_EQ(engine.RestartCount, 0);
    EXPECT_EQ(engine.Overruns, 0U);
    EXPECT_EQ(engine.PlaybackStarts, 0U);
    EXPECT_EQ(engine.Blocks, 0U);
    EXPECT_EQ(engine.CaptureStarts, 0U);
    EXPECT_FALSE(engine.HoldNotifications);
    EXPECT_EQ(engine.DroppedNotifications, 0U);
    EXPECT_FALSE(engine.Restarting());
}

// The capture buffer is four blocks of 2048 stereo frames long, the playback buffer eight.
TEST(FreshEngine, AsksForBuffersOfFourAndEightBlocks) {
    EngineBench bench;
    bench.Start();
    EXPECT_EQ(bench.sound.captureDescription.bytes, 32768);
    EXPECT_EQ(bench.sound.playbackDescription.bytes, 65536);
    EXPECT_EQ(bench.engine.CaptureData.size(), 4096U);
    EXPECT_EQ(bench.engine.PlayData.size(), 4096U);
}

// From the play cursor to the write cursor, also over the end of the buffer.
TEST(FreshEngine, CountsTheFramesThatTheDeviceHolds) {
    EngineBench bench;
    EXPECT_EQ(bench.engine.HeldFrames(), 0U);
    bench.Start();
    bench.sound.restingCursors = {.play = 1000 * 4, .write = 9000 * 4};
    EXPECT_EQ(bench.engine.HeldFrames(), 8000U);
    bench.sound.restingCursors = {.play = 16000 * 4, .write = 1000 * 4};
    EXPECT_EQ(bench.engine.HeldFrames(), 1384U);
}

TEST(FreshWatch, HasSeenNoLoss) {
    EngineBench bench;
    const StreamWatch watch{
        {bench.loop, bench.sound, bench.engine, bench.errorLog, bench.shared, bench.settings}, {}};
    EXPECT_FALSE(watch.Stopped());
    EXPECT_EQ(watch.Losses(), 0U);
}

// No notification ever arrived: this counts as a loss too.
TEST(FreshWatch, ReportsAFirstStartWithoutNotifications) {
    EngineBench bench;
    bench.Start();
    StreamWatch watch{{bench.loop, bench.sound, bench.engine, bench.errorLog, bench.shared, bench.settings},
                      {}};
    watch.Start();
    bench.loop.Advance(3200ms);
    EXPECT_EQ(bench.log.Count("WriteErrorLog"), 1U);
    EXPECT_EQ(watch.Losses(), 1U);
}

}  // namespace
}  // namespace sonavex
