#include "support/EngineBench.h"

namespace sonavex {
namespace {

using testing::ElementsAre;

TEST(StreamDisturbances, ReportsLostSegmentsOnceBeforeTheBlock) {
    EngineBench bench;
    bench.RunUpToIndex(1);
    bench.sound.statistics.segmentsLost = 1;
    bench.RunBlocks(1);
    EXPECT_THAT(bench.log.Lines(),
                ElementsAre("captureBuffer.ReadBuffer 8192 8192", "StreamDisturbed", "ProcessCapturedBlock",
                            "playbackBuffer.GetCurrentPosition", "playbackBuffer.WriteBuffer 8192"));
    EXPECT_EQ(bench.engine.CaptureCounts().segmentsLost, 1U);
    bench.log.Clear();
    bench.RunBlocks(1);
    EXPECT_EQ(bench.log.Count("StreamDisturbed"), 0U);
}

TEST(StreamDisturbances, CountsLostSegmentsOfANewBufferFromZero) {
    EngineBench bench;
    bench.Start();
    bench.sound.statistics.segmentsLost = 3;
    bench.RunBlocks(7);
    ASSERT_TRUE(bench.engine.ReStart());
    bench.sound.statistics.segmentsLost = 0;
    bench.nextSegment = 0;
    bench.RunBlocks(7);
    bench.sound.restingCursors = {-1, -1};
    bench.RunBlocks(8);
    bench.log.Clear();
    bench.RunBlocks(1);
    EXPECT_EQ(bench.log.Count("StreamDisturbed"), 0U);
}

TEST(StreamDisturbances, CoverTheBlockOfAGapAndTheNext) {
    EngineBench bench;
    bench.RunUpToIndex(0);
    bench.sound.statistics.framesMissing = 480;
    bench.RunBlocks(2);
    EXPECT_EQ(bench.log.Count("StreamDisturbed"), 2U);
    bench.RunBlocks(2);
    EXPECT_EQ(bench.log.Count("StreamDisturbed"), 2U);
}

TEST(StreamDisturbances, AreReportedByReStart) {
    EngineBench bench;
    bench.Start();
    ASSERT_TRUE(bench.engine.ReStart());
    EXPECT_EQ(bench.log.Count("StreamDisturbed"), 1U);
}

}  // namespace
}  // namespace sonavex
