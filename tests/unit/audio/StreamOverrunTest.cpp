#include "support/EngineBench.h"

namespace sonavex {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

// Playback runs; the next block is 3: bytes 24576 to 32767.
struct OverrunRow {
    std::int32_t osMajorVersion;
    BufferCursors cursors;  // play, write
    std::int32_t writtenAt;
    bool positionSet;
    std::int32_t indexAfter;
    bool pendingAfter;
    std::uint64_t overruns;
    std::vector<std::string> traces;
};

constexpr const char* kWrite = "Restart Play Buffer (write)@";
constexpr const char* kPlay = "Restart Play Buffer (play)@";

OverrunRow Newer(std::int32_t version, BufferCursors cursors) {
    return {version, cursors, 24576, true, 4, false, 1, {"vista overrun@" + std::to_string(cursors.write)}};
}

OverrunRow Undisturbed(std::int32_t version, BufferCursors cursors) {
    return {version, cursors, 24576, false, 4, false, 0, {}};
}

OverrunRow Older(BufferCursors cursors, std::vector<std::string> traces) {
    return {5, cursors, 0, false, 1, true, 1, std::move(traces)};
}

class RunningStream : public testing::TestWithParam<OverrunRow> {
protected:
    EngineBench bench{GetParam().osMajorVersion};
};

INSTANTIATE_TEST_SUITE_P(Newer, RunningStream,
                         testing::Values(Newer(6, {0, 24576}), Newer(6, {24576, 32767}),
                                         Newer(10, {28000, 24576}), Newer(10, {60000, 32767}),
                                         Newer(10, {0, 28000}), Undisturbed(6, {0, 24575}),
                                         Undisturbed(10, {24576, 24575}), Undisturbed(6, {32767, 32768}),
                                         Undisturbed(10, {28000, 32768}), Undisturbed(10, {28000, 0})));

INSTANTIATE_TEST_SUITE_P(
    Older, RunningStream,
    testing::Values(Older({40000, 24576}, {std::string(kWrite) + "24576"}),
                    Older({40000, 32767}, {std::string(kWrite) + "32767"}),
                    Older({24576, 40000}, {std::string(kPlay) + "24576"}),
                    Older({32767, 40000}, {std::string(kPlay) + "32767"}),
                    Older({100, 28000}, {std::string(kWrite) + "28000", std::string(kPlay) + "100"}),
                    Older({0, 28000}, {std::string(kWrite) + "28000", std::string(kPlay) + "0"}),
                    Older({24575, 28000}, {std::string(kWrite) + "28000", std::string(kPlay) + "24575"}),
                    Older({32767, 28000}, {std::string(kWrite) + "28000", std::string(kPlay) + "32767"}),
                    Older({32768, 28000}, {std::string(kWrite) + "28000"}), Undisturbed(5, {24575, 40000}),
                    Undisturbed(5, {32768, 40000}), Undisturbed(5, {40000, 24575}),
                    Undisturbed(5, {40000, 32768}), Undisturbed(5, {100, 40000})));

TEST_P(RunningStream, AnswersTheCursors) {
    const OverrunRow& row = GetParam();
    bench.RunUpToIndex(3);
    bench.sound.cursors = {row.cursors};
    bench.RunBlocks(1);
    EXPECT_EQ(bench.engine.PlayCursors.play, row.cursors.play);
    EXPECT_EQ(bench.engine.PlayCursors.write, row.cursors.write);
    ASSERT_EQ(bench.sound.written.size(), 1U);
    EXPECT_EQ(bench.sound.written.front().offset, row.writtenAt);
    EXPECT_EQ(bench.log.Count("playbackBuffer.SetCurrentPosition"), row.positionSet ? 1U : 0U);
    EXPECT_EQ(bench.engine.PlayBlockIndex, row.indexAfter);
    EXPECT_EQ(bench.engine.RestartPending, row.pendingAfter);
    EXPECT_EQ(bench.engine.RestartCount, row.pendingAfter ? 1 : 0);
    EXPECT_EQ(bench.engine.Overruns, row.overruns);
    EXPECT_EQ(bench.traces, row.traces);
    EXPECT_EQ(bench.log.Count("playbackBuffer.PlayLooping"), 0U);
}

TEST_P(RunningStream, ReportsTheDisturbanceBeforeTheNextBlock) {
    bench.RunUpToIndex(3);
    bench.sound.cursors = {GetParam().cursors};
    bench.RunBlocks(1);
    EXPECT_EQ(bench.log.Count("StreamDisturbed"), 0U);
    bench.sound.restingCursors = {-1, -1};
    bench.RunBlocks(1);
    EXPECT_EQ(bench.log.Count("StreamDisturbed"), GetParam().overruns);
}

TEST_P(RunningStream, KeepsTheBlockEndOfTheBlockThatWasDue) {
    bench.RunUpToIndex(3);
    bench.sound.cursors = {GetParam().cursors};
    bench.RunBlocks(1);
    EXPECT_EQ(bench.engine.BlockEnd, 32767);
    EXPECT_EQ(bench.engine.BlockOffset, GetParam().writtenAt);
}

TEST(OverrunOnOlderSystems, StartsPlaybackAgainSixNotificationsLater) {
    EngineBench bench(5);
    bench.RunUpToIndex(3);
    bench.sound.cursors = {{40000, 24576}};
    bench.RunBlocks(1);
    bench.sound.restingCursors = {60000, 60000};  // playback continues meanwhile
    bench.RunBlocks(5);
    EXPECT_EQ(bench.log.Count("playbackBuffer.PlayLooping"), 0U);
    EXPECT_EQ(bench.engine.RestartCount, 6);
    bench.RunBlocks(1);
    EXPECT_EQ(bench.log.Count("playbackBuffer.PlayLooping"), 1U);
    EXPECT_FALSE(bench.engine.RestartPending);
    EXPECT_EQ(bench.engine.PlaybackStarts, 2U);
    EXPECT_EQ(bench.engine.Overruns, 1U);
    std::vector<std::int32_t> offsets;
    for (const auto& block : bench.sound.written) offsets.push_back(block.offset);
    EXPECT_THAT(offsets, ElementsAre(0, 8192, 16384, 24576, 32768, 40960, 49152));
}

TEST(OverrunOnOlderSystems, IsNotCountedTwiceWhilePlaybackIsPending) {
    EngineBench bench(5);
    bench.RunUpToIndex(3);
    bench.sound.cursors = {{40000, 24576}, {8192, 8192}};
    bench.RunBlocks(2);
    EXPECT_EQ(bench.engine.Overruns, 1U);
    // The second overrun restarted the priming.
    EXPECT_EQ(bench.engine.PlayBlockIndex, 1);
    EXPECT_EQ(bench.engine.RestartCount, 1);
}

TEST(OverrunOnNewerSystems, WritesBeforeItSetsThePosition) {
    EngineBench bench(10);
    bench.RunUpToIndex(3);
    bench.sound.cursors = {{0, 30000}};
    bench.RunBlocks(1);
    EXPECT_THAT(bench.log.Lines(),
                ElementsAre("captureBuffer.ReadBuffer 24576 8192", "ProcessCapturedBlock",
                            "playbackBuffer.GetCurrentPosition", "playbackBuffer.WriteBuffer 24576",
                            "playbackBuffer.SetCurrentPosition 0"));
}

TEST(OverrunOnNewerSystems, IsNotCountedWhilePlaybackIsPending) {
    EngineBench bench(10);
    bench.Start();
    bench.sound.cursors = {{0, 0}, {0, 9000}};
    bench.RunBlocks(2);
    EXPECT_EQ(bench.engine.Overruns, 0U);
    EXPECT_EQ(bench.engine.RestartCount, 2);
    EXPECT_THAT(bench.traces, ElementsAre("vista overrun@0", "vista overrun@9000"));
}

TEST(Overrun, OfEveryNewerBlockIsCounted) {
    EngineBench bench(6);
    bench.RunUpToIndex(0);
    for (std::int32_t index = 0; index < 8; ++index) bench.sound.cursors.push_back({0, index * 8192 + 5});
    bench.RunBlocks(8);
    EXPECT_EQ(bench.engine.Overruns, 8U);
    EXPECT_THAT(bench.log.Of("playbackBuffer.PlayLooping"), IsEmpty());
}

}  // namespace
}  // namespace sonavex
