#include <gmock/gmock.h>

#include "core/mixer/ControlNames.h"
#include "core/mixer/HardwareMixerControl.h"
#include "core/mixer/LegacyMixerState.h"
#include "core/mixer/MixerLocators.h"
#include "core/mixer/VistaSound.h"
#include "support/MemoryHardware.h"

namespace sonavex {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using enum MixerFunction;

MemoryHardware::Control Level(std::vector<std::int32_t> values) {
    return MemoryHardware::Level(std::move(values), 65535);
}

MemoryHardware::Control Switch(std::vector<std::int32_t> values) {
    return MemoryHardware::Switch(std::move(values));
}

// The older control of a playback device in memory.
struct ControlRig {
    explicit ControlRig(MemoryHardware::Controls controls) {
        hardware.playback["Memory"] = std::move(controls);
        control.DeviceCount();
        control.SelectDevice(0);
        log.Clear();
    }
    // Writes channel 0 of the last control whose name contains "MUT".
    void MoveSpeakerMute(std::int32_t value) {
        const SpeakerLocators speaker = VistaSound::SetUpVistaSoundControls(control);
        control.SetDestination(speaker.SpeakerMuteDestination);
        control.SetControl(speaker.SpeakerMuteControl);
        control.SetValue(0, value);
        control.Commit();
    }
    void SetControl0(std::int32_t value) {
        control.SetControl(0);
        control.SetValue(0, value);
        control.SetValue(1, value);
        control.Commit();
    }
    std::vector<std::string> Names() {
        std::vector<std::string> names;
        ForEachControl(control, [&](const std::string& name) { names.push_back(name); });
        return names;
    }
    std::vector<std::int32_t>& At(MixerFunction function) {
        return hardware.playback.at("Memory").at(function).values;
    }

