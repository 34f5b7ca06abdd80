#include <gmock/gmock.h>

#include "contract/MixerHardwareContract.h"
#include "platform/alsamixer/AlsaMixer.h"
#include "support/alsa/FakeMixerCards.h"

namespace sonavex {
namespace {

using testing::ElementsAre;

constexpr int kCard = 3;
constexpr const char* kName = "Fake card";

// One fake card with playback and capture.
class AlsaMixerPlatform {
public:
    AlsaMixerPlatform() : control_(cards_.PutIn(kCard)) {}
    std::unique_ptr<MixerHardware> Create(EventLoop& loop) {
        return std::make_unique<AlsaMixer>(
            loop, AlsaMixer::Cards{[](MixerSide) { return std::vector<std::string>{kName}; },
                                   [this](const MixerDevice& device) {
                                       return device.name == kName ? control_ : std::string();
                                   }});
    }
    static std::string PlaybackName() { return kName; }
    static std::string CaptureName() { return kName; }
    static std::set<MixerFunction> Functions() {
        using enum MixerFunction;
        return {kMasterVolume, kMasterMute, kWaveVolume, kWaveMute,  kLineVolume, kLineMute,
                kMicVolume,    kMicMute,    kBass,       kTreble,    kMicRecord,  kLineRecord,
                kMicBoost,     kMonitorOff, kMicSource,  kLineSource};
    }
    static std::vector<std::int32_t> OddValues() { return {30, 61}; }
    void ChangeOutside(MixerFunction function, const std::vector<std::int32_t>& values) {
        ASSERT_EQ(function, MixerFunction::kMasterVolume);
        cards_.Change(kCard, kFakeMaster, values);
    }
    void TakeAway() { cards_.PullOut(kCard); }
    FakeMixerCards& Cards() { return cards_; }

private:
    FakeMixerCards cards_;
    std::string control_;
};

INSTANTIATE_TYPED_TEST_SUITE_P(Alsa, MixerHardwareContract, AlsaMixerPlatform);

struct Rig {
    Rig() { library.OpenSoundCard(kName, kName, "", status); }
    AlsaMixerPlatform platform;
    PlainEventLoop loop;
    std::unique_ptr<MixerHardware> hardware = platform.Create(loop);
    QuenbyVista library{*hardware};
    DeviceLevels levels{*hardware};
    std::int32_t status = -1;
    std::vector<std::int32_t> At(FakeControl control) { return platform.Cards().Values(kCard, control); }
};

TEST(AlsaMixer, WritesTheCardsOwnSteps) {
    Rig rig;
    rig.library.SetMasterVolume(100, rig.status);
    EXPECT_THAT(rig.At(kFakeMaster), ElementsAre(87, 73)) << "60 : 50 kept";
    rig.library.SetMasterMute(true, rig.status);
    EXPECT_THAT(rig.At(kFakeMasterSwitch), ElementsAre(0, 0));
    rig.library.SetNoMonitor(false, rig.status);
    EXPECT_EQ(rig.At(kFakeMonitor)[0], 1);
    rig.library.SetBass(-10.5, rig.status);
    EXPECT_EQ(rig.At(kFakeBass)[0], 0);
    rig.library.SetTreble(3.0, rig.status);
    EXPECT_EQ(rig.At(kFakeTreble)[0], 9);
    rig.library.SetMicRecordVolume(50, rig.status);
    EXPECT_THAT(rig.At(kFakeCapture), ElementsAre(18, 23));
}

TEST(AlsaMixer, BoostsByTheStepOfTwentyDecibels) {
    Rig rig;
    rig.library.SetMicBoost(true, rig.status);
    EXPECT_EQ(rig.At(kFakeBoost)[0], 2);
    rig.library.SetMicBoost(false, rig.status);
    EXPECT_EQ(rig.At(kFakeBoost)[0], 0);
    rig.platform.Cards().Change(kCard, kFakeBoost, {3, 3});
    EXPECT_TRUE(rig.library.GetMicBoost(rig.status));
    rig.library.SetMicBoost(true, rig.status);
    EXPECT_EQ(rig.At(kFakeBoost)[0], 3) << "on already";
}

TEST(AlsaMixer, SwitchesEveryChannelByTheFirst) {
    Rig rig;
    HardwareMixerControl output(*rig.hardware, MixerSide::kPlayback);
    HardwareMixerControl input(*rig.hardware, MixerSide::kCapture);
    LegacyMixer mixer{output, input};
    for (MixerControl* control : {static_cast<MixerControl*>(&output), static_cast<MixerControl*>(&input)}) {
        control->DeviceCount();
        control->SelectDevice(0);
    }
    SetUpSoundControls(mixer);
    const auto write = [](MixerControl& control, const MixerLocator& entry, std::int32_t value) {
        SelectLocated(control, entry);
        control.SetValue(0, value);
        control.Commit();
    };
    write(output, mixer.MixerLocators.MasterMute, 1);
    EXPECT_THAT(rig.At(kFakeMasterSwitch), ElementsAre(0, 0));
    write(output, mixer.MixerLocators.MasterMute, 0);
    EXPECT_THAT(rig.At(kFakeMasterSwitch), ElementsAre(1, 1));
    write(input, mixer.MixerLocators.MicBoost, 1);
    EXPECT_THAT(rig.At(kFakeBoost), ElementsAre(2, 2));
    write(input, mixer.MixerLocators.MonitorOff, 0);
    EXPECT_THAT(rig.At(kFakeMonitor), ElementsAre(1, 1));
    write(input, mixer.MixerLocators.MonitorOff, 1);
    EXPECT_THAT(rig.At(kFakeMonitor), ElementsAre(0, 0));
}

TEST(AlsaMixer, MakesChannelsThatDifferAlike) {
    Rig rig;
    rig.platform.Cards().Change(kCard, kFakeMasterSwitch, {0, 1});
    EXPECT_FALSE(rig.library.GetMasterMute(rig.status));
    rig.library.SetMasterMute(true, rig.status);
    EXPECT_THAT(rig.At(kFakeMasterSwitch), ElementsAre(0, 0));
    rig.platform.Cards().Change(kCard, kFakeBoost, {3, 0});
    rig.library.SetMicBoost(true, rig.status);
    EXPECT_THAT(rig.At(kFakeBoost), ElementsAre(3, 2));
    rig.platform.Cards().Change(kCard, kFakeMonitor, {0, 1});
    rig.library.SetNoMonitor(true, rig.status);
    EXPECT_THAT(rig.At(kFakeMonitor), ElementsAre(0, 0));
}

TEST(AlsaMixer, GivesTheRecordLevelToTheSelectedSource) {
    Rig rig;
    static_cast<void>(rig.library.GetMicRecordVolume(rig.status));
    EXPECT_EQ(rig.status, 0);
    static_cast<void>(rig.library.GetLineRecordVolume(rig.status));
    EXPECT_NE(rig.status, 0);
    rig.platform.Cards().Change(kCard, kFakeSource, {2});
    static_cast<void>(rig.library.GetMicRecordVolume(rig.status));
    EXPECT_NE(rig.status, 0);
    static_cast<void>(rig.library.GetLineRecordVolume(rig.status));
    EXPECT_EQ(rig.status, 0);
}

TEST(AlsaMixer, CountsEveryInputThatIsAMicrophone) {
    Rig rig;
    rig.platform.Cards().Change(kCard, kFakeSource, {3});
    static_cast<void>(rig.library.GetMicRecordVolume(rig.status));
    EXPECT_EQ(rig.status, 0);
    static_cast<void>(rig.library.GetLineRecordVolume(rig.status));
    EXPECT_NE(rig.status, 0);
    const auto mixer = rig.hardware->Open({MixerSide::kCapture, kName});
    MixerElement& mic = *mixer->Find(MixerFunction::kMicSource);
    EXPECT_EQ(mic.Read().front(), 1);
    mic.Write({1});
    EXPECT_EQ(rig.At(kFakeSource)[0], 3) << "another microphone that is selected stays selected";
    rig.platform.Cards().Change(kCard, kFakeSource, {2});
    mic.Write({1});
    EXPECT_EQ(rig.At(kFakeSource)[0], 1);
}

TEST(AlsaMixer, BoostsTheMicrophoneAndNothingElse) {
    Rig rig;
    rig.library.SetMicBoost(true, rig.status);
    EXPECT_THAT(rig.At(kFakeBoost), ElementsAre(2, 2));
    rig.platform.Cards().Offer(kCard, kFakeBoost, false);
    rig.library.OpenSoundCard(kName, kName, "", rig.status);
    rig.library.SetMicBoost(true, rig.status);
    EXPECT_NE(rig.status, 0) << "a bass and a line are no microphones";
    rig.platform.Cards().Offer(kCard, kFakePlainBoost, true);
    rig.library.OpenSoundCard(kName, kName, "", rig.status);
    rig.library.SetMicBoost(true, rig.status);
    EXPECT_EQ(rig.status, 0);
    EXPECT_EQ(rig.At(kFakePlainBoost)[0], 1);
    EXPECT_THAT(rig.At(kFakeBassBoost), ElementsAre(0, 0));
    EXPECT_THAT(rig.At(kFakeLineBoost), ElementsAre(0, 0));
}

TEST(AlsaMixer, RestoresASourceThatIsNeitherMicrophoneNorLine) {
    Rig rig;
    rig.platform.Cards().Change(kCard, kFakeSource, {0});
    const MixerDevice device{MixerSide::kCapture, kName};
    const auto before = rig.levels.Read(device);
    const auto mixer = rig.hardware->Open(device);
    mixer->Find(MixerFunction::kLineSource)->Write({1});
    EXPECT_EQ(rig.At(kFakeSource)[0], 2);
    EXPECT_TRUE(rig.levels.Write(device, *before));
    EXPECT_EQ(rig.At(kFakeSource)[0], 0);
}

TEST(AlsaMixer, KeepsTheSidesOfACardApart) {
    Rig rig;
    const auto capture = rig.levels.Read({MixerSide::kCapture, kName});
    const auto playback = rig.levels.Read({MixerSide::kPlayback, kName});
    EXPECT_THAT(*capture, testing::Not(testing::HasSubstr("Master")));
    EXPECT_THAT(*playback, testing::Not(testing::HasSubstr("Capture")));
    EXPECT_THAT(*playback, testing::HasSubstr("Master 0 playback volume\t60 50\n"));
}

TEST(AlsaMixer, FindsACardThatIsPutInAgain) {
    Rig rig;
    rig.platform.TakeAway();
    static_cast<void>(rig.library.GetMasterVolume(rig.status));
    EXPECT_NE(rig.status, 0);
    EXPECT_EQ(rig.hardware->Open({MixerSide::kPlayback, kName}), nullptr);
    rig.platform.Cards().PutIn(kCard);
    rig.library.OpenSoundCard(kName, kName, "", rig.status);
    static_cast<void>(rig.library.GetMasterVolume(rig.status));
    EXPECT_EQ(rig.status, 0);
}

TEST(AlsaMixer, ForgetsAControlThatTheDriverRemoves) {
    Rig rig;
    HardwareMixerControl output(*rig.hardware, MixerSide::kPlayback);
    output.DeviceCount();
    output.SelectDevice(0);
    const auto levels = rig.levels.Read({MixerSide::kPlayback, kName});
    for (const FakeControl control : {kFakeMaster, kFakeMasterSwitch, kFakeBass, kFakeSource, kFakeBoost})
        rig.platform.Cards().Offer(kCard, control, false);
    for (int round = 0; round < 3; ++round) {
        static_cast<void>(rig.library.GetMasterVolume(rig.status));
        EXPECT_NE(rig.status, 0);
        rig.library.SetMasterMute(true, rig.status);
        EXPECT_NE(rig.status, 0);
        rig.library.SetBass(3.0, rig.status);
        EXPECT_NE(rig.status, 0);
        rig.library.SetMicBoost(true, rig.status);
        EXPECT_NE(rig.status, 0);
        static_cast<void>(rig.library.GetLinePlayBack(rig.status));
        EXPECT_EQ(rig.status, 0) << "the other controls stay";
        SetLegacyMixerState(output, GetLegacyMixerState(output));
    }
    EXPECT_THAT(rig.At(kFakeMasterSwitch), ElementsAre(1, 1));
    EXPECT_TRUE(rig.levels.Write({MixerSide::kPlayback, kName}, *levels));
}

TEST(AlsaMixer, FindsAControlThatTheDriverAddsAgain) {
    Rig rig;
    rig.platform.Cards().Offer(kCard, kFakeLine, false);
    rig.platform.Cards().Offer(kCard, kFakeLineSwitch, false);
    rig.library.OpenSoundCard(kName, kName, "", rig.status);
    static_cast<void>(rig.library.GetLinePlayBack(rig.status));
    EXPECT_NE(rig.status, 0);
    rig.platform.Cards().Offer(kCard, kFakeLine, true);
    rig.platform.Cards().Offer(kCard, kFakeLineSwitch, true);
    rig.library.OpenSoundCard(kName, kName, "", rig.status);
    EXPECT_EQ(rig.library.GetLinePlayBack(rig.status), 74);
    EXPECT_EQ(rig.status, 0);
}

TEST(AlsaMixer, ReportsTheLossOfACardOnce) {
    Rig rig;
    int changes = 0;
    rig.hardware->OnChange([&] { ++changes; });
    rig.platform.TakeAway();
    EXPECT_TRUE(WaitUntil(
        rig.loop, [&] { return changes > 0; }, std::chrono::seconds(5)));
    WaitUntil(
        rig.loop, [] { return false; }, std::chrono::milliseconds(350));
    EXPECT_EQ(changes, 1);
}

TEST(AlsaMixer, OfADeviceWithoutCardHasNothing) {
    Rig rig;
    EXPECT_EQ(rig.hardware->Open({MixerSide::kPlayback, "another"}), nullptr);
    FakeMixerCards none;
    PlainEventLoop loop;
    AlsaMixer mixer(loop, {[](MixerSide) { return std::vector<std::string>{"x"}; },
                           [](const MixerDevice&) { return std::string("hw:9"); }});
    EXPECT_EQ(mixer.Open({MixerSide::kPlayback, "x"}), nullptr);
}

}  // namespace
}  // namespace sonavex
