// The mixers during a run of the main form: start, other devices, end.

#include <gmock/gmock.h>

#include "core/mixer/LegacyMixerState.h"
#include "core/support/EndProgram.h"
#include "support/FakeSoundSystem.h"
#include "support/MixerWorld.h"

namespace sonavex {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

// Two cards per direction; the library's card in memory represents the bound one.
struct MixedForm : MixerWorld {
    explicit MixedForm(std::int32_t osMajorVersion) : MixerWorld(osMajorVersion) {
        store.Save("SoundCard", "Output", "out-a");
        store.Save("SoundCard", "Input", "in-a");
        store.Save("Settings", "VistaSoundCard", kSavedVistaLine);
        hardware.playback.clear();
        hardware.capture.clear();
        for (const SoundDeviceInfo& device : sound.playbackDevices)
            hardware.playback[device.description] = Playback();
        for (const SoundDeviceInfo& device : sound.captureDevices)
            hardware.capture[device.description] = Capture();
        MasterOf("Card B") = {55, 54};
    }
    std::vector<std::int32_t>& MasterOf(const std::string& device) {
        return hardware.playback.at(device).at(MixerFunction::kMasterVolume).values;
    }
    std::string Line() { return VistaSound::GetVistaMixerState(mixers.Library); }
    void ChooseTheOtherOutput() {
        form.ShowDeviceDialog = [this] {
            loadedMeanwhile = mixers.SoundVista.Loaded() || mixers.Tone.Loaded() || mixers.Sound.Loaded();
            frmDevices devices(form.DevicesNeeds(files, help), form.DevicesLabels());
            devices.Form_Load();
            devices.cmbOutputMixer.UserSelects(1);
            devices.cmdOkay.Press();
        };
        form.mnuSelectCard.UserChooses();
    }

