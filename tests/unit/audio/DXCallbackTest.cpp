#include <numeric>

#include "core/ports/SoundErrors.h"
#include "support/EngineBench.h"
#include "support/Errors.h"

namespace sonavex {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

std::int32_t ErrorOfCallback(EngineBench& bench) {
    return ErrorOf([&] {
        bench.engine.DirectXEvent8_DXCallback(bench.engine.NotifyEvents[0]);
        return 0;
    });
}

TEST(DXCallback, ReadsAnalysesLooksAndWrites) {
    EngineBench bench;
    bench.RunUpToIndex(2);
    bench.RunBlocks(1);
    EXPECT_THAT(bench.log.Lines(),
                ElementsAre("captureBuffer.ReadBuffer 16384 8192", "ProcessCapturedBlock",
                            "playbackBuffer.GetCurrentPosition", "playbackBuffer.WriteBuffer 16384"));
}

TEST(DXCallback, ReadsTheSegmentOfTheEvent) {
    EngineBench bench;
    bench.Start();
    for (const std::size_t segment : {3U, 1U, 0U, 2U}) {
        bench.log.Clear();
        bench.sound.FireSegment(segment);
        EXPECT_THAT(bench.log.Of("captureBuffer.ReadBuffer"),
                    ElementsAre("captureBuffer.ReadBuffer " + std::to_string(segment * 8192) + " 8192"));
        EXPECT_EQ(bench.engine.CaptureSegment, static_cast<std::int32_t>(segment));
    }
}

TEST(DXCallback, LeavesTheSegmentForAnUnknownEvent) {
    EngineBench bench;
    bench.Start();
    bench.sound.FireSegment(2);
    bench.log.Clear();
    bench.engine.DirectXEvent8_DXCallback(987654);
    EXPECT_EQ(bench.engine.CaptureSegment, 2);
    EXPECT_THAT(bench.log.Of("captureBuffer.ReadBuffer"), ElementsAre("captureBuffer.ReadBuffer 16384 8192"));
    EXPECT_EQ(bench.engine.Blocks, 2U);
}

TEST(DXCallback, HandsTheCapturedBlockOverAndWritesWhatComesBack) {
    EngineBench bench;
    bench.Start();
    bench.sound.firstCapturedSample = -2000;
    std::vector<std::int16_t> captured;
    bench.processor.onBlock = [&](std::span<const std::int16_t> in, std::span<std::int16_t> out) {
        captured.assign(in.begin(), in.end());
        ASSERT_EQ(out.size(), 4096U);
        std::iota(out.begin(), out.end(), static_cast<std::int16_t>(17));
    };
    bench.RunBlocks(1);
    ASSERT_EQ(captured.size(), 4096U);
    EXPECT_EQ(captured.front(), -2000);
    EXPECT_EQ(captured.back(), -2000 + 4095);
    ASSERT_EQ(bench.sound.written.size(), 1U);
    ASSERT_EQ(bench.sound.written[0].samples.size(), 4096U);
    EXPECT_EQ(bench.sound.written[0].samples.front(), 17);
    EXPECT_EQ(bench.sound.written[0].samples.back(), 17 + 4095);
}

TEST(DXCallback, ReturnsAtOnceWhileReStartRuns) {
    EngineBench bench;
    bench.Start();
    const EventHandle event = bench.engine.NotifyEvents[1];
    std::size_t calls = 0;
    bench.loop.OnYield([&] {
        EXPECT_TRUE(bench.engine.Restarting());
        bench.log.Clear();
        bench.engine.DirectXEvent8_DXCallback(event);
        EXPECT_THAT(bench.log.Lines(), IsEmpty());
        ++calls;
    });
    EXPECT_TRUE(bench.engine.ReStart());
    EXPECT_EQ(calls, 5U);
    EXPECT_EQ(bench.engine.Blocks, 0U);
    EXPECT_EQ(bench.engine.CaptureSegment, 0);
}

TEST(DXCallback, RaisesObjectMissingWithoutBuffers) {
    EngineBench bench;
    EXPECT_EQ(ErrorOfCallback(bench), 91);
    EXPECT_EQ(bench.log.Count("ProcessCapturedBlock"), 0U);
}

TEST(DXCallback, RaisesObjectMissingAfterTheBlockWithoutAPlaybackBuffer) {
    EngineBench bench;
    bench.log.Fail("playbackDevice.CreateBuffer", RuntimeError(sound_error::kAllocated, "in use"));
    ASSERT_FALSE(bench.engine.CreateDevices());
    EXPECT_EQ(ErrorOfCallback(bench), 91);
    EXPECT_EQ(bench.log.Count("ProcessCapturedBlock"), 1U);
    EXPECT_EQ(bench.engine.Blocks, 0U);
}

class DXCallbackErrors : public testing::TestWithParam<const char*> {};

INSTANTIATE_TEST_SUITE_P(Operations, DXCallbackErrors,
                         testing::Values("captureBuffer.ReadBuffer", "ProcessCapturedBlock",
                                         "playbackBuffer.GetCurrentPosition", "playbackBuffer.WriteBuffer"));

TEST_P(DXCallbackErrors, LeaveIt) {
    EngineBench bench;
    bench.RunUpToIndex(1);
    const std::uint64_t blocks = bench.engine.Blocks;
    bench.log.Fail(GetParam(), RuntimeError(sound_error::kBufferLost, "gone"));
    EXPECT_EQ(ErrorOfCallback(bench), sound_error::kBufferLost);
    EXPECT_EQ(bench.engine.PlayBlockIndex, 1);
    EXPECT_EQ(bench.log.Count("WriteErrorLog"), 0U);
    EXPECT_EQ(bench.engine.Blocks, blocks);
    bench.log.Heal(GetParam());
    bench.RunBlocks(1);
    EXPECT_EQ(bench.engine.PlayBlockIndex, 2);
}

TEST(DXCallbackErrors, OfThePlaybackStartLeaveItToo) {
    for (const char* operation : {"playbackBuffer.SetCurrentPosition", "playbackBuffer.PlayLooping"}) {
        EngineBench bench(5);
        bench.Start();
        bench.RunBlocks(6);
        bench.log.Fail(operation, RuntimeError(sound_error::kBufferLost, "gone"));
        EXPECT_EQ(ErrorOfCallback(bench), sound_error::kBufferLost) << operation;
    }
}

TEST(DXCallback, DropsAndCountsNotificationsWhileTheyAreHeld) {
    EngineBench bench;
    bench.RunUpToIndex(2);
    bench.engine.HoldNotifications = true;
    bench.RunBlocks(3);
    EXPECT_THAT(bench.log.Lines(), ElementsAre("StreamDisturbed", "StreamDisturbed", "StreamDisturbed"));
    EXPECT_EQ(bench.engine.DroppedNotifications, 3U);
    EXPECT_EQ(bench.engine.PlayBlockIndex, 2);
    bench.engine.HoldNotifications = false;
    bench.RunBlocks(1);
    EXPECT_EQ(bench.engine.DroppedNotifications, 3U);
    EXPECT_EQ(bench.engine.PlayBlockIndex, 3);
}

}  // namespace
}  // namespace sonavex
