// Sound servers and devices that go away or stall.

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
#include "platform/pulse/PulseSoundSystem.h"
#include "support/Duplex.h"
#include "support/PipeWireServer.h"
#include "support/PulseServer.h"
#include "support/alsa/LoopCards.h"

namespace sonavex {
namespace {

using namespace std::chrono_literals;
using testing::HasSubstr;

constexpr std::int32_t kRateHz = 48000;
// Limit until a stalled stream is given up.
constexpr auto kStallLimit = 7s;

const NullSink kUsedCard{"card", kRateHz, "TestCard"};
const NullSink kSpareCard{"other", kRateHz, "OtherCard"};

// The sound system in use: both buffers run.
class Session : public DuplexOn<PulseSoundSystem> {
public:
    explicit Session(const SoundServer& server) : DuplexOn(server.Address()) {}

    void Open(const std::string& sink) {
        OpenPlayback(sink, kRateHz);
        OpenCapture(sink + ".monitor", kRateHz);
        Start();
    }
    void ExpectLosses(const std::string& text, std::chrono::nanoseconds limit = kLimit) {
        Duplex::ExpectLosses(kUsedCard.description, text, limit);
    }
    void ExpectBuffersRefuse() { Duplex::ExpectBuffersRefuse(""); }
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

// When the daemon goes, the devices go, and the protocol server may go too.
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
    EXPECT_EQ(session.system.EnumeratePlayback().size(), 1U);
    EXPECT_EQ(session.system.EnumerateCapture().size(), 1U);
    session.ExpectError(sound_error::kNoDriver, "no sound device",
                        [&] { session.system.CreatePlaybackDevice(""); });
}

// The server dies and returns.
void CheckDeathOf(SoundServer& server) {
    Session session(server);
    session.Open("card");
    ASSERT_TRUE(session.Captures());
    server.Kill();
    session.ExpectLosses("The connection to the sound server was lost.");
    session.ExpectError(sound_error::kUninitialized, "No sound server answers",
                        [&] { session.system.EnumeratePlayback(); });
    session.ExpectError(sound_error::kUninitialized, "No sound server answers",
                        [&] { session.output->CreateBuffer(Stereo(kPlaybackBytes, kRateHz)); });
    server.Restart();
    EXPECT_GE(session.system.EnumeratePlayback().size(), 2U);
    session.ExpectBuffersRefuse();
    session.Close();
    session.Open("card");
    EXPECT_TRUE(session.Captures());
    EXPECT_TRUE(session.losses.empty());
}

TEST(PulseLoss, ServerKilledAndStartedAgain) {
    PulseServer server({kUsedCard});
    CheckDeathOf(server);
}

TEST(PulseLoss, ServerKilledAndStartedAgainOnPipeWire) {
    PipeWireServer server({kUsedCard});
    CheckDeathOf(server);
}

// The sink in use is removed while another one stays, and returns.
void CheckRemovalAt(const SoundServer& server) {
    const std::string module = server.LoadNullSink(kUsedCard);
    Session session(server);
    session.Open("card");
    ASSERT_TRUE(session.Captures());
    server.Control({"unload-module", module});
    session.ExpectLosses("has been removed");
    session.ExpectError(sound_error::kNoDriver, "'TestCard'",
                        [&] { session.output->CreateBuffer(Stereo(kPlaybackBytes, kRateHz)); });
    session.ExpectError(sound_error::kNoDriver, "There is no sound device 'card'.",
                        [&] { session.system.CreatePlaybackDevice("card"); });
    for (const SoundDeviceInfo& device : session.system.EnumeratePlayback())
        EXPECT_NE(device.identifier, "card");
    session.Close();
    server.LoadNullSink(kUsedCard);
    session.Open("card");
    EXPECT_TRUE(session.Captures());
    EXPECT_TRUE(session.losses.empty());
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

// The rate of PipeWire's graph is the user's to change.
TEST(PulseLoss, CardOfPipeWireChangesItsRate) {
    const LoopCards cards(CardList{{"loop", "Loop card", {44100, 48000}}});
    const PipeWireServer server({});
    server.AddCard("loop", kUsedCard.name, kUsedCard.description);
    Session session(server);
    session.Open("card");
    ASSERT_TRUE(session.Captures());
    // The first answers about the device are provisional.
    session.loop.RunUntil([] { return false; }, 4500ms);
    EXPECT_TRUE(session.losses.empty());
    EXPECT_TRUE(session.Captures());
    server.ForceRate(44100);
    session.ExpectLosses("has changed the format or the rate of its samples.", kStallLimit);
}

TEST(PulseLoss, MovingTheStreamIsRefused) {
    const PulseServer server({kUsedCard, kSpareCard});
    Session session(server);
    session.Open("card");
    const std::string inputs = server.Control({"list", "short", "sink-inputs"});
    const std::string number = inputs.substr(0, inputs.find('\t'));
    EXPECT_ANY_THROW(server.Control({"move-sink-input", number, "other"}));
    EXPECT_TRUE(session.Captures());
    EXPECT_TRUE(session.losses.empty());
}

// The server is stopped and continued.
void CheckPauseOf(SoundServer& server) {
    Session session(server);
    session.Open("card");
    ASSERT_TRUE(session.Captures());
    server.Pause();
    session.ExpectError(sound_error::kUninitialized, "does not answer",
                        [&] { session.system.EnumerateCapture(); });
    session.ExpectError(sound_error::kGeneric, "'TestCard'",
                        [&] { session.output->CreateBuffer(Stereo(kPlaybackBytes, kRateHz)); });
    {
        Session late(server);
        late.ExpectError(sound_error::kUninitialized, "No sound server answers",
                         [&] { late.system.EnumeratePlayback(); });
    }
    const auto start = session.loop.Now();
    session.Close();
    EXPECT_LT(session.loop.Now() - start, 500ms);
    server.Continue();
    session.Open("card");
    EXPECT_TRUE(session.Captures());
    EXPECT_TRUE(session.losses.empty());
    // A stream that was given up while being opened is closed too.
    session.Close();
    EXPECT_TRUE(WaitUntil(
        session.loop,
        [&] {
            return server.Control({"list", "short", "sink-inputs"}).empty();
        },
        Session::kLimit));
}

TEST(PulseLoss, ServerStopped) {
    PulseServer server({kUsedCard});
    CheckPauseOf(server);
}

TEST(PulseLoss, ServerStoppedOnPipeWire) {
    PipeWireServer server({kUsedCard});
    CheckPauseOf(server);
}

TEST(PulseLoss, ServerStalls) {
    PulseServer server({kUsedCard});
    Session session(server);
    session.Open("card");
    ASSERT_TRUE(session.Captures());
    server.Pause();
    session.ExpectLosses("has stalled: the sound server no longer moves its samples.", kStallLimit);
}

TEST(PulseLoss, EndsQuicklyWhileTheServerIsStopped) {
    PulseServer server({kUsedCard});
    PlainEventLoop loop;
    auto start = loop.Now();
    {
        Session session(server);
        session.Open("card");
        server.Pause();
        start = session.loop.Now();
    }
    EXPECT_LT(loop.Now() - start, 500ms);
}

}  // namespace
}  // namespace sonavex