    FakeSoundSystem sound{log};
    SoundCardMixers mixers{Needs()};
    frmMain form{On(sound, errorLog, mixers)};
    bool loadedMeanwhile = true;
};

TEST(MixersInTheMainForm, AreOpenedCapturedAndSetByTheStart) {
    MixedForm world(6);
    world.form.Form_Load();
    EXPECT_EQ(world.mixers.InitialVistaMixerState, kMemoryCardLine);
    EXPECT_EQ(world.Line(), kSavedVistaLine);
    EXPECT_THAT(world.MasterOf("Card A"), ElementsAre(11, 6));
    EXPECT_EQ(world.mixers.Speaker.SpeakerVolumeControl, 4) << "the last volume";
    EXPECT_NE(world.journal.text, "");
}

TEST(MixersInTheMainForm, OpenWithTheirStateAtAnExtendedRate) {
    MixedForm world(10);
    world.sound.extendedRates = {{"out-a", {192000}}, {"in-a", {192000}}};
    world.store.Save("Face", "ExtendedSampleRate", "192000");
    world.form.Form_Load();
    ASSERT_EQ(world.form.Instrument.Shared.SampleRate, 192000);
    world.form.mnuSoundCard.UserChooses();
    EXPECT_TRUE(world.mixers.SoundVista.Loaded());
    EXPECT_EQ(world.Line(), kSavedVistaLine);
    EXPECT_EQ(world.mixers.SoundVista.sldMaster.Value(), 11);
    EXPECT_EQ(world.mixers.SoundVista.sldLinePlay.Value(), 12);
}

TEST(MixersInTheMainForm, AreSavedAndRestoredByTheShutdown) {
    MixedForm world(10);
    world.form.Form_Load();
    world.MasterOf("Card A") = {77, 77};
    world.form.cmdExit.Press();
    EXPECT_EQ(world.store.Get("Settings", "VistaSoundCard", ""),
              "77,True,12,False,13,False,True,False,1,2,3,14,15,");
    EXPECT_THAT(world.MasterOf("Card A"), ElementsAre(80, 40));
    EXPECT_EQ(world.journal.text, "");
    world.mixers.ReopenSoundCard("Card A", "Line A");
    EXPECT_EQ(world.Line(), kMemoryCardLine);
}

TEST(MixersInTheMainForm, AreRestoredByAnImmediateEnd) {
    MixedForm world(10);
    world.form.Form_Load();
    world.MasterOf("Card A") = {77, 77};
    world.form.ShutDown(EndProgram{1, true});
    EXPECT_EQ(world.store.Get("Settings", "VistaSoundCard", ""), kSavedVistaLine);
    EXPECT_THAT(world.MasterOf("Card A"), ElementsAre(80, 40));
    world.mixers.ReopenSoundCard("Card A", "Line A");
    EXPECT_EQ(world.Line(), kMemoryCardLine);
}

TEST(MixersInTheMainForm, ShowTheCardThatCameBackWithARestart) {
    MixedForm world(10);
    world.form.Form_Load();
    world.mixers.ShowSoundCard();
    world.MasterOf("Card A") = {44, 44};
    world.hardware.playback.at("Card A").erase(MixerFunction::kLineVolume);
    world.form.Instrument.Watch.OnRestarted();
    EXPECT_EQ(world.mixers.SoundVista.sldMaster.Value(), 44);
    EXPECT_FALSE(world.mixers.SoundVista.sldLinePlay.Enabled());
}

TEST(MixersInTheMainForm, ShowTheGenerationsDialogFromTheMenu) {
    for (const std::int32_t generation : {5, 6, 10}) {
        MixedForm world(generation);
        world.form.Form_Load();
        world.form.mnuSoundCard.UserChooses();
        EXPECT_EQ(world.mixers.SoundVista.Loaded(), generation >= 6) << generation;
        EXPECT_EQ(world.mixers.Sound.Loaded(), generation < 6) << generation;
        world.form.Unload();
        EXPECT_FALSE(world.mixers.SoundVista.Loaded());
        EXPECT_FALSE(world.mixers.Sound.Loaded());
    }
}

TEST(MixersInTheMainForm, FollowAnotherSelectionAndRestoreTheFormerCard) {
    MixedForm world(10);
    world.form.Form_Load();
    world.form.mnuSoundCard.UserChooses();
    world.mixers.SoundVista.cmdTone.Press();
    world.MasterOf("Card A") = {1, 1};
    world.ChooseTheOtherOutput();
    EXPECT_FALSE(world.loadedMeanwhile) << "the dialogs are unloaded before";
    EXPECT_THAT(world.MasterOf("Card A"), ElementsAre(80, 40));
    EXPECT_EQ(world.Line(), "55,False,30,True,20,True,True,False,-1.5,0,6,14,15,") << "Card B and Line A";
    world.MasterOf("Card B") = {2, 2};
    world.form.Unload();
    EXPECT_THAT(world.MasterOf("Card B"), ElementsAre(55, 54));
    EXPECT_THAT(world.MasterOf("Card A"), ElementsAre(80, 40));
    EXPECT_EQ(world.journal.text, "");
}

TEST(MixersInTheMainForm, OfTheOlderGenerationDoNotOpenTheLibrary) {
    MixedForm world(5);
    world.store.Save("Settings", "OutSoundCard", "0,Master Volume,8,9,");
    world.form.Form_Load();
    EXPECT_EQ(GetLegacyMixerState(world.mixers.OutputMixer), "0,Master Volume,8,9,0,Master Mute,0,0,");
    EXPECT_EQ(world.mixers.Legacy.MixerLocators.MasterVolume.Destination, 0);
    world.ChooseTheOtherOutput();
    EXPECT_EQ(GetLegacyMixerState(world.mixers.OutputMixer), "0,Master Volume,55,54,0,Master Mute,0,0,");
    std::int32_t status = 0;
    static_cast<void>(world.mixers.Library.GetMasterVolume(status));
    EXPECT_NE(status, 0);
    EXPECT_EQ(world.mixers.InitialVistaMixerState, "");
    world.form.Unload();
    EXPECT_THAT(world.MasterOf("Card B"), ElementsAre(55, 54));
}

class BadSavedLines : public testing::TestWithParam<std::string> {};
INSTANTIATE_TEST_SUITE_P(Lines, BadSavedLines,
                         testing::Values("50,True", "50,loud,", "50,,", std::string(10000, 'n'),
                                         std::string(10000, '\xff') + ",", "50,True,99999999999,"));

TEST_P(BadSavedLines, DoNotPreventTheStart) {
    MixedForm world(10);
    world.store.Save("Settings", "VistaSoundCard", GetParam());
    world.form.Form_Load();
    const auto messages = world.log.Of("Message");
    ASSERT_EQ(messages.size(), 1U);
    EXPECT_THAT(messages[0], HasSubstr("could not be applied completely"));
    EXPECT_GE(world.mixers.Speaker.SpeakerVolumeControl, 0);
    EXPECT_TRUE(world.form.Instrument.Shared.EventsReady) << "the stream runs";
    world.form.Unload();
    world.mixers.ReopenSoundCard("Card A", "Line A");
    EXPECT_EQ(world.Line(), kMemoryCardLine);
}

}  // namespace
}  // namespace sonavex
