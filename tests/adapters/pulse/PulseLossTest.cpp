// What happens when the sound server or a device goes away or stands still.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "core/ports/SoundErrors.h"
#include "platform/plain/PlainEventLoop.h"
#include "platform/pulse/PulseSoundSystem.h"
#include "support/LoopSignal.h"
#include "support/PipeWireServer.h"
#include "support/PollUntil.h"
#include "support/PulseServer.h"

namespace sonavex {
namespace {

using namespace std::chrono_literals;
using testing::HasSubstr;

constexpr std::int32_t kRateHz = 48000;
// The longest time that a call may take and that may pass until a loss is reported.
constexpr auto kLimit = 3s;
// Until a stream that moves nothing is given up.
constexpr auto kStallLimit = 7s;

const NullSink kUsedCard{"card", kRateHz, "TestCard"};
const NullSink kSpareCard{"other", kRateHz, "OtherCard"};

// A sound system in use: both buffers run.
class Session {
public:
    explicit Session(const SoundServer& server) : system_(loop_, server.Address()) {
        system_.OnDeviceLost([this](const RuntimeError& error) { losses_.push_back(error); });
    }

    void Open(const std::string& sink) {
        output_ = system_.CreatePlaybackDevice(sink);
        input_ = system_.CreateCaptureDevice(sink + ".monitor");
        playback_ = output_->CreateBuffer(Stereo(kPlaybackBytes, kRateHz));
        capture_ = input_->CreateBuffer(Stereo(kCaptureBytes, kRateHz));
        playback_->PlayLooping();
        capture_->StartLooping();
    }
    void Close() {
        playback_.reset();
        capture_.reset();
        output_.reset();
        input_.reset();
    }

    bool Captures() {
        const std::uint64_t before = capture_->Statistics().framesCaptured;
        return PollUntil(
            loop_, [&] { return capture_->Statistics().framesCaptured > before; }, kLimit);
    }

    // Both buffers report their loss, once, and refuse their use.
    void ExpectLosses(const std::string& text, std::chrono::nanoseconds limit = kLimit) {
        EXPECT_TRUE(loop_.RunUntil([&] { return losses_.size() >= 2; }, limit));
        loop_.RunUntil([] { return false; }, 100ms);
        ASSERT_EQ(losses_.size(), 2U);
        for (const RuntimeError& error : losses_) {
            EXPECT_THAT(error.what(), HasSubstr(text));
            EXPECT_THAT(error.what(), HasSubstr("TestCard"));
            EXPECT_TRUE(error.Number() == sound_error::kBufferLost ||
                        error.Number() == sound_error::kNoDriver);
        }
        ExpectBuffersRefuse();
    }

    void ExpectBuffersRefuse() {
        std::vector<std::int16_t> samples(8);
        const auto expectLost = [](auto action) {
            try {
                action();
                ADD_FAILURE() << "no error";
            } catch (const RuntimeError& error) {
                EXPECT_EQ(error.Number(), sound_error::kBufferLost);
            }
        };
        expectLost([&] { playback_->GetCurrentPosition(); });
        expectLost([&] { playback_->WriteBuffer(0, samples); });
        expectLost([&] { playback_->SetCurrentPosition(0); });
        expectLost([&] { playback_->PlayLooping(); });
        expectLost([&] { playback_->SetVolume(0); });
        expectLost([&] { capture_->StartLooping(); });
        expectLost([&] { capture_->ReadBuffer(0, samples); });
        expectLost([&] { capture_->SetNotificationPositions({}); });
        EXPECT_NO_THROW(playback_->Stop());
        EXPECT_NO_THROW(capture_->Stop());
    }

    // The error of an action, which must come in time; nothing when it succeeds.
    template <class Action>
    std::optional<RuntimeError> ErrorOf(Action action) {
        const auto start = loop_.Now();
        std::optional<RuntimeError> caught;
        try {
            action();
        } catch (const RuntimeError& error) {
            caught = error;
        }
        EXPECT_LT(loop_.Now() - start, kLimit);
        return caught;
    }

