#include <gmock/gmock.h>

#include "core/mixer/frmSoundVista.h"
#include "support/FakeMixerControl.h"
#include "support/FakePlaces.h"
#include "support/MemoryHardware.h"

namespace sonavex {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

// The speaker's controls are on a separate mixer, so that they differ from the library's master.
struct VistaRig : MemoryCard {
    FakeMixerControl output{
        {{FakeMixerControl::Level("Wave Volume", 1), FakeMixerControl::Switch("Wave Mute"),
          FakeMixerControl::Level("Master Volume", 32750), FakeMixerControl::Switch("Master Mute", 1)}}};
    SpeakerLocators speaker = VistaSound::SetUpVistaSoundControls(output);
    std::string outputName = "Speakers of a card";
    std::string inputName = "Microphone of a card";
    FakePlaces places{log};
    frmSoundVista form{{library, output, speaker, outputName, inputName, places}};
};

TEST(VistaRefresh, ShowsEveryValueOfTheCard) {
    VistaRig rig;
    rig.form.Show();
    const frmSoundVista& form = rig.form;
    EXPECT_EQ(form.sldSpeakers.Value(), 50);
    EXPECT_TRUE(form.chkSpeakerMute.Checked());
    EXPECT_EQ(form.sldMaster.Value(), 80);
    EXPECT_FALSE(form.chkMasterMute.Checked());
    EXPECT_EQ(form.sldLinePlay.Value(), 30);
    EXPECT_TRUE(form.chkLinePlay.Checked());
    EXPECT_EQ(form.sldMicPlay.Value(), 20);
    EXPECT_TRUE(form.chkMicPlay.Checked());
    EXPECT_EQ(form.sldMic.Value(), 70);
    EXPECT_FALSE(form.chkBoost.Checked());
    EXPECT_EQ(form.sldLine.Value(), 60);
    EXPECT_TRUE(form.chkNoMon.Checked());
    EXPECT_EQ(form.lblOutputMixer.Caption(), "Speakers of a card");
    EXPECT_EQ(form.MinimumEqDb, -12.0);
    EXPECT_EQ(form.MaximumEqDb, 12.0);
    EXPECT_EQ(form.Frame.Caption(), "Sound Controls");
    EXPECT_THAT(rig.Writes(), IsEmpty());
    EXPECT_THAT(rig.output.written, IsEmpty());
}

TEST(VistaRefresh, ReadsInItsOrder) {
    VistaRig rig;
    rig.form.RefreshVistaSoundControls();
    EXPECT_THAT(
        rig.log.Lines(),
        ElementsAre("Read Microphone/MicRecord", "Read Speakers/MasterVolume", "Read Speakers/MasterMute",
                    "Read Speakers/LineVolume", "Read Speakers/LineMute", "Read Speakers/MicVolume",
                    "Read Speakers/MicMute", "Read Microphone/MicRecord", "Read Microphone/MicBoost",
                    "Read Microphone/LineRecord", "Read Microphone/MonitorOff"));
}

class SpeakerReadings : public testing::TestWithParam<std::pair<int, int>> {};
INSTANTIATE_TEST_SUITE_P(Values, SpeakerReadings,
                         testing::Values(std::pair{0, 0}, std::pair{655, 1}, std::pair{32750, 50},
                                         std::pair{65500, 100}, std::pair{65535, 100}, std::pair{983, 2},
                                         std::pair{327, 0}, std::pair{328, 1}));

TEST_P(SpeakerReadings, AreShownInPercent) {
    VistaRig rig;
    rig.output.Find("Master Volume").values = {GetParam().first, 0};
    rig.form.RefreshVistaSoundControls();
    EXPECT_EQ(rig.form.sldSpeakers.Value(), GetParam().second);
}

class SpeakerMoves : public testing::TestWithParam<std::pair<int, int>> {};
INSTANTIATE_TEST_SUITE_P(Values, SpeakerMoves,
                         testing::Values(std::pair{0, 0}, std::pair{50, 32750}, std::pair{100, 65500}));

TEST_P(SpeakerMoves, WriteBothChannelsOfTheLastVolume) {
    VistaRig rig;
    rig.form.sldSpeakers.UserMoves(GetParam().first);
    const std::string value = std::to_string(GetParam().second);
    EXPECT_THAT(rig.output.written, ElementsAre("Master Volume/0=" + value, "Master Volume/1=" + value));
    EXPECT_EQ(rig.output.commits, 2);
    EXPECT_THAT(rig.Writes(), IsEmpty());
}

TEST(SpeakerMute, IsWrittenToTheFirstChannel) {
    VistaRig rig;
    rig.form.chkSpeakerMute.UserSets(true);
    rig.form.chkSpeakerMute.UserSets(false);
    EXPECT_THAT(rig.output.written, ElementsAre("Master Mute/0=1", "Master Mute/0=0"));
}

struct VistaSliderCase {
    Slider frmSoundVista::*slider;
    Label frmSoundVista::*label;
    MixerFunction control;
    const char* name;
};
class VistaSliders : public testing::TestWithParam<VistaSliderCase> {};
INSTANTIATE_TEST_SUITE_P(
    All, VistaSliders,
    testing::Values(VistaSliderCase{&frmSoundVista::sldMaster, nullptr, MixerFunction::kMasterVolume,
                                    "Speakers/MasterVolume 37 19"},
                    VistaSliderCase{&frmSoundVista::sldLinePlay, &frmSoundVista::lblLinePlay,
                                    MixerFunction::kLineVolume, "Speakers/LineVolume 37 37"},
                    VistaSliderCase{&frmSoundVista::sldMicPlay, &frmSoundVista::lblMicPlay,
                                    MixerFunction::kMicVolume, "Speakers/MicVolume 37 37"},
                    VistaSliderCase{&frmSoundVista::sldMic, &frmSoundVista::lblMicRecord,
                                    MixerFunction::kMicRecord, "Microphone/MicRecord 37 37"},
                    VistaSliderCase{&frmSoundVista::sldLine, &frmSoundVista::lblLineRecord,
                                    MixerFunction::kLineRecord, "Microphone/LineRecord 37 37"}));

TEST_P(VistaSliders, SetTheirLevel) {
    VistaRig rig;
    rig.form.Show();
    (rig.form.*GetParam().slider).UserMoves(37);
    EXPECT_THAT(rig.Writes(), ElementsAre("Write " + std::string(GetParam().name)));
    EXPECT_EQ((rig.form.*GetParam().slider).Value(), 37);
    EXPECT_EQ((rig.form.*GetParam().slider).Min(), 0);
    EXPECT_EQ((rig.form.*GetParam().slider).Max(), 100);
}

TEST_P(VistaSliders, AreDisabledWithTheirLabelAndEnabledAgain) {
    VistaRig rig;
    const MemoryHardware::Controls complete = rig.Side(GetParam().control);
    rig.Remove(GetParam().control);
    rig.form.RefreshVistaSoundControls();
    EXPECT_FALSE((rig.form.*GetParam().slider).Enabled());
    if (GetParam().label != nullptr) {
        EXPECT_FALSE((rig.form.*GetParam().label).Enabled());
    }
    rig.Side(GetParam().control) = complete;
    rig.form.RefreshVistaSoundControls();
    EXPECT_TRUE((rig.form.*GetParam().slider).Enabled());
    if (GetParam().label != nullptr) {
        EXPECT_TRUE((rig.form.*GetParam().label).Enabled());
    }
}

struct VistaBoxCase {
    CheckBox frmSoundVista::*box;
    MixerFunction control;
};
class VistaBoxes : public testing::TestWithParam<VistaBoxCase> {};
INSTANTIATE_TEST_SUITE_P(All, VistaBoxes,
                         testing::Values(VistaBoxCase{&frmSoundVista::chkMasterMute,
                                                      MixerFunction::kMasterMute},
                                         VistaBoxCase{&frmSoundVista::chkLinePlay, MixerFunction::kLineMute},
                                         VistaBoxCase{&frmSoundVista::chkMicPlay, MixerFunction::kMicMute},
                                         VistaBoxCase{&frmSoundVista::chkBoost, MixerFunction::kMicBoost},
                                         VistaBoxCase{&frmSoundVista::chkNoMon, MixerFunction::kMonitorOff}));

TEST_P(VistaBoxes, SetTheirState) {
    VistaRig rig;
    const auto count = rig.At(GetParam().control).values.size();
    rig.At(GetParam().control).values.assign(count, 0);
    (rig.form.*GetParam().box).UserSets(true);
    EXPECT_THAT(rig.At(GetParam().control).values, testing::Each(1));
    (rig.form.*GetParam().box).UserSets(false);
    EXPECT_THAT(rig.At(GetParam().control).values, testing::Each(0));
    EXPECT_EQ(rig.Writes().size(), 2U);
}

TEST_P(VistaBoxes, AreDisabledAndEnabledAgain) {
    VistaRig rig;
    const MemoryHardware::Controls complete = rig.Side(GetParam().control);
    rig.Remove(GetParam().control);
    rig.form.RefreshVistaSoundControls();
    EXPECT_FALSE((rig.form.*GetParam().box).Enabled());
    rig.Side(GetParam().control) = complete;
    rig.form.RefreshVistaSoundControls();
    EXPECT_TRUE((rig.form.*GetParam().box).Enabled());
}

TEST(InputDevice, WithAMicrophoneLevelIsShownThere) {
    VistaRig rig;
    rig.form.RefreshVistaSoundControls();
    EXPECT_EQ(rig.form.lblInputMixer.Caption(), "Microphone of a card");
    EXPECT_EQ(rig.form.lblLineInMixer.Caption(), "Not Selected");
}

TEST(InputDevice, WithoutAMicrophoneLevelIsShownAtLineIn) {
    VistaRig rig;
    rig.Remove(MixerFunction::kMicRecord);
    rig.form.RefreshVistaSoundControls();
    EXPECT_EQ(rig.form.lblInputMixer.Caption(), "Not Selected");
    EXPECT_EQ(rig.form.lblLineInMixer.Caption(), "Microphone of a card");
}

TEST(Master, ShowsTheLevelThatTheCardAccepted) {
    VistaRig rig;
    rig.form.Show();
    rig.At(MixerFunction::kMasterVolume).highest = 64;
    rig.form.sldMaster.UserMoves(90);
    EXPECT_EQ(rig.form.sldMaster.Value(), 64);
}

TEST(Master, IsMovedWhileTheSpeakersAreSilent) {
    VistaRig rig;
    rig.form.Show();
    rig.form.sldSpeakers.SetValue(0);
    rig.form.sldMaster.UserMoves(0);
    rig.form.sldMaster.UserMoves(10);
    EXPECT_THAT(rig.Writes(),
                ElementsAre("Write Speakers/MasterVolume 0 0", "Write Speakers/MasterVolume 10 10"));
    EXPECT_EQ(rig.form.sldMaster.Value(), 10);
}

TEST(Master, OfAMixerWithoutSpeakerControlIsMovedFreely) {
    VistaRig rig;
    rig.speaker = {};
    rig.form.Show();
    EXPECT_FALSE(rig.form.sldSpeakers.Enabled());
    EXPECT_FALSE(rig.form.lblSpeaker.Enabled());
    EXPECT_FALSE(rig.form.chkSpeakerMute.Enabled());
    rig.form.sldMaster.UserMoves(10);
    EXPECT_THAT(rig.Writes(), ElementsAre("Write Speakers/MasterVolume 10 5"));
    rig.form.sldSpeakers.UserMoves(10);
    rig.form.chkSpeakerMute.UserSets(true);
    EXPECT_THAT(rig.output.written, IsEmpty());
}

// Changes every control, as another mixer program would.
void ChangeEverything(VistaRig& rig) {
    rig.output.Find("Master Volume").values = {6550, 6550};
    rig.output.Find("Master Mute").values = {0, 0};
    rig.At(MixerFunction::kMasterVolume).values = {5, 5};
    rig.At(MixerFunction::kMasterMute).values = {1, 1};
    rig.At(MixerFunction::kLineVolume).values = {6, 6};
    rig.At(MixerFunction::kLineMute).values = {0, 0};
    rig.At(MixerFunction::kMicVolume).values = {7, 7};
    rig.At(MixerFunction::kMicMute).values = {0, 0};
    rig.At(MixerFunction::kMicRecord).values = {8, 8};
    rig.At(MixerFunction::kMicBoost).values = {1};
    rig.At(MixerFunction::kLineRecord).values = {9, 9};
    rig.At(MixerFunction::kMonitorOff).values = {0};
}

TEST(Sync, BringsEveryControlToThePresentValues) {
    VistaRig rig;
    rig.form.Show();
    ChangeEverything(rig);
    rig.form.cmdSync.Press();
    EXPECT_EQ(rig.form.sldSpeakers.Value(), 10);
    EXPECT_FALSE(rig.form.chkSpeakerMute.Checked());
    EXPECT_EQ(rig.form.sldMaster.Value(), 5);
    EXPECT_TRUE(rig.form.chkMasterMute.Checked());
    EXPECT_EQ(rig.form.sldLinePlay.Value(), 6);
    EXPECT_FALSE(rig.form.chkLinePlay.Checked());
    EXPECT_EQ(rig.form.sldMicPlay.Value(), 7);
    EXPECT_FALSE(rig.form.chkMicPlay.Checked());
    EXPECT_EQ(rig.form.sldMic.Value(), 8);
    EXPECT_TRUE(rig.form.chkBoost.Checked());
    EXPECT_EQ(rig.form.sldLine.Value(), 9);
    EXPECT_FALSE(rig.form.chkNoMon.Checked());
    EXPECT_THAT(rig.Writes(), IsEmpty());
    EXPECT_THAT(rig.output.written, IsEmpty());
}

// The speaker's controls are on different destinations and lines.
TEST(SpeakerSelectors, ReachOtherDestinationsAndLines) {
    VistaRig rig;
    rig.output = FakeMixerControl(
        {{FakeMixerControl::Level("Wave Volume", 1, 1), FakeMixerControl::Switch("Wave Mute", 1, 1)},
         {FakeMixerControl::Switch("Speaker Mute", 1, 4), FakeMixerControl::Level("Bass", 2, 5)},
         {FakeMixerControl::Level("Line", 3, 6), FakeMixerControl::Level("Speaker Volume", 32750, 7)}});
    rig.speaker = VistaSound::SetUpVistaSoundControls(rig.output);
    rig.form.Show();
    EXPECT_EQ(rig.form.sldSpeakers.Value(), 50);
    EXPECT_TRUE(rig.form.chkSpeakerMute.Checked());
    rig.form.sldSpeakers.UserMoves(10);
    EXPECT_EQ(rig.output.Destination(), 2);
    EXPECT_EQ(rig.output.Control(), 1);
    EXPECT_EQ(rig.output.Line(), 7);
    rig.form.chkSpeakerMute.UserSets(false);
    EXPECT_EQ(rig.output.Destination(), 1);
    EXPECT_EQ(rig.output.Control(), 0);
    EXPECT_EQ(rig.output.Line(), 4);
    EXPECT_THAT(rig.output.written,
                ElementsAre("Speaker Volume/0=6550", "Speaker Volume/1=6550", "Speaker Mute/0=0"));
}

TEST(VistaForm, KeepsItsPlaceShowsTheTonesAndCloses) {
    VistaRig rig;
    int tones = 0;
    rig.form.ShowTone = [&] { ++tones; };
    rig.form.Show();
    rig.form.cmdTone.Press();
    rig.form.Command1.Press();
    EXPECT_EQ(tones, 1);
    EXPECT_FALSE(rig.form.Loaded());
    EXPECT_EQ(rig.log.Count("Restore"), 1U);
    EXPECT_EQ(rig.log.Lines().back(), "Store frmSoundVista");
}

TEST(VistaForm, ReadsTheCardWheneverItComesToTheFront) {
    VistaRig rig;
    rig.form.Activate();
    EXPECT_THAT(rig.log.Lines(), IsEmpty()) << "not loaded";
    rig.form.Show();
    rig.At(MixerFunction::kMasterVolume).values = {33, 33};
    rig.form.Activate();
    EXPECT_EQ(rig.form.sldMaster.Value(), 33);
}

}  // namespace
}  // namespace sonavex
