#include <arpa/inet.h>
#include <gmock/gmock.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <chrono>
#include <cmath>
#include <numbers>
#include <string>
#include <thread>
#include <utility>

#include "contract/MixerHardwareContract.h"
#include "core/ports/SoundSystem.h"
#include "platform/pulse/PulseMixer.h"
#include "platform/pulse/PulseSoundSystem.h"
#include "support/Duplex.h"
#include "support/PipeWireServer.h"
#include "support/PulseServer.h"
#include "support/Wait.h"

namespace sonavex {
namespace {

using namespace std::chrono_literals;

constexpr const char* kSinkName = "card";
constexpr const char* kDescription = "Test-Card";

// A private server with one sink. The capture device is the sink's monitor, a line input by its name.
template <class Server>
class ServerMixerPlatform {
public:
    std::unique_ptr<MixerHardware> Create(EventLoop& loop) {
        return std::make_unique<PulseMixer>(loop, server_.Address());
    }
    static std::string PlaybackName() { return kDescription; }
    static std::string CaptureName() { return std::string("Monitor of ") + kDescription; }
    static std::set<MixerFunction> Functions() {
        return {MixerFunction::kMasterVolume, MixerFunction::kMasterMute, MixerFunction::kLineRecord};
    }
    static std::vector<std::int32_t> OddValues() { return {20123, 40111}; }
    // Waits until the server has applied the change: PipeWire answers earlier.
    void ChangeOutside(MixerFunction function, const std::vector<std::int32_t>& values) {
        ASSERT_EQ(function, MixerFunction::kMasterVolume);
        const std::string first = std::to_string(values.at(0));
        const std::string second = std::to_string(values.at(1));
        server_.Control({"set-sink-volume", kSinkName, first, second});
        ASSERT_TRUE(WaitUntil([&] { return Has(": " + first + " /", ": " + second + " /"); }, 5s))
            << Volume();
    }
    void TakeAway() { server_.Kill(); }

    Server& TheServer() { return server_; }

private:
    std::string Volume() { return server_.Control({"get-sink-volume", kSinkName}); }
    bool Has(const std::string& first, const std::string& second) {
        const std::string volume = Volume();
        const std::size_t at = volume.find(first);
        return at != std::string::npos && volume.find(second, at + 1) != std::string::npos;
    }

    Server server_{{{kSinkName, 48000, kDescription}}};
};
using PulseMixerPlatform = ServerMixerPlatform<PulseServer>;
using PipeWireMixerPlatform = ServerMixerPlatform<PipeWireServer>;

INSTANTIATE_TYPED_TEST_SUITE_P(Pulse, MixerHardwareContract, PulseMixerPlatform);
INSTANTIATE_TYPED_TEST_SUITE_P(PipeWire, MixerHardwareContract, PipeWireMixerPlatform);

// Plays a sine to the sink and captures from its monitor.
template <class Platform>
class AudibleSink {
public:
    static constexpr std::int32_t kRateHz = 48000;

    AudibleSink() {
        duplex_.OpenPlayback(kSinkName, kRateHz);
        duplex_.OpenCapture(std::string(kSinkName) + ".monitor", kRateHz);
        std::vector<std::int16_t> samples(32768);
        for (std::size_t i = 0; i < samples.size(); ++i)
            samples[i] = static_cast<std::int16_t>(
                std::lround(16000.0 * std::sin(2.0 * std::numbers::pi * static_cast<double>(i / 2) / 64.0)));
        duplex_.playback->WriteBuffer(0, samples);
        duplex_.Start();
    }

    // Level of each captured channel relative to the played sine in dB: the first stable value, because a
    // late server interrupts the sine briefly.
    std::array<double, 2> LevelsDb() {
        WaitUntil(
            loop, [] { return false; }, 700ms);
        std::array<double, 2> levels = PresentLevelsDb();
        for (int looks = 0; looks < 20; ++looks) {
            WaitUntil(
                loop, [] { return false; }, 200ms);
            const std::array<double, 2> before = std::exchange(levels, PresentLevelsDb());
            if (Same(levels[0], before[0]) && Same(levels[1], before[1])) break;
        }
        return levels;
    }

    Platform platform;
    PlainEventLoop loop;
    PulseMixer mixer{loop, platform.TheServer().Address()};
    QuenbyVista library{mixer};

private:
    static bool Same(double one, double other) { return one == other || std::abs(one - other) < 0.01; }