    template <class Action>
    void ExpectError(std::int32_t number, const std::string& text, Action action) {
        const auto error = ErrorOf(action);
        ASSERT_TRUE(error.has_value());
        EXPECT_EQ(error->Number(), number) << error->what();
        EXPECT_THAT(error->what(), HasSubstr(text));
    }

    PlainEventLoop loop_;
    PulseSoundSystem system_;
    std::vector<RuntimeError> losses_;
    std::unique_ptr<PlaybackDevice> output_;
    std::unique_ptr<CaptureDevice> input_;
    std::unique_ptr<PlaybackBuffer> playback_;
    std::unique_ptr<CaptureBuffer> capture_;
};

TEST(PulseLoss, NoServerIsAnError) {
    const PrivateFolder folder;
    PlainEventLoop loop;
    PulseSoundSystem system(loop, "unix:" + (folder.Path() / "nobody").string());
    for (int attempt = 0; attempt < 2; ++attempt) {
        try {
            system.EnumeratePlayback();
            ADD_FAILURE() << "listed";
        } catch (const RuntimeError& error) {
            EXPECT_EQ(error.Number(), sound_error::kUninitialized);
            EXPECT_THAT(error.what(), HasSubstr("No sound server answers"));
        }
    }
}

TEST(PulseLoss, TheEnvironmentNamesTheServer) {
    const PulseServer server({kUsedCard});
    PlainEventLoop loop;
    setenv("PULSE_SERVER", server.Address().c_str(), 1);
    PulseSoundSystem system(loop);
    const SoundDeviceList list = system.EnumeratePlayback();
    unsetenv("PULSE_SERVER");
    ASSERT_EQ(list.size(), 2U);
    EXPECT_EQ(list[1].description, "TestCard");
}

// When the graph below the protocol server goes, the devices go, the server may go too.
TEST(PulseLoss, DaemonBelowTheProtocolKilled) {
    PipeWireServer server({kUsedCard});
    Session session(server);
    session.Open("card");
    ASSERT_TRUE(session.Captures());
    server.KillDaemon();
    session.ExpectLosses("", kStallLimit);
}

TEST(PulseLoss, AServerWithoutDevicesHasThePrimaryEntryOnly) {
    const PulseServer server({});
    Session session(server);
    EXPECT_EQ(session.system_.EnumeratePlayback().size(), 1U);
    EXPECT_EQ(session.system_.EnumerateCapture().size(), 1U);
    session.ExpectError(sound_error::kNoDriver, "no sound device",
                        [&] { session.system_.CreatePlaybackDevice(""); });
}

// The server dies and comes back.
void CheckDeathOf(SoundServer& server) {
    Session session(server);
    session.Open("card");
    ASSERT_TRUE(session.Captures());
    server.Kill();
    session.ExpectLosses("The sound server has gone.");
    session.ExpectError(sound_error::kUninitialized, "No sound server answers",
                        [&] { session.system_.EnumeratePlayback(); });
    session.ExpectError(sound_error::kUninitialized, "No sound server answers",
                        [&] { session.output_->CreateBuffer(Stereo(kPlaybackBytes, kRateHz)); });
    server.Restart();
    EXPECT_GE(session.system_.EnumeratePlayback().size(), 2U);
    session.ExpectBuffersRefuse();
    session.Close();
    session.Open("card");
    EXPECT_TRUE(session.Captures());
    EXPECT_EQ(session.losses_.size(), 2U);
}

TEST(PulseLoss, ServerKilledAndStartedAgain) {
    PulseServer server({kUsedCard});
    CheckDeathOf(server);
}

TEST(PulseLoss, ServerKilledAndStartedAgainOnPipeWire) {
    PipeWireServer server({kUsedCard});
    CheckDeathOf(server);
}

// The sink of the buffers goes while another one stays, and comes back.
void CheckRemovalAt(const SoundServer& server) {
    const std::string module = server.LoadNullSink(kUsedCard);
    Session session(server);
    session.Open("card");
    ASSERT_TRUE(session.Captures());
    server.Control({"unload-module", module});
    session.ExpectLosses("has been removed");
    session.ExpectError(sound_error::kNoDriver, "'TestCard'",
                        [&] { session.output_->CreateBuffer(Stereo(kPlaybackBytes, kRateHz)); });
    session.ExpectError(sound_error::kNoDriver, "There is no sound device 'card'.",
                        [&] { session.system_.CreatePlaybackDevice("card"); });
    for (const SoundDeviceInfo& device : session.system_.EnumeratePlayback())
        EXPECT_NE(device.identifier, "card");
    session.Close();
    server.LoadNullSink(kUsedCard);
    session.Open("card");
    EXPECT_TRUE(session.Captures());
    EXPECT_EQ(session.losses_.size(), 2U);
}

TEST(PulseLoss, SinkUnloaded) {
    const PulseServer server({kSpareCard});
    CheckRemovalAt(server);
}

TEST(PulseLoss, SinkUnloadedOnPipeWire) {
    const PipeWireServer server({kSpareCard});
    CheckRemovalAt(server);
}

TEST(PulseLoss, SinkSuspended) {
    const PulseServer server({kUsedCard});
    Session session(server);
    session.Open("card");
    ASSERT_TRUE(session.Captures());
    server.Control({"suspend-sink", "card", "1"});
    session.ExpectLosses("has been suspended");
}

TEST(PulseLoss, MovingTheStreamIsRefused) {
    const PulseServer server({kUsedCard, kSpareCard});
    Session session(server);
    session.Open("card");
    const std::string inputs = server.Control({"list", "short", "sink-inputs"});
    const std::string number = inputs.substr(0, inputs.find('\t'));
    EXPECT_ANY_THROW(server.Control({"move-sink-input", number, "other"}));
    EXPECT_TRUE(session.Captures());
    EXPECT_TRUE(session.losses_.empty());
}

// The server stands still and goes on.
void CheckPauseOf(SoundServer& server) {
    Session session(server);
    session.Open("card");
    ASSERT_TRUE(session.Captures());
    server.Pause();
    session.ExpectError(sound_error::kUninitialized, "does not answer",
                        [&] { session.system_.EnumerateCapture(); });
    session.ExpectError(sound_error::kGeneric, "'TestCard'",
                        [&] { session.output_->CreateBuffer(Stereo(kPlaybackBytes, kRateHz)); });
    {
        Session late(server);
        late.ExpectError(sound_error::kUninitialized, "No sound server answers",
                         [&] { late.system_.EnumeratePlayback(); });
    }
    const auto start = session.loop_.Now();
    session.Close();
    EXPECT_LT(session.loop_.Now() - start, 500ms);
    server.Continue();
    session.Open("card");
    EXPECT_TRUE(session.Captures());
    EXPECT_TRUE(session.losses_.empty());
    // The stream that was given up while it was being opened is closed as well.
    session.Close();
    EXPECT_TRUE(PollUntil(
        session.loop_,
        [&] {
            return server.Control({"list", "short", "sink-inputs"}).empty();
        },
        kLimit));
}

TEST(PulseLoss, ServerStopped) {
    PulseServer server({kUsedCard});
    CheckPauseOf(server);
}

TEST(PulseLoss, ServerStoppedOnPipeWire) {
    PipeWireServer server({kUsedCard});
    CheckPauseOf(server);
}

TEST(PulseLoss, ServerStandsStill) {
    PulseServer server({kUsedCard});
    Session session(server);
    session.Open("card");
    ASSERT_TRUE(session.Captures());
    server.Pause();
    session.ExpectLosses("stands still", kStallLimit);
}

TEST(PulseLoss, EndsQuicklyWhileTheServerIsStopped) {
    PulseServer server({kUsedCard});
    PlainEventLoop loop;
    auto start = loop.Now();
    {
        Session session(server);
        session.Open("card");
        server.Pause();
        start = session.loop_.Now();
    }
    EXPECT_LT(loop.Now() - start, 500ms);
}

}  // namespace
}  // namespace sonavex
