#include "support/EngineBench.h"

namespace sonavex {
namespace {

using testing::ElementsAre;

struct PrimingRow {
    std::int32_t segment;
    std::int32_t writtenAt;
    std::int32_t indexAfter;
    std::int32_t countAfter;
    bool pendingAfter;
};

// Notifications 1 to 10.
constexpr PrimingRow kRows[] = {{0, 0, 1, 1, true},      {1, 8192, 2, 2, true},   {2, 16384, 3, 3, true},
                                {3, 24576, 4, 4, true},  {0, 32768, 5, 5, true},  {1, 40960, 6, 6, true},
                                {2, 49152, 7, 0, false}, {3, 57344, 0, 0, false}, {0, 0, 1, 0, false},
                                {1, 8192, 2, 0, false}};

class Priming : public testing::TestWithParam<std::int32_t> {
protected:
    // Cursors at notification n: 0/0 while stopped, then playing far behind writing.
    static BufferCursors CursorsAt(int n) {
        return n <= 7 ? BufferCursors{0, 0} : BufferCursors{20000, 30000};
    }

    EngineBench bench{GetParam()};
};

INSTANTIATE_TEST_SUITE_P(Generations, Priming, testing::Values(5, 6, 10));

TEST_P(Priming, WritesSevenBlocksAheadBeforePlaybackStarts) {
    bench.Start();
    for (int n = 1; n <= 10; ++n) {
        SCOPED_TRACE(n);
        const PrimingRow& row = kRows[n - 1];
        bench.log.Clear();
        bench.sound.restingCursors = CursorsAt(n);
        bench.RunBlocks(1);
        EXPECT_EQ(bench.engine.CaptureSegment, row.segment);
        ASSERT_EQ(bench.sound.written.size(), static_cast<std::size_t>(n));
        EXPECT_EQ(bench.sound.written.back().offset, row.writtenAt);
        EXPECT_EQ(bench.engine.PlayBlockIndex, row.indexAfter);
        EXPECT_EQ(bench.engine.RestartCount, row.countAfter);
        EXPECT_EQ(bench.engine.RestartPending, row.pendingAfter);
        EXPECT_EQ(bench.log.Count("playbackBuffer.PlayLooping"), n == 7 ? 1U : 0U);
    }
    EXPECT_EQ(bench.engine.PlaybackStarts, 1U);
    EXPECT_EQ(bench.engine.Overruns, 0U);
    EXPECT_EQ(bench.engine.Blocks, 10U);
}

TEST_P(Priming, StartsPlaybackFromPositionZeroAfterTheSeventhBlock) {
    bench.Start();
    bench.RunBlocks(6);
    bench.log.Clear();
    bench.traces.clear();
    bench.RunBlocks(1);
    const auto& lines = bench.log.Lines();
    ASSERT_GE(lines.size(), 3U);
    const std::vector<std::string> end(lines.end() - 3, lines.end());
    EXPECT_THAT(end, ElementsAre("playbackBuffer.WriteBuffer 49152", "playbackBuffer.SetCurrentPosition 0",
                                 "playbackBuffer.PlayLooping"));
    EXPECT_THAT(bench.traces, ElementsAre("RESTARTING@0"));
}

TEST_P(Priming, BeginsInTheFirstBlockWhateverTheGenerationMakesOfTheStoppedCursors) {
    bench.Start();
    bench.RunBlocks(1);
    EXPECT_EQ(bench.engine.BlockOffset, 0);
    EXPECT_EQ(bench.engine.BlockEnd, 8191);
    EXPECT_EQ(bench.log.Count("playbackBuffer.WriteBuffer"), 1U);
    if (GetParam() >= 6) {
        // The stopped write cursor is in the block: position 0 is set, which is its present position.
        EXPECT_EQ(bench.log.Count("playbackBuffer.SetCurrentPosition"), 1U);
        EXPECT_THAT(bench.traces, ElementsAre("vista overrun@0"));
    } else {
        EXPECT_EQ(bench.log.Count("playbackBuffer.SetCurrentPosition"), 0U);
        EXPECT_THAT(bench.traces,
                    ElementsAre("Restart Play Buffer (write)@0", "Restart Play Buffer (play)@0"));
    }
}

TEST_P(Priming, IsReportedToTheProcessorBlockByBlock) {
    bench.Start();
    for (int n = 1; n <= 20; ++n) {
        bench.log.Clear();
        bench.sound.restingCursors = n <= 7 ? BufferCursors{0, 0} : BufferCursors{-1, -1};
        bench.RunBlocks(1);
        // During priming, and for the length of the playback buffer, in which the start of playback may
        // return.
        EXPECT_EQ(bench.log.Count("StreamDisturbed"), n <= 14 ? 1U : 0U) << n;
    }
}

TEST_P(Priming, NeedsSevenBlocksAgainAfterResetStream) {
    bench.RunUpToIndex(3);
    bench.engine.ResetStream();
    EXPECT_TRUE(bench.engine.RestartPending);
    EXPECT_EQ(bench.engine.PlayBlockIndex, 0);
    EXPECT_EQ(bench.engine.BlockOffset, 0);
    EXPECT_EQ(bench.engine.RestartCount, 0);
    EXPECT_EQ(bench.engine.CaptureSegment, 0);
    bench.sound.restingCursors = {60000, 60000};
    bench.RunBlocks(6);
    EXPECT_EQ(bench.engine.PlaybackStarts, 1U);
    bench.RunBlocks(1);
    EXPECT_EQ(bench.engine.PlaybackStarts, 2U);
}

TEST_P(Priming, WrapsAtTheEighthBlockForEver) {
    bench.Start();
    for (int n = 0; n < 7 + 80; ++n) {
        const std::int32_t index = bench.engine.PlayBlockIndex;
        EXPECT_EQ(index, n % 8);
        // The cursors stay four blocks away from the block being written.
        const std::int32_t away = (index + 4) % 8 * 8192;
        bench.sound.restingCursors =
            bench.engine.RestartPending ? BufferCursors{} : BufferCursors{away, away};
        bench.RunBlocks(1);
        EXPECT_EQ(bench.sound.written.back().offset, index * 8192);
    }
    EXPECT_EQ(bench.engine.Overruns, 0U);
}

}  // namespace
}  // namespace sonavex
