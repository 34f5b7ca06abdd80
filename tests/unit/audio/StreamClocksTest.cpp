#include "support/EngineBench.h"

namespace sonavex {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::IsEmpty;

// A running stream whose input clock is faster than its output clock.
struct ClockBench : EngineBench {
    ClockBench() {
        RunUpToIndex(0);
        sound.restingCursors = {-1, -1};  // in no block
        RunBlocks(8);
        sound.inputLead = sound.outputLead = 0ns;
    }
    void Run(std::chrono::seconds time, double ppm) {
        for (auto passed = 0ns; passed < time; passed += kBlock) {
            loop.Advance(kBlock);
            *sound.inputLead +=
                std::chrono::nanoseconds(static_cast<std::int64_t>(ppm * 1e-6 * kBlock.count()));
            RunBlocks(1);
        }
    }
    static constexpr std::chrono::nanoseconds kBlock = 64ms;
};

TEST(StreamClocks, ShowTheirDriftOnceItIsKnown) {
    ClockBench bench;
    bench.Run(59s, 50.0);
    EXPECT_THAT(bench.engine.PathNotes(), IsEmpty());
    bench.Run(2s, 50.0);
    EXPECT_THAT(
        bench.engine.PathNotes(),
        ElementsAre("Clocks: input and output run on different clocks, the input's is 50 ppm faster"));
}

// Observations before and after an interruption do not form one line.
TEST(StreamClocks, DiscardObservationsBeforeAnInterruption) {
    ClockBench bench;
    bench.Run(50s, 0.0);
    bench.sound.statistics.framesMissing = 480;
    *bench.sound.inputLead += 1s;
    bench.Run(50s, 0.0);
    EXPECT_THAT(bench.engine.PathNotes(), IsEmpty());
    bench.Run(12s, 0.0);
    EXPECT_THAT(bench.engine.PathNotes(), IsEmpty()) << "known, and one clock";
    bench.Run(600s, 40.0);
    bench.sound.underruns = 1;
    *bench.sound.outputLead -= 1s;
    bench.Run(61s, 40.0);
    EXPECT_THAT(
        bench.engine.PathNotes(),
        ElementsAre("Clocks: input and output run on different clocks, the input's is 40 ppm faster"));
}

// Blocks that may contain the step of a start or of an underrun are not used, including the last of them.
TEST(StreamClocks, AreComparedFromTheFirstBlockThatHasSettled) {
    ClockBench bench;
    bench.sound.underruns = 1;
    *bench.sound.inputLead += 1s;
    bench.RunBlocks(8);
    *bench.sound.inputLead -= 1s;
    bench.Run(64s, 50.0);
    EXPECT_THAT(
        bench.engine.PathNotes(),
        ElementsAre("Clocks: input and output run on different clocks, the input's is 50 ppm faster"));
}

TEST(StreamClocks, OfOtherBuffersAreNotKnown) {
    ClockBench bench;
    bench.Run(61s, 50.0);
    ASSERT_TRUE(bench.engine.ReStart());
    EXPECT_THAT(bench.engine.PathNotes(), IsEmpty());
}

TEST(StreamClocks, AreDistinguishedByTheirNames) {
    ClockBench bench;
    bench.sound.inputClock = "card 0";
    bench.sound.outputClock = "card 1";
    EXPECT_THAT(bench.engine.PathNotes(), ElementsAre("Clocks: input and output run on different clocks"));
    bench.sound.outputClock = "card 0";
    EXPECT_THAT(bench.engine.PathNotes(), IsEmpty());
}

TEST(StreamDisturbances, LastABufferAfterAnUnderrun) {
    ClockBench bench;
    bench.log.Clear();
    bench.sound.underruns = 1;
    bench.RunBlocks(12);
    EXPECT_EQ(bench.log.Count("StreamDisturbed"), 8U);
}

TEST(CaptureCounts, AndUnderrunsOutliveTheirBuffers) {
    ClockBench bench;
    bench.sound.statistics = {4096, 2, 1, 480};
    bench.sound.underruns = 3;
    bench.sound.fineMissing = 70;
    ASSERT_TRUE(bench.engine.ReStart());
    bench.sound.statistics = {2048, 1, 0, 20};
    bench.sound.underruns = 1;
    const CaptureStatistics counts = bench.engine.CaptureCounts();
    EXPECT_EQ(counts.framesCaptured, 6144U);
    EXPECT_EQ(counts.segmentsCompleted, 3U);
    EXPECT_EQ(counts.segmentsLost, 1U);
    EXPECT_EQ(counts.framesMissing, 500U);
    EXPECT_EQ(bench.engine.Underruns(), 4U);
    EXPECT_EQ(bench.engine.FineFramesMissing(), 140U);
}

TEST(CaptureCounts, AndUnderrunsWithoutBuffersAreThoseBefore) {
    EngineBench bench;
    EXPECT_EQ(bench.engine.CaptureCounts().framesCaptured, 0U);
    EXPECT_EQ(bench.engine.Underruns(), 0U);
    bench.Start();
    bench.sound.statistics = {4096, 2, 1, 480};
    bench.sound.underruns = 3;
    bench.sound.fineMissing = 5;
    bench.engine.Release();
    EXPECT_EQ(bench.engine.FineFramesMissing(), 5U);
    EXPECT_EQ(bench.engine.CaptureCounts().framesCaptured, 4096U);
    EXPECT_EQ(bench.engine.CaptureCounts().segmentsCompleted, 2U);
    EXPECT_EQ(bench.engine.Underruns(), 3U);
}

}  // namespace
}  // namespace sonavex