    CallLog log;
    MemoryHardware hardware{log};
    HardwareMixerControl control{hardware, MixerSide::kPlayback};
};

TEST(HardwareMixerControl, OffersWhatTheDeviceHasWithTheMasterLast) {
    ControlRig rig({{kMasterVolume, Level({1, 2})},
                    {kMasterMute, Switch({0})},
                    {kWaveVolume, Level({3, 4})},
                    {kWaveMute, Switch({0})},
                    {kLineVolume, Level({5, 6})},
                    {kLineMute, Switch({0})},
                    {kMicVolume, Level({7, 8})},
                    {kMicMute, Switch({0})},
                    {kBass, MemoryHardware::Tone(0)}});
    EXPECT_THAT(rig.Names(),
                ElementsAre("Wave Volume", "Wave Mute", "Line Volume", "Line Mute", "Microphone Volume",
                            "Microphone Mute", "Master Volume", "Master Mute"));
    const SpeakerLocators speaker = VistaSound::SetUpVistaSoundControls(rig.control);
    EXPECT_EQ(speaker.SpeakerVolumeControl, 6);
    EXPECT_EQ(speaker.SpeakerVolumeValue, 1.0F);
    EXPECT_EQ(speaker.SpeakerMuteControl, 7);
}

TEST(HardwareMixerControl, NamesTheControlsOfACaptureDevice) {
    CallLog log;
    MemoryHardware hardware(log);
    hardware.capture["Memory"] = {{kMicRecord, Level({1})},  {kLineRecord, Level({1})},
                                  {kMicBoost, Switch({0})},  {kMonitorOff, Switch({0})},
                                  {kMicSource, Switch({0})}, {kLineSource, Switch({1})}};
    HardwareMixerControl control(hardware, MixerSide::kCapture);
    control.DeviceCount();
    control.SelectDevice(0);
    std::vector<std::string> names;
    ForEachControl(control, [&](const std::string& name) { names.push_back(name); });
    EXPECT_THAT(names, ElementsAre("Microphone Volume", "Line Volume", "Microphone Boost", "Monitor Off",
                                   "Microphone Select", "Line Select"));
}

// A search by the beginning of a name takes the first match.
TEST(HardwareMixerControl, ListsLongerNamesFirst) {
    CallLog log;
    MemoryHardware hardware(log);
    hardware.playback = {{"Card", {}}, {"Card 2", {}}, {"Board", {}}};
    HardwareMixerControl control(hardware, MixerSide::kPlayback);
    EXPECT_EQ(FindMixerDevice(control, "Card 2 (analog)"), 0);
    EXPECT_EQ(FindMixerDevice(control, "Card"), 2);
    EXPECT_EQ(control.DeviceName(1), "Board");
    EXPECT_EQ(control.DeviceName(3), "");
}

TEST(HardwareMixerControl, LimitsValues) {
    ControlRig rig({{kMasterVolume, Level({1, 2})}});
    rig.SetControl0(2000000000);
    EXPECT_THAT(rig.At(kMasterVolume), ElementsAre(65535, 65535));
    rig.SetControl0(-5);
    EXPECT_THAT(rig.At(kMasterVolume), ElementsAre(0, 0));
}

TEST(HardwareMixerControl, WritesNothingBeforeTheCommit) {
    ControlRig rig({{kMasterVolume, Level({1, 2})}, {kMasterMute, Switch({0})}});
    for (const std::int16_t number : {std::int16_t{0}, std::int16_t{1}}) {
        rig.control.SetControl(number);
        rig.control.SetValue(0, 1);
    }
    EXPECT_THAT(rig.log.Of("Write"), IsEmpty());
    rig.control.Commit();
    EXPECT_THAT(rig.log.Of("Write"), ElementsAre("Write Memory/MasterMute 1")) << "of the selected control";
}

TEST(HardwareMixerControl, WritesNothingThatDoesNotChange) {
    ControlRig rig({{kMasterVolume, MemoryHardware::Level({20, 61}, 87)}, {kMasterMute, Switch({0, 1})}});
    SetLegacyMixerState(rig.control, GetLegacyMixerState(rig.control));
    EXPECT_THAT(rig.log.Of("Write"), IsEmpty());
}

TEST(HardwareMixerControl, OfNoDeviceAnswersWithNothing) {
    ControlRig rig({{kMasterVolume, Level({1, 2})}});
    for (const std::int32_t number : {-1, 30000}) {
        rig.control.SelectDevice(number);
        EXPECT_EQ(rig.control.DeviceName(), "");
        EXPECT_EQ(rig.control.DestinationCount(), 0);
        EXPECT_EQ(rig.control.ControlCount(), 0);
        EXPECT_EQ(rig.control.ControlName(), "");
        EXPECT_EQ(rig.control.Description().maximum, 0);
        EXPECT_EQ(rig.control.Value(0), -1);
        rig.SetControl0(1);
    }
    EXPECT_THAT(rig.log.Of("Write"), IsEmpty());
}

TEST(HardwareMixerControl, OfNoControlAnswersWithNothing) {
    ControlRig rig({{kMasterVolume, Level({1, 2})}});
    for (const auto& [destination, number] :
         {std::pair<std::int16_t, std::int16_t>{-1, 0}, {9, 0}, {0, -1}, {0, 99}}) {
        rig.control.SetDestination(destination);
        rig.control.SetControl(number);
        EXPECT_EQ(rig.control.ControlName(), "");
        EXPECT_EQ(rig.control.Value(0), -1);
        rig.control.SetValue(0, 1);
        rig.control.Commit();
    }
    EXPECT_THAT(rig.log.Of("Write"), IsEmpty());
}

TEST(HardwareMixerControl, OfNoChannelAnswersWithNothing) {
    ControlRig rig({{kMasterVolume, Level({1, 2})}});
    rig.control.SetControl(0);
    for (const std::int16_t channel : {std::int16_t{-1}, std::int16_t{2}}) {
        EXPECT_EQ(rig.control.Value(channel), -1);
        rig.control.SetValue(channel, 1);
    }
    rig.control.Commit();
    EXPECT_THAT(rig.log.Of("Write"), IsEmpty());
}

TEST(MissingMaster, IsAPlaceholderInTheLastPosition) {
    ControlRig rig({{kMicVolume, Level({7, 7})}, {kMicMute, Switch({1, 1})}});
    EXPECT_THAT(rig.Names(),
                ElementsAre("Microphone Volume", "Microphone Mute", "Master Volume", "Master Mute"));
    const SpeakerLocators speaker = VistaSound::SetUpVistaSoundControls(rig.control);
    EXPECT_EQ(speaker.SpeakerVolumeControl, 2);
    EXPECT_EQ(speaker.SpeakerVolumeValue, -1.0F);
    EXPECT_EQ(speaker.SpeakerMuteControl, 3);
    EXPECT_EQ(speaker.SpeakerMuteValue, -1.0F);
    for (const std::int16_t number : {std::int16_t{2}, std::int16_t{3}}) {
        rig.control.SetControl(number);
        rig.control.SetValue(0, 1);
        rig.control.SetValue(1, 1);
        rig.control.Commit();
    }
    EXPECT_THAT(rig.log.Of("Write"), IsEmpty());
}

TEST(MissingMaster, IsNotAvailableToTheOlderDialog) {
    ControlRig rig({{kWaveVolume, Level({7, 7})}, {kMasterVolume, Level({9, 9})}});
    HardwareMixerControl input(rig.hardware, MixerSide::kCapture);
    LegacyMixer mixer{rig.control, input};
    SetUpSoundControls(mixer);
    EXPECT_TRUE(mixer.MixerLocators.MasterVolume.Available());
    EXPECT_TRUE(mixer.MixerLocators.WaveVolume.Available());
    EXPECT_FALSE(mixer.MixerLocators.MasterMute.Available());
}

TEST(MissingMaster, OfADeviceWithoutControlsHasNoPlaceholder) {
    ControlRig rig({});
    EXPECT_EQ(rig.control.DestinationCount(), 0);
    EXPECT_EQ(VistaSound::SetUpVistaSoundControls(rig.control).SpeakerVolumeControl, -1);
}

TEST(SwitchesOfSeveralChannels, AreWrittenWholeByOne) {
    ControlRig rig({{kMasterVolume, Level({1, 2})}, {kMasterMute, Switch({0, 0, 0, 0})}});
    rig.MoveSpeakerMute(1);
    EXPECT_THAT(rig.At(kMasterMute), ElementsAre(1, 1, 1, 1));
    rig.MoveSpeakerMute(0);
    EXPECT_THAT(rig.At(kMasterMute), ElementsAre(0, 0, 0, 0));
    rig.At(kMasterMute) = {1, 0, 1, 0};
    rig.MoveSpeakerMute(1);
    EXPECT_THAT(rig.At(kMasterMute), ElementsAre(1, 1, 1, 1));
}

TEST(SwitchesOfSeveralChannels, TakeTwoValuesApart) {
    ControlRig rig({{kMasterMute, Switch({0, 0})}});
    rig.control.SetControl(0);
    ASSERT_EQ(rig.control.ControlName(), "Master Mute");
    rig.control.SetValue(0, 0);
    rig.control.SetValue(1, 1);
    rig.control.Commit();
    EXPECT_THAT(rig.At(kMasterMute), ElementsAre(0, 1));
}

TEST(LevelsOfSeveralChannels, AreWrittenByChannel) {
    ControlRig rig({{kMasterVolume, Level({1, 2})}});
    rig.control.SetControl(0);
    rig.control.SetValue(0, 500);
    rig.control.Commit();
    EXPECT_THAT(rig.At(kMasterVolume), ElementsAre(500, 2));
}

}  // namespace
}  // namespace sonavex
