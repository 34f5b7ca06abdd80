#include <gmock/gmock.h>

#include "contract/MixerHardwareContract.h"
#include "platform/alsamixer/AlsaMixer.h"
#include "platform/combined/LayeredMixer.h"
#include "platform/pulse/PulseMixer.h"
#include "support/MemoryHardware.h"
#include "support/PulseServer.h"
#include "support/alsa/FakeMixerCards.h"

namespace sonavex {
namespace {

constexpr const char* kName = "Usb";

// A server's sink and its monitor, and the fake card that both belong to.
class LayeredPlatform {
public:
    LayeredPlatform() {
        cards_.PutIn(3);
        server_.Control({"load-module", "module-null-sink", "sink_name=usb",
                         "sink_properties='device.description=Usb alsa.card=3'"});
    }
    std::unique_ptr<MixerHardware> Create(EventLoop& loop) {
        auto pulse = std::make_unique<PulseMixer>(loop, server_.Address());
        // A monitor does not name its card, so the test does.
        AlsaMixer::Cards behind{[](MixerSide) { return std::vector<std::string>(); },
                                [&server = *pulse](const MixerDevice& device) {
                                    if (device.name != PlaybackName() && device.name != CaptureName())
                                        return std::string();
                                    return "hw:" + server.AlsaCardOf({MixerSide::kPlayback, kName});
                                }};
        return std::make_unique<LayeredMixer>(std::move(pulse),
                                              std::make_unique<AlsaMixer>(loop, std::move(behind)));
    }
    static std::string PlaybackName() { return kName; }
    static std::string CaptureName() { return std::string("Monitor of ") + kName; }
    static std::set<MixerFunction> Functions() {
        using enum MixerFunction;
        return {kMasterVolume, kMasterMute, kWaveVolume, kWaveMute,  kLineVolume,
                kLineMute,     kMicVolume,  kMicMute,    kBass,      kTreble,
                kLineRecord,   kMicBoost,   kMonitorOff, kMicSource, kLineSource};
    }
    static std::vector<std::int32_t> OddValues() { return {20123, 40111}; }
    void ChangeOutside(MixerFunction function, const std::vector<std::int32_t>& values) {
        ASSERT_EQ(function, MixerFunction::kMasterVolume);
        server_.Control(
            {"set-sink-volume", "usb", std::to_string(values.at(0)), std::to_string(values.at(1))});
    }
    void TakeAway() {
        cards_.PullOut(3);
        server_.Kill();
    }
    FakeMixerCards& Cards() { return cards_; }

private:
    FakeMixerCards cards_;
    PulseServer server_{{}};
};

INSTANTIATE_TYPED_TEST_SUITE_P(Layered, MixerHardwareContract, LayeredPlatform);

TEST(LayeredMixer, LeavesTheServerWhatItManages) {
    LayeredPlatform platform;
    PlainEventLoop loop;
    const auto mixer = platform.Create(loop);
    QuenbyVista library(*mixer);
    std::int32_t status = -1;
    library.OpenSoundCard(kName, platform.CaptureName(), "", status);
    library.SetMasterVolume(20, status);
    library.SetLinePlayBack(100, status);
    EXPECT_EQ(library.GetMasterVolume(status), 20);
    EXPECT_THAT(platform.Cards().Values(3, kFakeMaster), testing::ElementsAre(60, 50));
    EXPECT_THAT(platform.Cards().Values(3, kFakeLine), testing::ElementsAre(31, 31));
    DeviceLevels levels(*mixer);
    EXPECT_THAT(levels.Read({MixerSide::kPlayback, kName}).value_or(""),
                testing::AllOf(testing::StartsWith("volume\t13107 13107\nmute\t0\n"),
                               testing::HasSubstr("card Line 0 playback volume\t31 31\n")));
}

// The server's source has no ports and no MIC in its name, so its level is a line level. The card's
// microphone level is not offered in addition.
TEST(LayeredMixer, LeavesTheRecordLevelToTheServer) {
    LayeredPlatform platform;
    PlainEventLoop loop;
    const auto mixer = platform.Create(loop);
    QuenbyVista library(*mixer);
    std::int32_t status = -1;
    library.OpenSoundCard(kName, platform.CaptureName(), "", status);
    static_cast<void>(library.GetMicRecordVolume(status));
    EXPECT_NE(status, 0);
    library.SetMicRecordVolume(3, status);
    library.SetLineRecordVolume(40, status);
    EXPECT_EQ(status, 0);
    EXPECT_EQ(library.GetLineRecordVolume(status), 40);
    EXPECT_THAT(platform.Cards().Values(3, kFakeCapture), testing::ElementsAre(16, 20));
}

TEST(LayeredMixer, KnowsTheLastingNamesOfBoth) {
    CallLog log;
    auto front = std::make_unique<MemoryHardware>(log);
    auto back = std::make_unique<MemoryHardware>(log);
    front->lastingNames = {{"Server", "Server [a]"}};
    back->lastingNames = {{"Server", "Server [b]"}, {"Card", "Card [c]"}};
    LayeredMixer mixer(std::move(front), std::move(back));
    EXPECT_EQ(mixer.LastingName({MixerSide::kPlayback, "Server"}), "Server [a]");
    EXPECT_EQ(mixer.LastingName({MixerSide::kPlayback, "Card"}), "Card [c]");
    EXPECT_EQ(mixer.LastingName({MixerSide::kPlayback, "None"}), "None");
}

}  // namespace
}  // namespace sonavex
