#include "support/EngineBench.h"
#include "support/Errors.h"

namespace sonavex {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

TEST(StreamShutdown, StopsCaptureThenPlayback) {
    EngineBench bench;
    bench.Start();
    bench.engine.Stop();
    EXPECT_THAT(bench.log.Lines(), ElementsAre("captureBuffer.Stop", "playbackBuffer.Stop"));
}

TEST(StreamShutdown, ReleasesEventsDeviceAndBuffersInOrder) {
    EngineBench bench;
    bench.Start();
    bench.engine.Release();
    EXPECT_THAT(bench.log.Lines(),
                ElementsAre("DestroyEvent 104", "DestroyEvent 103", "DestroyEvent 102", "DestroyEvent 101",
                            "~playbackDevice", "~playbackBuffer", "~captureBuffer", "~captureDevice"));
    EXPECT_FALSE(bench.shared.EventsReady);
    EXPECT_THAT(bench.engine.NotifyEvents, testing::Each(0));
    EXPECT_EQ(bench.engine.SecondaryBuffer(), nullptr);
}

TEST(StreamShutdown, MayComeTwiceAndWithoutObjects) {
    EngineBench bench;
    bench.engine.Stop();
    bench.engine.Release();
    EXPECT_THAT(bench.log.Lines(), IsEmpty());
    bench.Start();
    bench.engine.Release();
    bench.log.Clear();
    bench.engine.Stop();
    bench.engine.Release();
    EXPECT_THAT(bench.log.Lines(), IsEmpty());
}

TEST(StreamShutdown, DoesNotYield) {
    EngineBench bench;
    bench.Start();
    bench.engine.Stop();
    bench.engine.Release();
    EXPECT_EQ(bench.loop.Yields(), 0U);
}

TEST(StreamShutdown, EndsTheNotifications) {
    EngineBench bench;
    bench.Start();
    const auto positions = bench.sound.positions;
    bench.engine.Release();
    for (const PositionNotification& position : positions) bench.sound.Fire(position.event);
    EXPECT_EQ(bench.engine.Blocks, 0U);
    EXPECT_EQ(bench.sound.LiveEvents(), 0U);
}

TEST(StreamShutdown, HappensWhenTheEngineGoes) {
    EngineBench bench;
    {
        StreamEngine engine(bench.Needs());
        ASSERT_TRUE(engine.CreateDevices());
        ASSERT_TRUE(engine.SetEvents());
        bench.log.Fail("DestroyEvent", RuntimeError(5));
        bench.log.Clear();
    }
    EXPECT_EQ(bench.log.Count("DestroyEvent"), 4U);
    EXPECT_EQ(bench.log.Lines().back(), "~captureDevice");
    EXPECT_EQ(bench.sound.LiveEvents(), 0U);
}

TEST(StartCapture, NeedsACaptureBuffer) {
    EngineBench bench;
    EXPECT_EQ(ErrorOf([&] {
                  bench.engine.StartCapture();
                  return 0;
              }),
              91);
}

TEST(CaptureCounts, AreZeroWithoutABuffer) {
    EngineBench bench;
    bench.sound.statistics = {1, 2, 3, 4};
    EXPECT_EQ(bench.engine.CaptureCounts().framesCaptured, 0U);
    bench.Start();
    EXPECT_EQ(bench.engine.CaptureCounts().framesCaptured, 1U);
    EXPECT_EQ(bench.engine.CaptureCounts().segmentsCompleted, 2U);
    EXPECT_EQ(bench.engine.CaptureCounts().segmentsLost, 3U);
    EXPECT_EQ(bench.engine.CaptureCounts().framesMissing, 4U);
}

}  // namespace
}  // namespace sonavex
