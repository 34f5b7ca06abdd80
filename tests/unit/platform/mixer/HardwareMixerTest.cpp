// The older control and the newer library on hardware of any number of channels.

#include <gmock/gmock.h>

#include <map>
#include <utility>

#include "core/mixer/ControlNames.h"
#include "core/mixer/MixerLocators.h"
#include "core/mixer/VistaSound.h"
#include "platform/mixer/HardwareMixerControl.h"
#include "platform/mixer/HardwareMixerLibrary.h"

namespace sonavex {
namespace {

using testing::ElementsAre;
using enum MixerFunction;

constexpr const char* kName = "Memory";
constexpr RawRange kLevelRange{0, 65535};
constexpr RawRange kSwitchRange{0, 1};

class MemoryElement : public MixerElement {
public:
    MemoryElement(RawRange range, std::vector<std::int32_t> initial)
        : values(std::move(initial)), range_(range) {}
    RawRange Range() const override { return range_; }
    std::vector<std::int32_t> Read() override { return values; }
    void Write(const std::vector<std::int32_t>& wanted) override {
        values = wanted;
        ++writes;
    }
    std::vector<std::int32_t> values;
    int writes = 0;

private:
    RawRange range_;
};

using Elements = std::map<MixerFunction, MemoryElement>;

class MemoryDevice : public DeviceMixer {
public:
    explicit MemoryDevice(Elements& elements) : elements_(elements) {}
    MixerElement* Find(MixerFunction function) override {
        const auto found = elements_.find(function);
        return found == elements_.end() ? nullptr : &found->second;
    }
    std::vector<RawEntry> RawEntries() override { return {}; }

private:
    Elements& elements_;
};

class MemoryHardware : public MixerHardware {
public:
    explicit MemoryHardware(Elements& elements) : elements_(elements) {}
    std::vector<std::string> Devices(MixerSide) override { return {kName}; }
    std::shared_ptr<DeviceMixer> Open(const MixerDevice& device) override {
        return device.name == kName ? std::make_shared<MemoryDevice>(elements_) : nullptr;
    }
    void OnChange(std::function<void()>) override {}

private:
    Elements& elements_;
};

struct Rig {
    explicit Rig(Elements with) : elements(std::move(with)) {
        control.DeviceCount();
        control.SelectDevice(0);
        library.OpenSoundCard(kName, kName, "", status);
    }
    // Writes channel 0 alone of the control that is the last of its word.
    void MoveSpeakerMute(std::int32_t value) {
        const SpeakerLocators speaker = VistaSound::SetUpVistaSoundControls(control);
        control.SetDestination(speaker.SpeakerMuteDestination);
        control.SetControl(speaker.SpeakerMuteControl);
        control.SetValue(0, value);
        control.Commit();
    }
    std::vector<std::string> Names() {
        std::vector<std::string> names;
        ForEachControl(control, [&](const std::string& name) { names.push_back(name); });
        return names;
    }
    MemoryElement& At(MixerFunction function) { return elements.at(function); }

