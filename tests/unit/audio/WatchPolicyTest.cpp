#include <gtest/gtest.h>

#include "core/audio/StreamWatch.h"
#include "core/ports/SoundErrors.h"
#include "support/EngineBench.h"

namespace sonavex {
namespace {

using namespace std::chrono_literals;

// A watch that leaves a loss to its owner, over a running engine.
struct EndingBench : EngineBench {
    EndingBench() {
        Start();
        engine.OnNotified = [this] { watch.Notified(); };
        engine.OnBlockQueued = [this] { watch.BlockQueued(); };
        watch.Start();
        loop.Advance(0ms);
    }
    // The loss was counted once; nothing was reported, stopped or started, and nothing will be.
    void ExpectEnd(const std::string& reason, bool stalled) {
        loop.Advance(10s);
        EXPECT_EQ(watch.Losses(), 1U);
        EXPECT_EQ(watch.Reason(), reason);
        EXPECT_EQ(watch.Stalled(), stalled);
        EXPECT_TRUE(watch.Stopped());
        EXPECT_EQ(loop.Timers(), 0U);
        EXPECT_EQ(log.Count("WriteErrorLog"), 0U);
        EXPECT_EQ(log.Count("captureBuffer.Stop"), 0U);
        EXPECT_TRUE(shared.EventsReady);
        EXPECT_EQ(engine.CaptureStarts, 1U);
    }

    StreamWatch watch{{loop, sound, engine, errorLog, shared, settings}, {2500ms, false}};
};

TEST(WatchPolicy, ALossEndsAWatchThatDoesNotRecover) {
    EndingBench bench;
    bench.RunBlocks(1);
    bench.sound.Lose({sound_error::kBufferLost, "The server is gone."});
    bench.ExpectEnd("The server is gone.", false);
}

TEST(WatchPolicy, AStallEndsAWatchThatDoesNotRecover) {
    EndingBench bench;
    bench.RunBlocks(1);
    bench.loop.Advance(1000ms);
    EXPECT_EQ(bench.watch.Losses(), 0U);
    bench.loop.Advance(100ms);
    EXPECT_EQ(bench.watch.Losses(), 1U);
    bench.ExpectEnd("The sound device has stopped delivering sound.", true);
}

TEST(WatchPolicy, TheFirstBlockHasTheTimeThatTheOwnerGives) {
    EndingBench bench;
    EXPECT_EQ(bench.watch.StartPatience(), 2500ms);
    bench.loop.Advance(2500ms);
    EXPECT_EQ(bench.watch.Losses(), 0U);
    bench.loop.Advance(100ms);
    EXPECT_EQ(bench.watch.Losses(), 1U);
    EXPECT_TRUE(bench.watch.Stalled());
}

TEST(WatchPolicy, WithoutAnotherWishTheFirstBlockHasThreeSeconds) {
    EngineBench bench;
    const StreamWatch watch{
        {bench.loop, bench.sound, bench.engine, bench.errorLog, bench.shared, bench.settings}, {}};
    EXPECT_EQ(watch.StartPatience(), 3s);
}

}  // namespace
}  // namespace sonavex