    std::array<double, 2> PresentLevelsDb() const {
        std::vector<std::int16_t> captured(16384);
        duplex_.capture->ReadBuffer(0, captured);
        std::array<double, 2> power{};
        for (std::size_t i = 0; i < captured.size(); ++i) power[i % 2] += captured[i] * captured[i];
        const double played = 16000.0 * 16000.0 / 2.0 * 8192.0;
        return {10.0 * std::log10(power[0] / played), 10.0 * std::log10(power[1] / played)};
    }

    PulseSoundSystem system_{loop, platform.TheServer().Address()};
    Duplex duplex_{loop, system_};
};

template <class Platform>
void ExpectHeard() {
    AudibleSink<Platform> sink;
    std::int32_t status = -1;
    sink.library.OpenSoundCard(kDescription, "", "", status);
    ASSERT_EQ(status, 0);
    EXPECT_NEAR(sink.LevelsDb()[0], 0.0, 0.1);
    // The server's amplitude is the cube of its volume.
    sink.library.SetMasterVolume(50, status);
    EXPECT_NEAR(sink.LevelsDb()[0], 60.0 * std::log10(0.5), 0.1);
    sink.platform.ChangeOutside(MixerFunction::kMasterVolume, {65536, 32768});
    const auto balanced = sink.LevelsDb();
    EXPECT_NEAR(balanced[0], 0.0, 0.1);
    EXPECT_NEAR(balanced[1], 60.0 * std::log10(0.5), 0.1);
    sink.library.SetMasterMute(true, status);
    EXPECT_LT(sink.LevelsDb()[0], -90.0);
    sink.library.SetMasterMute(false, status);
    EXPECT_NEAR(sink.LevelsDb()[0], 0.0, 0.1);
}

TEST(PulseMixer, ActsOnWhatIsHeard) {
    ExpectHeard<PulseMixerPlatform>();
}

TEST(PulseMixer, ActsOnWhatIsHeardOnPipeWire) {
    ExpectHeard<PipeWireMixerPlatform>();
}

TEST(PulseMixer, KeepsVolumesAboveFull) {
    PulseMixerPlatform platform;
    PlainEventLoop loop;
    const auto mixer = platform.Create(loop);
    QuenbyVista library(*mixer);
    std::int32_t status = -1;
    library.OpenSoundCard(kDescription, "", "", status);
    platform.ChangeOutside(MixerFunction::kMasterVolume, {90000, 80000});
    EXPECT_EQ(library.GetMasterVolume(status), 100);
    library.SetMasterVolume(100, status);
    DeviceLevels levels(*mixer);
    const MixerDevice sink{MixerSide::kPlayback, kDescription};
    const auto loud = levels.Read(sink);
    EXPECT_THAT(loud.value_or(""), testing::HasSubstr("volume\t90000 80000\n"));
    library.SetMasterVolume(40, status);
    EXPECT_TRUE(levels.Write(sink, *loud));
    EXPECT_EQ(levels.Read(sink), loud);
}

TEST(PulseMixer, OfAStalledServerWaitsOnlyOnce) {
    PulseMixerPlatform platform;
    PlainEventLoop loop;
    const auto mixer = platform.Create(loop);
    QuenbyVista library(*mixer);
    std::int32_t status = -1;
    library.OpenSoundCard(kDescription, "", "", status);
    platform.TheServer().Pause();
    const auto before = loop.Now();
    EXPECT_EQ(VistaSound::GetVistaMixerState(library), "100,False,0,True,0,True,False,True,0,0,0,100,100,");
    EXPECT_LT(loop.Now() - before, 4s) << "thirteen levels, but only one wait";
    platform.TheServer().Continue();
    EXPECT_TRUE(WaitUntil(
        loop,
        [&] {
            static_cast<void>(library.GetMasterVolume(status));
            return status == 0;
        },
        10s));
}

TEST(PulseMixer, FindsARestartedServer) {
    PulseMixerPlatform platform;
    PlainEventLoop loop;
    const auto mixer = platform.Create(loop);
    QuenbyVista library(*mixer);
    std::int32_t status = -1;
    library.OpenSoundCard(kDescription, "", "", status);
    platform.TheServer().Restart();
    EXPECT_TRUE(WaitUntil(
        loop,
        [&] {
            static_cast<void>(library.GetMasterVolume(status));
            return status == 0;
        },
        10s));
    int changes = 0;
    mixer->OnChange([&] { ++changes; });
    platform.ChangeOutside(MixerFunction::kMasterVolume, {1000, 1000});
    EXPECT_TRUE(WaitUntil(
        loop, [&] { return changes > 0; }, 5s));
}

TEST(PulseMixer, OfASourceByNameIsAMicrophone) {
    PulseServer server({{"mic", 48000, "USB-Microphone"}});
    PlainEventLoop loop;
    PulseMixer mixer(loop, server.Address());
    QuenbyVista library(mixer);
    std::int32_t status = -1;
    library.OpenSoundCard("", "Monitor of USB-Microphone", "", status);
    static_cast<void>(library.GetMicRecordVolume(status));
    EXPECT_EQ(status, 0);
    static_cast<void>(library.GetLineRecordVolume(status));
    EXPECT_NE(status, 0);
}

SoundDeviceList DevicesOf(SoundSystem& system, MixerSide side) {
    return side == MixerSide::kPlayback ? system.EnumeratePlayback() : system.EnumerateCapture();
}

// The identifiers contain MIC. Only the description decides that a source is a microphone.
TEST(PulseMixer, KeepsDevicesWithTheSameDescriptionApart) {
    PulseServer server({{"mic.one", 48000, "Twin"}, {"mic.two", 48000, "Twin"}, {"single", 48000, "Single"}});
    PlainEventLoop loop;
    PulseMixer mixer(loop, server.Address());
    PulseSoundSystem system(loop, server.Address());
    const auto named = [&](MixerSide side, const std::string& identifier) {
        for (const SoundDeviceInfo& device : DevicesOf(system, side))
            if (device.identifier == identifier) return device.description;
        return std::string("not listed");
    };
    EXPECT_EQ(named(MixerSide::kPlayback, "mic.one"), "Twin [mic.one]");
    EXPECT_EQ(named(MixerSide::kPlayback, "mic.two"), "Twin [mic.two]");
    EXPECT_EQ(named(MixerSide::kPlayback, "single"), "Single");
    EXPECT_EQ(named(MixerSide::kCapture, "mic.two.monitor"), "Monitor of Twin [mic.two.monitor]");
    EXPECT_THAT(mixer.Devices(MixerSide::kPlayback),
                testing::UnorderedElementsAre("Twin [mic.one]", "Twin [mic.two]", "Single"));
    EXPECT_THAT(mixer.Devices(MixerSide::kCapture),
                testing::UnorderedElementsAre("Monitor of Twin [mic.one.monitor]",
                                              "Monitor of Twin [mic.two.monitor]", "Monitor of Single"));
    QuenbyVista library(mixer);
    std::int32_t status = -1;
    library.OpenSoundCard("Twin [mic.two]", "Monitor of Twin [mic.two.monitor]", "", status);
    library.SetMasterVolume(25, status);
    EXPECT_EQ(status, 0);
    static_cast<void>(library.GetLineRecordVolume(status));
    EXPECT_EQ(status, 0);
    EXPECT_THAT(server.Control({"get-sink-volume", "mic.one"}), testing::HasSubstr(" 100% "));
    EXPECT_THAT(server.Control({"get-sink-volume", "mic.two"}), testing::HasSubstr(" 25% "));
}

TEST(PulseMixer, FindsADeviceThatATwinHasRenamed) {
    PulseServer server({{"one", 48000, "Twin"}});
    PlainEventLoop loop;
    PulseMixer mixer(loop, server.Address());
    DeviceLevels levels(mixer);
    const MixerDevice twin{MixerSide::kPlayback, "Twin"};
    const MixerDevice first{MixerSide::kPlayback, mixer.LastingName(twin)};
    EXPECT_EQ(first.name, "Twin [one]");
    EXPECT_EQ(mixer.LastingName({MixerSide::kCapture, "Twin"}), "Twin") << "no such device";
    const auto before = levels.Read(first);
    ASSERT_NE(before, std::nullopt);
    const std::string module = server.LoadNullSink({"two", 48000, "Twin"});
    server.Control({"set-sink-volume", "one", "20000"});
    server.Control({"set-sink-volume", "two", "30000"});
    EXPECT_EQ(mixer.Open(twin), nullptr) << "the name of two devices";
    EXPECT_EQ(mixer.LastingName(first), first.name);
    EXPECT_TRUE(levels.Write(first, *before));
    EXPECT_EQ(levels.Read(first), before);
    EXPECT_THAT(server.Control({"get-sink-volume", "two"}), testing::HasSubstr(" 30000 "));
    server.Control({"unload-module", module});
    EXPECT_EQ(levels.Read(first), before);
    EXPECT_EQ(levels.Read(twin), before);
}

TEST(PulseMixer, NamesTheCardBehindADevice) {
    PulseServer server({});
    server.Control({"load-module", "module-null-sink", "sink_name=usb",
                    "sink_properties='device.description=Usb alsa.card=3'"});
    server.Control(
        {"load-module", "module-null-sink", "sink_name=none", "sink_properties=device.description=None"});
    PlainEventLoop loop;
    PulseMixer mixer(loop, server.Address());
    EXPECT_EQ(mixer.AlsaCardOf({MixerSide::kPlayback, "Usb"}), "3");
    EXPECT_EQ(mixer.AlsaCardOf({MixerSide::kPlayback, "None"}), "");
    EXPECT_EQ(mixer.AlsaCardOf({MixerSide::kPlayback, "Unknown"}), "");
}

// A free TCP port of this address.
std::uint16_t FreePort(const char* address) {
    const int listener = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in place{};
    place.sin_family = AF_INET;
    inet_pton(AF_INET, address, &place.sin_addr);
    socklen_t size = sizeof place;
    const bool bound = bind(listener, reinterpret_cast<sockaddr*>(&place), size) == 0 &&
                       getsockname(listener, reinterpret_cast<sockaddr*>(&place), &size) == 0;
    close(listener);
    return bound ? ntohs(place.sin_port) : std::uint16_t{0};
}

// A server that is reached by network counts as another machine's, even on this machine.
TEST(PulseMixer, NamesNoCardOfAServerInTheNetwork) {
    constexpr const char* kHost = "127.0.0.2";
    PulseServer server({});
    server.Control({"load-module", "module-null-sink", "sink_name=usb",
                    "sink_properties='device.description=Usb alsa.card=3'"});
    const std::uint16_t port = FreePort(kHost);
    ASSERT_NE(port, 0);
    server.Control({"load-module", "module-native-protocol-tcp", "auth-anonymous=1",
                    std::string("listen=") + kHost, "port=" + std::to_string(port)});
    PlainEventLoop loop;
    PulseMixer mixer(loop, std::string("tcp:") + kHost + ':' + std::to_string(port));
    ASSERT_THAT(mixer.Devices(MixerSide::kPlayback), testing::Contains("Usb"));
    EXPECT_EQ(mixer.AlsaCardOf({MixerSide::kPlayback, "Usb"}), "");
}

TEST(PulseInputs, AreKnownByTypeThenByName) {
    EXPECT_EQ(InputOfPort(PA_DEVICE_PORT_TYPE_MIC, "x", "Line"), PulseInput::kMicrophone);
    EXPECT_EQ(InputOfPort(PA_DEVICE_PORT_TYPE_HEADSET, "x", ""), PulseInput::kMicrophone);
    EXPECT_EQ(InputOfPort(PA_DEVICE_PORT_TYPE_LINE, "analog-input-mic", ""), PulseInput::kLine);
    EXPECT_EQ(InputOfPort(0, "analog-input-rear-mic", ""), PulseInput::kMicrophone);
    EXPECT_EQ(InputOfPort(0, "x", "Front Microphone"), PulseInput::kMicrophone);
    EXPECT_EQ(InputOfPort(0, "analog-input-linein", ""), PulseInput::kLine);
    EXPECT_EQ(InputOfPort(PA_DEVICE_PORT_TYPE_HDMI, "hdmi-output-0", "HDMI"), PulseInput::kOther);
}

TEST(PulseInputs, FollowTheActivePort) {
    const std::vector<PulsePort> both{{"other", PulseInput::kOther},
                                      {"mic", PulseInput::kMicrophone},
                                      {"line", PulseInput::kLine},
                                      {"line2", PulseInput::kLine}};
    EXPECT_EQ(PulsePorts(both, "line2", "Microphone array").Active(), PulseInput::kLine);
    EXPECT_EQ(PulsePorts(both, "mic", "Card").Active(), PulseInput::kMicrophone);
    EXPECT_EQ(PulsePorts(both, "other", "usb mic").Active(), PulseInput::kMicrophone);
    EXPECT_EQ(PulsePorts(both, "", "Card").Active(), PulseInput::kLine);
    EXPECT_EQ(PulsePorts(both, "mic", "Card").PortFor(PulseInput::kLine), "line");
    EXPECT_TRUE(PulsePorts(both, "mic", "Card").Offers(PulseInput::kLine));
    EXPECT_FALSE(PulsePorts({}, "", "Card").Offers(PulseInput::kMicrophone));
    EXPECT_EQ(PulsePorts({}, "", "Card").PortFor(PulseInput::kLine), "");
}

}  // namespace
}  // namespace sonavex
