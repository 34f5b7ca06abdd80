#include "core/ports/SoundErrors.h"
#include "core/support/EndProgram.h"
#include "support/EngineBench.h"
#include "support/Errors.h"

namespace sonavex {
namespace {

using testing::ElementsAre;

std::vector<std::string> Joined(std::initializer_list<std::vector<std::string>> parts) {
    std::vector<std::string> all;
    for (const auto& part : parts) all.insert(all.end(), part.begin(), part.end());
    return all;
}

const std::vector<std::string> kDevices{"EnumeratePlayback", "EnumerateCapture", "CreatePlaybackDevice []",
                                        "CreateCaptureDevice []", "PointMixersAt Card A|Line A"};
const std::vector<std::string> kBuffers{"playbackDevice.SetCooperativeLevel 2", "captureDevice.CreateBuffer",
                                        "playbackDevice.GetCapabilities", "playbackDevice.CreateBuffer",
                                        "playbackBuffer.SetVolume -50"};

class ReStart : public testing::TestWithParam<std::int32_t> {
protected:
    std::vector<std::string> Mixer() const {
        if (GetParam() < 6) return {};
        return {"ReopenSoundCard Card A|Line A"};
    }
    EngineBench bench{GetParam()};
};

INSTANTIATE_TEST_SUITE_P(Generations, ReStart, testing::Values(5, 6, 10));

TEST_P(ReStart, TearsDownAndBuildsInOrder) {
    bench.Start();
    EXPECT_TRUE(bench.engine.ReStart());
    const std::vector<std::string> tearDown{"SetBusyPointer on",
                                            "captureBuffer.Stop",
                                            "playbackBuffer.Stop",
                                            "Yield",
                                            "Yield",
                                            "DestroyEvent 104",
                                            "Yield",
                                            "DestroyEvent 103",
                                            "Yield",
                                            "DestroyEvent 102",
                                            "Yield",
                                            "DestroyEvent 101",
                                            "~playbackDevice",
                                            "~playbackBuffer",
                                            "~captureBuffer",
                                            "~captureDevice",
                                            "StreamDisturbed",
                                            "SetUpAnalysis 20 15900"};
    const std::vector<std::string> end{
        "captureBuffer.Stop",
        "CreateEvent 105",
        "CreateEvent 106",
        "CreateEvent 107",
        "CreateEvent 108",
        "captureBuffer.SetNotificationPositions 4 8191:105 16383:106 24575:107 32767:108",
        "SetBusyPointer off",
        "playbackBuffer.SetCurrentPosition 0",
        "captureBuffer.StartLooping"};
    EXPECT_EQ(bench.log.Lines(), Joined({tearDown, kDevices, Mixer(), kBuffers, end}));
}

TEST_P(ReStart, SkipsObjectsThatDoNotExist) {
    EXPECT_TRUE(bench.engine.ReStart());
    const std::vector<std::string> begin{
        "SetBusyPointer on",     "Yield", "Yield", "Yield", "Yield", "Yield", "StreamDisturbed",
        "SetUpAnalysis 20 15900"};
    const std::vector<std::string> end{
        "captureBuffer.Stop",
        "CreateEvent 101",
        "CreateEvent 102",
        "CreateEvent 103",
        "CreateEvent 104",
        "captureBuffer.SetNotificationPositions 4 8191:101 16383:102 24575:103 32767:104",
        "SetBusyPointer off",
        "playbackBuffer.SetCurrentPosition 0",
        "captureBuffer.StartLooping"};
    EXPECT_EQ(bench.log.Lines(), Joined({begin, kDevices, Mixer(), kBuffers, end}));
}

TEST_P(ReStart, LeavesTheStreamReadyForPriming) {
    bench.RunUpToIndex(4);
    EXPECT_TRUE(bench.engine.ReStart());
    EXPECT_TRUE(bench.shared.EventsReady);
    EXPECT_TRUE(bench.engine.RestartPending);
    EXPECT_EQ(bench.engine.PlayBlockIndex, 0);
    EXPECT_EQ(bench.engine.RestartCount, 0);
    EXPECT_FALSE(bench.engine.Restarting());
    bench.nextSegment = 0;
    bench.sound.restingCursors = {};
    bench.log.Clear();
    bench.RunBlocks(7);
    EXPECT_EQ(bench.log.Count("playbackBuffer.PlayLooping"), 1U);
    EXPECT_EQ(bench.sound.written.front().offset, 0);
}

TEST_P(ReStart, ClearsEventsReadyBeforeItYields) {
    bench.Start();
    ASSERT_TRUE(bench.shared.EventsReady);
    bench.loop.OnYield([&] { EXPECT_FALSE(bench.shared.EventsReady); });
    EXPECT_TRUE(bench.engine.ReStart());
}

TEST_P(ReStart, TakesTheNewRateOver) {
    bench.Start();
    bench.shared.SampleRate = 22050;
    EXPECT_TRUE(bench.engine.ReStart());
    EXPECT_THAT(bench.log.Of("SetUpAnalysis"), ElementsAre("SetUpAnalysis 20 10925"));
    EXPECT_EQ(bench.sound.captureDescription.format.samplesPerSecond, 22050U);
    EXPECT_EQ(bench.sound.playbackDescription.format.samplesPerSecond, 22050U);
}

// The limits of the frequencies are set when the pointer is back and before playback and capture start.
TEST_P(ReStart, ReportsTheLimitsOnceBeforeItStarts) {
    bench.Start();
    bench.shared.SampleRate = 22050;
    bench.engine.OnLimits = [&](std::int32_t highestHz) {
        bench.log.Note("OnLimits " + std::to_string(highestHz));
    };
    EXPECT_TRUE(bench.engine.ReStart());
    EXPECT_EQ(bench.log.Count("OnLimits"), 1U);
    EXPECT_THAT(bench.log.Around("OnLimits"),
                ElementsAre("SetBusyPointer off", "OnLimits 11025", "playbackBuffer.SetCurrentPosition 0"));
}

TEST_P(ReStart, ReportsTheRebuildWhenTheCaptureRuns) {
    bench.Start();
    bench.engine.OnRebuilt = [&] { bench.log.Note("OnRebuilt"); };
    EXPECT_TRUE(bench.engine.ReStart());
    EXPECT_EQ(bench.log.Lines().back(), "OnRebuilt");
    bench.log.Fail("CreateCaptureDevice", RuntimeError(sound_error::kNoDriver, "gone"));
    bench.log.Clear();
    EXPECT_FALSE(bench.engine.ReStart());
    EXPECT_EQ(bench.log.Count("OnRebuilt"), 0U);
}

TEST_P(ReStart, AnswersFalseWhileItRunsAlready) {
    bench.Start();
    int answers = 0;
    bench.loop.OnYield([&] {
        bench.log.Clear();
        EXPECT_FALSE(bench.engine.ReStart());
        EXPECT_TRUE(bench.log.Lines().empty());
        ++answers;
    });
    EXPECT_TRUE(bench.engine.ReStart());
    EXPECT_EQ(answers, 5);
}

TEST_P(ReStart, RestoresThePointerWhenDevicesFail) {
    bench.Start();
    int limits = 0;
    bench.engine.OnLimits = [&](std::int32_t) { ++limits; };
    bench.log.Fail("captureDevice.CreateBuffer", RuntimeError(sound_error::kAllocated, "in use"));
    EXPECT_FALSE(bench.engine.ReStart());
    EXPECT_EQ(bench.log.Lines().back(), "SetBusyPointer off");
    EXPECT_EQ(bench.log.Count("SetBusyPointer"), 2U);
    EXPECT_EQ(bench.log.Count("CreateEvent"), 0U);
    EXPECT_FALSE(bench.shared.EventsReady);
    EXPECT_FALSE(bench.engine.Restarting());
    EXPECT_EQ(limits, 0);
}

TEST_P(ReStart, RestoresThePointerWhenAnErrorEscapes) {
    for (const char* operation : {"SetUpAnalysis", "playbackBuffer.SetCurrentPosition"}) {
        EngineBench failing(GetParam());
        failing.Start();
        failing.log.Fail(operation, RuntimeError(5));
        EXPECT_EQ(ErrorOf([&] { return failing.engine.ReStart(); }), 5);
        EXPECT_EQ(failing.log.Count("SetBusyPointer"), 2U) << operation;
        EXPECT_EQ(failing.log.Of("SetBusyPointer").back(), "SetBusyPointer off") << operation;
        EXPECT_FALSE(failing.engine.Restarting()) << operation;
        failing.log.Heal(operation);
        EXPECT_TRUE(failing.engine.ReStart()) << operation;
    }
}

TEST_P(ReStart, RestoresThePointerWhenTheProgramEnds) {
    bench.Start();
    bench.sound.playbackDevices.resize(1);
    EXPECT_THROW(bench.engine.ReStart(), EndProgram);
    EXPECT_EQ(bench.log.Lines().back(), "SetBusyPointer off");
    EXPECT_FALSE(bench.engine.Restarting());
}

TEST_P(ReStart, IgnoresEventsThatCannotBeDestroyed) {
    bench.Start();
    bench.log.Fail("DestroyEvent", RuntimeError(sound_error::kGeneric, "no"));
    EXPECT_TRUE(bench.engine.ReStart());
    EXPECT_EQ(bench.log.Count("DestroyEvent"), 4U);
    EXPECT_THAT(bench.engine.NotifyEvents, ElementsAre(105, 106, 107, 108, 0));
}

TEST_P(ReStart, RecoversAfterAFailedOne) {
    bench.Start();
    bench.log.Fail("CreatePlaybackDevice", RuntimeError(sound_error::kNoDriver, "gone"));
    ASSERT_FALSE(bench.engine.ReStart());
    ASSERT_FALSE(bench.engine.ReStart());
    bench.log.Heal("CreatePlaybackDevice");
    EXPECT_TRUE(bench.engine.ReStart());
    EXPECT_EQ(bench.sound.LiveEvents(), 4U);
    bench.RunBlocks(2);
    EXPECT_EQ(bench.engine.Blocks, 2U);
}

}  // namespace
}  // namespace sonavex
