#include <gmock/gmock.h>

#include "core/audio/StreamWatch.h"
#include "core/ports/SoundErrors.h"
#include "support/EngineBench.h"

namespace sonavex {
namespace {

using namespace std::chrono_literals;

// A watch over a running engine on a virtual event loop, after one block.
struct TimesBench : EngineBench {
    TimesBench() {
        Start();
        engine.OnNotified = [this] { watch.Notified(); };
        engine.OnBlockQueued = [this] { watch.BlockQueued(); };
        watch.ChooseDevices = [this] { ++choices; };
        watch.Start();
        RunBlocks(1);
    }
    std::size_t Records() const { return log.Count("WriteErrorLog"); }
    // The sound system reports a loss, and the watch has handled it.
    void Lose() {
        sound.Lose({sound_error::kBufferLost, "lost"});
        loop.Advance(100ms);
        ASSERT_FALSE(shared.EventsReady);
        log.Clear();
    }
    // Runs the engine on these devices.
    void Use(const std::string& output, const std::string& input) {
        settings.Save(keys::kOutput, output);
        settings.Save(keys::kInput, input);
        ASSERT_TRUE(engine.ReStart());
        loop.Advance(100ms);
        nextSegment = 0;
        RunBlocks(1);
    }

    StreamWatch watch{{loop, sound, engine, errorLog, shared, settings}, {}};
    int choices = 0;
};

TEST(StreamWatchTimes, LooksTenTimesASecond) {
    TimesBench bench;
    EXPECT_EQ(bench.loop.Interval(), 100ms);
}

TEST(StreamWatchTimes, WaitsThreeSecondsForTheFirstNotification) {
    TimesBench bench;
    ASSERT_TRUE(bench.engine.ReStart());
    bench.loop.Advance(3000ms);
    EXPECT_EQ(bench.Records(), 0U);
    bench.loop.Advance(200ms);
    EXPECT_EQ(bench.Records(), 1U);
}

TEST(StreamWatchTimes, LooksForALostDeviceOnceASecond) {
    TimesBench bench;
    bench.sound.playbackDevices.resize(1);
    bench.Lose();
    bench.loop.Advance(900ms);
    EXPECT_EQ(bench.log.Count("EnumeratePlayback"), 0U);
    bench.loop.Advance(100ms);
    EXPECT_EQ(bench.log.Count("EnumeratePlayback"), 1U);
    bench.loop.Advance(900ms);
    EXPECT_EQ(bench.log.Count("EnumeratePlayback"), 1U);
    bench.loop.Advance(9100ms);
    EXPECT_EQ(bench.log.Count("EnumeratePlayback"), 11U);
}

// After an attempt of one second there is none for four, so that the window stays usable.
TEST(StreamWatchTimes, RestsFourTimesAsLongAsATryTook) {
    TimesBench bench;
    bench.log.Fail("CreateCaptureDevice", {sound_error::kNoDriver, "not yet"});
    bench.Lose();
    bench.loop.OnYield([&] { bench.loop.Skip(200ms); });  // a restart yields before each of its five events
    bench.loop.Advance(1s);
    ASSERT_EQ(bench.log.Count("CreateCaptureDevice"), 1U);
    const auto since = bench.loop.Now();
    while (bench.log.Count("CreateCaptureDevice") == 1 && bench.loop.Now() < since + 10s)
        bench.loop.Advance(100ms);
    // The last second is the second attempt's.
    EXPECT_GE(bench.loop.Now() - since, 4900ms);
    EXPECT_LE(bench.loop.Now() - since, 5300ms);
}

// A gap of a second between checks does not count; a shorter gap does.
TEST(StreamWatchTimes, ForgivesAWholeSecondOfNotBeingServed) {
    TimesBench held;
    held.loop.Skip(1s);
    held.loop.Advance(1s);
    EXPECT_FALSE(held.watch.Stopped());
    TimesBench late;
    late.loop.Skip(900ms);
    late.loop.Advance(300ms);
    EXPECT_TRUE(late.watch.Stopped());
}

TEST(StreamWatchReturns, WithTheOnlyDeviceThatThereIs) {
    TimesBench bench;
    bench.sound.playbackDevices.resize(2);
    bench.sound.captureDevices.resize(2);
    bench.Lose();
    bench.loop.Advance(1200ms);
    EXPECT_TRUE(bench.shared.EventsReady);
}

TEST(StreamWatchReturns, NotWithAnotherDeviceThanTheChosenOne) {
    TimesBench bench;
    bench.Use(bench.sound.playbackDevices[2].identifier, bench.sound.captureDevices[2].identifier);
    const SoundDeviceList all = bench.sound.playbackDevices;
    bench.sound.playbackDevices.resize(2);
    bench.Lose();
    bench.loop.Advance(5s);
    EXPECT_FALSE(bench.shared.EventsReady);
    EXPECT_EQ(bench.log.Count("CreatePlaybackDevice"), 0U);
    EXPECT_EQ(bench.choices, 0);
    bench.sound.playbackDevices = all;
    bench.loop.Advance(1200ms);
    EXPECT_TRUE(bench.shared.EventsReady);
}

TEST(StreamWatchReturns, NotWhileTheDevicesCannotBeListed) {
    TimesBench bench;
    bench.log.Fail("EnumeratePlayback", {sound_error::kUninitialized, "no server"});
    bench.Lose();
    EXPECT_EQ(bench.choices, 0);
    bench.loop.Advance(5s);
    EXPECT_EQ(bench.log.Count("SetBusyPointer"), 0U) << "nothing was started";
}

TEST(StreamWatch, WatchesAgainAfterItsEnd) {
    TimesBench bench;
    bench.watch.Stop();
    EXPECT_EQ(bench.loop.Timers(), 0U);
    bench.watch.Start();
    bench.loop.Advance(3200ms);
    EXPECT_TRUE(bench.watch.Stopped());
    EXPECT_EQ(bench.Records(), 1U);
}

}  // namespace
}  // namespace sonavex
