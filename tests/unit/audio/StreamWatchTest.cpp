#include <gmock/gmock.h>

#include <utility>

#include "core/audio/StreamWatch.h"
#include "core/ports/SoundErrors.h"
#include "support/EngineBench.h"

namespace sonavex {
namespace {

using namespace std::chrono_literals;
using testing::HasSubstr;
using testing::IsEmpty;

struct WatchBench : EngineBench {
    WatchBench() {
        Start();
        engine.OnNotified = [this] { watch.Notified(); };
        engine.OnBlockQueued = [this] { watch.BlockQueued(); };
        watch.OnChanged = [this] { ++changes; };
        watch.ChooseDevices = [this] { ++choices; };
        watch.Start();
        loop.Advance(0ms);
        RunBlocks(1);
    }
    std::size_t Records() const { return log.Count("WriteErrorLog"); }
    void Lose(const RuntimeError& error) {
        sound.Lose(error);
        loop.Advance(kCheck);
    }
    void Unplug() {
        kept = sound.playbackDevices;
        sound.playbackDevices.resize(1);
        Lose({sound_error::kNoDriver, "The card has been removed."});
    }
    // Longer than the interval of the checks.
    static constexpr auto kCheck = 150ms;
    void Replug() { sound.playbackDevices = kept; }