    Elements elements;
    MemoryHardware hardware{elements};
    HardwareMixerControl control{hardware, MixerSide::kPlayback};
    HardwareMixerLibrary library{hardware};
    std::int32_t status = -1;
};

MemoryElement Level(std::vector<std::int32_t> values) {
    return {kLevelRange, std::move(values)};
}

MemoryElement Switch(std::vector<std::int32_t> values) {
    return {kSwitchRange, std::move(values)};
}

TEST(MasterThatIsMissing, StandsLastAndNeverAnswers) {
    Rig rig({{kMicVolume, Level({7, 7})}, {kMicMute, Switch({1, 1})}});
    EXPECT_THAT(rig.Names(),
                ElementsAre("Microphone Volume", "Microphone Mute", "Master Volume", "Master Mute"));
    const SpeakerLocators speaker = VistaSound::SetUpVistaSoundControls(rig.control);
    EXPECT_EQ(speaker.SpeakerVolumeControl, 2);
    EXPECT_EQ(speaker.SpeakerVolumeValue, -1.0F);
    EXPECT_EQ(speaker.SpeakerMuteControl, 3);
    EXPECT_EQ(speaker.SpeakerMuteValue, -1.0F);
    for (const std::int16_t place : {std::int16_t{2}, std::int16_t{3}}) {
        rig.control.SetControl(place);
        rig.control.SetValue(0, 1);
        rig.control.SetValue(1, 1);
        rig.control.Commit();
    }
    EXPECT_EQ(rig.At(kMicVolume).writes + rig.At(kMicMute).writes, 0);
}

TEST(MasterThatIsMissing, IsNotAvailableToTheOlderDialog) {
    Rig rig({{kWaveVolume, Level({7, 7})}, {kMasterVolume, Level({9, 9})}});
    HardwareMixerControl input(rig.hardware, MixerSide::kCapture);
    LegacyMixer mixer{rig.control, input};
    SetUpSoundControls(mixer);
    EXPECT_TRUE(mixer.MixerLocators.MasterVolume.Available());
    EXPECT_TRUE(mixer.MixerLocators.WaveVolume.Available());
    EXPECT_FALSE(mixer.MixerLocators.MasterMute.Available());
}

TEST(MasterThatIsMissing, OfADeviceWithoutControlsIsNotThere) {
    Rig rig({});
    EXPECT_EQ(rig.control.DestinationCount(), 0);
    EXPECT_EQ(VistaSound::SetUpVistaSoundControls(rig.control).SpeakerVolumeControl, -1);
}

TEST(SwitchesOfSeveralChannels, AreWrittenWholeByOne) {
    Rig rig({{kMasterVolume, Level({1, 2})}, {kMasterMute, Switch({0, 0, 0, 0})}});
    rig.MoveSpeakerMute(1);
    EXPECT_THAT(rig.At(kMasterMute).values, ElementsAre(1, 1, 1, 1));
    rig.MoveSpeakerMute(0);
    EXPECT_THAT(rig.At(kMasterMute).values, ElementsAre(0, 0, 0, 0));
    rig.At(kMasterMute).values = {1, 0, 1, 0};
    rig.MoveSpeakerMute(1);
    EXPECT_THAT(rig.At(kMasterMute).values, ElementsAre(1, 1, 1, 1));
}

TEST(SwitchesOfSeveralChannels, TakeTwoValuesApart) {
    Rig rig({{kMasterMute, Switch({0, 0})}});
    rig.control.SetControl(0);
    ASSERT_EQ(rig.control.ControlName(), "Master Mute");
    rig.control.SetValue(0, 0);
    rig.control.SetValue(1, 1);
    rig.control.Commit();
    EXPECT_THAT(rig.At(kMasterMute).values, ElementsAre(0, 1));
}

TEST(LevelsOfSeveralChannels, AreWrittenByChannel) {
    Rig rig({{kMasterVolume, Level({1, 2})}});
    rig.control.SetControl(0);
    rig.control.SetValue(0, 500);
    rig.control.Commit();
    EXPECT_THAT(rig.At(kMasterVolume).values, ElementsAre(500, 2));
}

TEST(LibrarySwitches, AreOnWhereEveryChannelIs) {
    Rig rig({{kMasterMute, Switch({1, 0})}, {kMicBoost, Switch({0, 1})}, {kMonitorOff, Switch({1, 0})}});
    EXPECT_FALSE(rig.library.GetMasterMute(rig.status));
    EXPECT_FALSE(rig.library.GetMicBoost(rig.status));
    EXPECT_FALSE(rig.library.GetNoMonitor(rig.status));
    rig.library.SetMasterMute(true, rig.status);
    rig.library.SetMicBoost(true, rig.status);
    rig.library.SetNoMonitor(true, rig.status);
    EXPECT_THAT(rig.At(kMasterMute).values, ElementsAre(1, 1));
    EXPECT_THAT(rig.At(kMicBoost).values, ElementsAre(1, 1));
    EXPECT_THAT(rig.At(kMonitorOff).values, ElementsAre(1, 1));
    rig.library.SetMasterMute(false, rig.status);
    EXPECT_THAT(rig.At(kMasterMute).values, ElementsAre(0, 0));
}

TEST(LibrarySwitches, SetToWhatTheyAreAreNotWritten) {
    Rig rig({{kMasterMute, Switch({1, 0})}, {kMicMute, Switch({1, 1})}});
    VistaSound::SetVistaMixerState(rig.library, VistaSound::GetVistaMixerState(rig.library));
    EXPECT_EQ(rig.At(kMasterMute).writes + rig.At(kMicMute).writes, 0);
}

}  // namespace
}  // namespace sonavex
