// The mixers over a run of the main form: from the start over other devices to the end.

#include <gmock/gmock.h>

#include "core/mixer/LegacyMixerState.h"
#include "support/FakeSoundSystem.h"
#include "support/MixerWorld.h"
#include "support/ReportFakes.h"

namespace sonavex {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr const char* kOwnLine = "80,False,30,True,20,True,False,True,-1.5,0,6,70,60,";
constexpr const char* kProgramLine = "11,True,12,False,13,False,True,False,1,2,3,14,15,";
constexpr const char* kOwnLevels = "Master\t10 20\n";

// Two cards of each direction; the library's card in memory stands for whatever is bound.
struct MixedForm : MixerWorld {
    explicit MixedForm(std::int32_t osMajorVersion) : MixerWorld(osMajorVersion) {
        store.Save("SoundCard", "Output", "out-a");
        store.Save("SoundCard", "Input", "in-a");
        store.Save("Settings", "VistaSoundCard", kProgramLine);
        for (const SoundDeviceInfo& device : sound.playbackDevices)
            levels.devices["playback " + device.description] = kOwnLevels;
        for (const SoundDeviceInfo& device : sound.captureDevices)
            levels.devices["capture " + device.description] = "Capture\t5\n";
        output.devices[0].name = NameOf(sound.playbackDevices, "out-a");
        input.devices[1].name = NameOf(sound.captureDevices, "in-a");
    }
    static std::string NameOf(const SoundDeviceList& devices, const std::string& identifier) {
        for (const SoundDeviceInfo& device : devices)
            if (device.identifier == identifier) return device.description;
        return {};
    }
    std::string& LevelsOf(const std::string& identifier) {
        return levels.devices.at("playback " + NameOf(sound.playbackDevices, identifier));
    }
    void ChooseTheOtherOutput() {
        form.ShowDeviceDialog = [this] {
            loadedMeanwhile = mixers.SoundVista.Loaded() || mixers.Tone.Loaded() || mixers.Sound.Loaded();
            frmDevices devices(form.DevicesEnvironment(files, help), form.DevicesControls());
            devices.Form_Load();
            devices.cmbOutputMixer.UserSelects(1);
            devices.cmdOkay.Press();
        };
        form.mnuSelectCard.UserChooses();
    }