    StreamWatch watch{{loop, sound, engine, errorLog, shared, settings}, {}};
    int changes = 0;
    int choices = 0;
    SoundDeviceList kept;
};

TEST(StreamWatch, IsContentWhileBlocksCome) {
    WatchBench bench;
    for (int i = 0; i < 20; ++i) {
        bench.loop.Advance(900ms);
        bench.RunBlocks(1);
    }
    EXPECT_FALSE(bench.watch.Stopped());
    EXPECT_EQ(bench.Records(), 0U);
    EXPECT_EQ(bench.changes, 0);
}

TEST(StreamWatch, MarksRecordsAndReportsALossOnce) {
    WatchBench bench;
    bench.sound.Lose({sound_error::kBufferLost, "The server is gone."});
    // The mark is shown before the message.
    EXPECT_TRUE(bench.watch.Stopped());
    EXPECT_EQ(bench.watch.Reason(), "The server is gone.");
    EXPECT_EQ(bench.Records(), 0U);
    bench.Lose({sound_error::kBufferLost, "The server is gone."});
    EXPECT_TRUE(bench.watch.Stopped());
    ASSERT_EQ(bench.Records(), 1U);
    EXPECT_THAT(bench.log.Of("WriteErrorLog")[0], HasSubstr("The server is gone."));
    EXPECT_FALSE(bench.shared.EventsReady);
    EXPECT_EQ(bench.sound.LiveEvents(), 0U);
    EXPECT_EQ(bench.choices, 1);
}

TEST(StreamWatch, OnlyMarksWhileATickYields) {
    WatchBench bench;
    bool yielding = true;
    bench.watch.Yielding = [&] { return yielding; };
    bench.loop.Advance(1200ms);
    EXPECT_TRUE(bench.watch.Stopped());
    EXPECT_EQ(bench.Records(), 0U);
    EXPECT_TRUE(bench.watch.Postponed());
    yielding = false;
    bench.watch.CatchUp();
    EXPECT_FALSE(bench.watch.Postponed());
    EXPECT_EQ(bench.Records(), 1U);
}

TEST(StreamWatch, FindsAStallAfterItsPatience) {
    WatchBench bench;
    bench.loop.Advance(1000ms);
    EXPECT_FALSE(bench.watch.Stopped());
    bench.loop.Advance(200ms);
    EXPECT_TRUE(bench.watch.Stopped());
    EXPECT_EQ(bench.Records(), 1U);
    EXPECT_EQ(bench.watch.Losses(), 1U);
}

TEST(StreamWatch, WaitsThreeBlocksAtALowRate) {
    WatchBench bench;
    bench.shared.SampleRate = 4000;
    EXPECT_EQ(bench.watch.Patience(), 1536ms);
    bench.loop.Advance(1500ms);
    EXPECT_FALSE(bench.watch.Stopped());
    bench.loop.Advance(200ms);
    EXPECT_TRUE(bench.watch.Stopped());
}

TEST(StreamWatch, MarksALateFirstBlockBeforeItCallsItALoss) {
    WatchBench bench;
    ASSERT_TRUE(bench.engine.ReStart());
    bench.loop.Advance(1300ms);
    EXPECT_TRUE(bench.watch.Stopped());
    EXPECT_EQ(bench.Records(), 0U);
    bench.nextSegment = 0;
    bench.RunBlocks(1);
    EXPECT_FALSE(bench.watch.Stopped());
    ASSERT_TRUE(bench.engine.ReStart());
    bench.loop.Advance(3300ms);
    EXPECT_TRUE(bench.watch.Stopped());
    EXPECT_EQ(bench.Records(), 1U);
}

TEST(StreamWatch, OffersNoDevicesWhereThereAreNone) {
    WatchBench bench;
    bench.Unplug();
    EXPECT_EQ(bench.Records(), 1U);
    EXPECT_EQ(bench.choices, 0);
}

TEST(StreamWatch, StartsAgainWhenTheDeviceIsBack) {
    WatchBench bench;
    int restarted = 0;
    bench.watch.OnRestarted = [&] { ++restarted; };
    bench.Unplug();
    bench.loop.Advance(10s);
    EXPECT_EQ(restarted, 0);
    EXPECT_TRUE(bench.watch.Stopped());
    bench.Replug();
    bench.loop.Advance(1200ms);
    EXPECT_EQ(restarted, 1);
    EXPECT_TRUE(bench.watch.Stopped()) << "nothing has been measured yet";
    bench.nextSegment = 0;
    bench.RunBlocks(1);
    EXPECT_FALSE(bench.watch.Stopped());
    EXPECT_THAT(bench.watch.Reason(), IsEmpty());
    EXPECT_EQ(bench.Records(), 1U);
    bench.Lose({sound_error::kBufferLost, "again"});
    EXPECT_EQ(bench.Records(), 2U);
}

TEST(StreamWatch, TriesQuietlyAndNeverEndsTheProgram) {
    WatchBench bench;
    bench.Unplug();
    bench.Replug();
    bench.log.Fail("CreateCaptureDevice", RuntimeError(sound_error::kNoDriver, "not yet"));
    bench.loop.Advance(5s);
    EXPECT_EQ(bench.Records(), 1U);
    bench.log.Heal("CreateCaptureDevice");
    bench.log.Fail("EnumeratePlayback", RuntimeError(sound_error::kUninitialized, "no server"));
    bench.loop.Advance(5s);
    bench.log.Heal("EnumeratePlayback");
    bench.loop.Advance(1200ms);
    EXPECT_TRUE(bench.shared.EventsReady);
    EXPECT_EQ(bench.Records(), 1U);
}

TEST(StreamWatch, DoesNotReportADeviceThatReturnsSilent) {
    WatchBench bench;
    bench.Lose({sound_error::kBufferLost, "suspended"});
    bench.loop.Advance(30s);
    EXPECT_EQ(bench.Records(), 1U);
    EXPECT_TRUE(bench.watch.Stopped());
    EXPECT_GT(bench.engine.CaptureStarts, 2U);
}

TEST(StreamWatch, ReportsASilentDeviceThatTheUserChose) {
    WatchBench bench;
    bench.Lose({sound_error::kBufferLost, "suspended"});
    bench.loop.Advance(1200ms);
    ASSERT_TRUE(bench.shared.EventsReady);
    ASSERT_TRUE(bench.engine.ReStart());
    bench.loop.Advance(3300ms);
    EXPECT_EQ(bench.Records(), 2U);
}

TEST(StreamWatch, MarksAStallButStopsNothingWhileTheEngineIsHeld) {
    WatchBench bench;
    bool held = true;
    bench.watch.Held = [&] { return held; };
    bench.loop.Advance(20s);
    EXPECT_TRUE(bench.watch.Stopped());
    held = false;
    bench.RunBlocks(1);
    EXPECT_FALSE(bench.watch.Stopped());
    bench.engine.HoldNotifications = true;
    bench.loop.Advance(20s);
    EXPECT_THAT(bench.watch.Reason(), HasSubstr("until the message is closed"));
    EXPECT_EQ(bench.Records(), 0U);
    bench.engine.HoldNotifications = false;
    bench.loop.Advance(900ms);
    EXPECT_EQ(bench.Records(), 0U);
    bench.loop.Advance(300ms);
    EXPECT_EQ(bench.Records(), 1U);
}

TEST(StreamWatch, ReportsALossBehindADialogWhenThatHasClosed) {
    WatchBench bench;
    bool held = true;
    bench.watch.Held = [&] { return held; };
    bench.Lose({sound_error::kNoDriver, "removed"});
    EXPECT_TRUE(bench.watch.Stopped());
    EXPECT_EQ(bench.Records(), 0U);
    // Blocks of the remaining device change nothing.
    bench.RunBlocks(1);
    EXPECT_TRUE(bench.watch.Stopped());
    held = false;
    bench.loop.Advance(WatchBench::kCheck);
    ASSERT_EQ(bench.Records(), 1U);
    EXPECT_THAT(bench.log.Of("WriteErrorLog")[0], HasSubstr("removed"));
}

TEST(StreamWatch, ForgetsALossWhenTheDialogHasRestartedTheEngine) {
    WatchBench bench;
    bool held = true;
    bench.watch.Held = [&] { return held; };
    bench.Lose({sound_error::kNoDriver, "removed"});
    ASSERT_TRUE(bench.engine.ReStart());
    held = false;
    bench.loop.Advance(WatchBench::kCheck);
    bench.nextSegment = 0;
    bench.RunBlocks(1);
    EXPECT_FALSE(bench.watch.Stopped());
    EXPECT_EQ(bench.Records(), 0U);
}

// The stream is alive; only the processing fails.
TEST(StreamWatch, RemembersALossThatComesRightAfterAStart) {
    WatchBench bench;
    ASSERT_TRUE(bench.engine.ReStart());
    bench.Lose({sound_error::kBufferLost, "The card was pulled out."});
    EXPECT_FALSE(bench.shared.EventsReady);
    EXPECT_EQ(bench.watch.Reason(), "The card was pulled out.");
    EXPECT_EQ(bench.Records(), 1U);
}

TEST(StreamWatch, RemembersALossThatComesWhileItStartsTheEngine) {
    WatchBench bench;
    bench.Unplug();
    bench.watch.OnRestarted = [&] {
        bench.watch.OnRestarted = {};
        bench.sound.Lose({sound_error::kBufferLost, "Pulled out again."});
    };
    bench.Replug();
    bench.loop.Advance(1300ms);
    EXPECT_FALSE(bench.watch.OnRestarted);
    EXPECT_FALSE(bench.shared.EventsReady);
    EXPECT_EQ(bench.watch.Reason(), "Pulled out again.");
}

TEST(StreamWatch, MarksBlocksThatCannotBeMeasuredAndContinues) {
    WatchBench bench;
    bench.engine.OnBlockQueued = {};
    for (int i = 0; i < 20; ++i) {
        bench.loop.Advance(500ms);
        bench.RunBlocks(1);
    }
    EXPECT_TRUE(bench.watch.Stopped());
    EXPECT_THAT(bench.watch.Reason(), HasSubstr("The captured signal cannot be measured."));
    EXPECT_EQ(bench.Records(), 0U);
    EXPECT_TRUE(bench.shared.EventsReady);
}

TEST(StreamWatch, ForgivesATimeInWhichItWasNotServedItself) {
    WatchBench bench;
    bench.loop.Skip(60s);
    bench.loop.Advance(900ms);
    EXPECT_FALSE(bench.watch.Stopped());
    EXPECT_EQ(bench.Records(), 0U);
    bench.loop.Advance(300ms);
    EXPECT_EQ(bench.Records(), 1U);
}

// The default is now another device, not the lost one.
TEST(StreamWatch, WaitsForTheDeviceThatThePrimaryOneStoodFor) {
    WatchBench bench;
    ASSERT_EQ(bench.engine.OutputDeviceId, "");
    const SoundDeviceList all = bench.sound.playbackDevices;
    bench.sound.playbackDevices.erase(bench.sound.playbackDevices.begin() + 1);
    ASSERT_GE(bench.sound.playbackDevices.size(), 2U);
    bench.Lose({sound_error::kNoDriver, "removed"});
    bench.loop.Advance(10s);
    EXPECT_FALSE(bench.shared.EventsReady);
    EXPECT_EQ(bench.choices, 0);
    bench.sound.playbackDevices = all;
    bench.loop.Advance(1200ms);
    EXPECT_TRUE(bench.shared.EventsReady);
}

// A twin has been connected, which changes the name of the lost device.
TEST(StreamWatch, KnowsTheDeviceThatThePrimaryOneStoodForUnderANewName) {
    WatchBench bench;
    bench.Unplug();
    const SoundDeviceInfo twin{"out-c", "Card A [out-c]", "a"};
    bench.kept[1].description = "Card A [out-a]";
    bench.kept.insert(bench.kept.begin() + 1, twin);
    bench.Replug();
    bench.loop.Advance(10s);
    EXPECT_FALSE(bench.shared.EventsReady) << "the twin is now the default";
    std::swap(bench.kept[1], bench.kept[2]);
    bench.Replug();
    bench.loop.Advance(1200ms);
    EXPECT_TRUE(bench.shared.EventsReady);
    EXPECT_EQ(bench.engine.OutputDeviceName, "Card A [out-a]");
}

TEST(StreamWatch, OffersDevicesWhenTheLostOneIsGivenUp) {
    WatchBench bench;
    bench.settings.Save(keys::kOutput, bench.sound.playbackDevices[1].identifier);
    ASSERT_TRUE(bench.engine.ReStart());
    bench.loop.Advance(WatchBench::kCheck);
    bench.nextSegment = 0;
    bench.RunBlocks(1);
    bench.errorLog.onWrite = [&] { bench.settings.Save(keys::kOutput, ""); };
    bench.Unplug();
    EXPECT_EQ(bench.choices, 1);
}

TEST(StreamWatch, SeesNothingAfterItsEnd) {
    WatchBench bench;
    bench.watch.Stop();
    bench.sound.Lose({sound_error::kBufferLost, "late"});
    bench.loop.Advance(20s);
    EXPECT_FALSE(bench.watch.Stopped());
    EXPECT_EQ(bench.Records(), 0U);
}

}  // namespace
}  // namespace sonavex