    FakeSoundSystem sound{log};
    VirtualEventLoop loop;
    RecordingErrorLog errorLog{log};
    MemoryDesktopFiles files{log};
    RecordingHelp help{log};
    SoundCardMixers mixers{World()};
    frmMain form{{store, sound, loop, dialogs, desktop, errorLog, mixers}};
    bool loadedMeanwhile = true;
};

TEST(MixersInTheMainForm, AreOpenedCapturedAndSetByTheStart) {
    MixedForm world(6);
    world.form.Form_Load();
    EXPECT_THAT(world.CallsWith("OpenSoundCard"), ElementsAre("OpenSoundCard Card A|Line A|"));
    EXPECT_EQ(world.mixers.InitialVistaMixerState, kOwnLine);
    EXPECT_EQ(VistaSound::GetVistaMixerState(world.card), kProgramLine);
    EXPECT_EQ(world.mixers.Speaker.SpeakerVolumeControl, 0);
    EXPECT_NE(world.journal.text, "");
}

TEST(MixersInTheMainForm, AreSavedAndGivenBackByTheShutdown) {
    MixedForm world(10);
    world.form.Form_Load();
    world.card.masterVolume = 77;
    world.LevelsOf("out-a") = "Master\t1 1\n";
    world.form.cmdExit.Press();
    EXPECT_EQ(world.store.Get("Settings", "VistaSoundCard", ""),
              "77,True,12,False,13,False,True,False,1,2,3,14,15,");
    EXPECT_EQ(VistaSound::GetVistaMixerState(world.card), kOwnLine);
    EXPECT_EQ(world.LevelsOf("out-a"), kOwnLevels);
    EXPECT_EQ(world.journal.text, "");
}

TEST(MixersInTheMainForm, AreGivenBackByAnEndAtOnce) {
    MixedForm world(10);
    world.form.Form_Load();
    world.card.masterVolume = 77;
    world.LevelsOf("out-a") = "Master\t1 1\n";
    world.form.ShutDown(EndProgram{1, true});
    EXPECT_EQ(world.store.Get("Settings", "VistaSoundCard", ""), kProgramLine);
    EXPECT_EQ(VistaSound::GetVistaMixerState(world.card), kOwnLine);
    EXPECT_EQ(world.LevelsOf("out-a"), kOwnLevels);
}

TEST(MixersInTheMainForm, ShowTheCardThatCameBackWithARestart) {
    MixedForm world(10);
    world.form.Form_Load();
    world.mixers.ShowSoundCard();
    world.card.masterVolume = 44;
    world.card.missing = {"LinePlayBack"};
    world.form.Watch.OnRestarted();
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

TEST(MixersInTheMainForm, FollowAnotherSelectionAndGiveTheFormerCardBack) {
    MixedForm world(10);
    world.form.Form_Load();
    world.form.mnuSoundCard.UserChooses();
    world.mixers.SoundVista.cmdTone.Press();
    world.LevelsOf("out-a") = "Master\t1 1\n";
    world.log.Clear();
    world.ChooseTheOtherOutput();
    EXPECT_FALSE(world.loadedMeanwhile) << "the dialogs are unloaded before";
    EXPECT_EQ(world.LevelsOf("out-a"), kOwnLevels);
    EXPECT_THAT(world.CallsWith("OpenSoundCard"), ElementsAre("OpenSoundCard Card B|Line A|"));
    world.LevelsOf("out-b") = "Master\t2 2\n";
    world.form.Unload();
    EXPECT_EQ(world.LevelsOf("out-b"), kOwnLevels);
    EXPECT_EQ(world.LevelsOf("out-a"), kOwnLevels);
    EXPECT_EQ(world.journal.text, "");
}

TEST(MixersInTheMainForm, OfTheOlderGenerationAskNothingOfTheLibrary) {
    MixedForm world(5);
    world.store.Save("Settings", "OutSoundCard", "0,Master Volume,8,9,");
    world.form.Form_Load();
    EXPECT_EQ(GetLegacyMixerState(world.output), "0,Master Volume,8,9,0,Master Mute,0,0,");
    EXPECT_EQ(world.mixers.Legacy.MixerLocators.MasterVolume.Destination, 0);
    world.ChooseTheOtherOutput();
    world.form.Unload();
    for (const char* call : {"OpenSoundCard", "CloseSoundCard", "GetMasterVolume", "SetMasterVolume"})
        EXPECT_THAT(world.CallsWith(call), IsEmpty());
}

class BadSavedLines : public testing::TestWithParam<std::string> {};
INSTANTIATE_TEST_SUITE_P(Lines, BadSavedLines,
                         testing::Values("50,True", "50,loud,", "50,,", std::string(10000, 'n'),
                                         std::string(10000, '\xff') + ",", "50,True,99999999999,"));

TEST_P(BadSavedLines, DoNotKeepTheInstrumentFromRunning) {
    MixedForm world(10);
    world.store.Save("Settings", "VistaSoundCard", GetParam());
    world.form.Form_Load();
    const auto messages = world.log.Of("Message");
    ASSERT_EQ(messages.size(), 1U);
    EXPECT_THAT(messages[0], HasSubstr("could not be applied completely"));
    EXPECT_EQ(world.mixers.Speaker.SpeakerVolumeControl, 0);
    EXPECT_TRUE(world.form.Shared.EventsReady) << "the stream runs";
    world.form.Unload();
    EXPECT_EQ(VistaSound::GetVistaMixerState(world.card), kOwnLine);
}

}  // namespace
}  // namespace sonavex
