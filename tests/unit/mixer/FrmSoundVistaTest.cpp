#include <gmock/gmock.h>

#include "core/mixer/frmSoundVista.h"
#include "support/Errors.h"
#include "support/FakeMixerControl.h"
#include "support/FakePlaces.h"
#include "support/MemoryVista.h"

namespace sonavex {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

struct VistaRig {
    CallLog log;
    MemoryVista card{log};
    FakeMixerControl output{
        {{FakeMixerControl::Level("Wave Volume", 1), FakeMixerControl::Switch("Wave Mute"),
          FakeMixerControl::Level("Master Volume", 32750), FakeMixerControl::Switch("Master Mute", 1)}}};
    SpeakerLocators speaker = VistaSound::SetUpVistaSoundControls(output);
    std::string outputName = "Speakers of a card";
    std::string inputName = "Microphone of a card";
    FakePlaces places{log};
    frmSoundVista form{{card, output, speaker, outputName, inputName}, places};

    // What the card was asked to change.
    std::vector<std::string> Sets() const {
        std::vector<std::string> sets;
        for (const std::string& line : log.Lines())
            if (line.starts_with("Set")) sets.push_back(line);
        return sets;
    }
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
    EXPECT_THAT(rig.Sets(), IsEmpty());
    EXPECT_THAT(rig.output.written, IsEmpty());
}

TEST(VistaRefresh, AsksInItsOrder) {
    VistaRig rig;
    rig.form.RefreshVistaSoundControls();
    EXPECT_THAT(rig.log.Lines(), ElementsAre("GetMicRecordVolume", "GetMasterVolume", "GetMasterMute",
                                             "GetLinePlayBack", "GetLinePlayBackMute", "GetMicPlayBack",
                                             "GetMicPlayBackMute", "GetMicRecordVolume", "GetMicBoost",
                                             "GetLineRecordVolume", "GetNoMonitor", "GetEQRange"));
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
    EXPECT_THAT(rig.Sets(), IsEmpty());
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
    const char* control;
};
class VistaSliders : public testing::TestWithParam<VistaSliderCase> {};
INSTANTIATE_TEST_SUITE_P(
    All, VistaSliders,
    testing::Values(VistaSliderCase{&frmSoundVista::sldMaster, nullptr, "MasterVolume"},
                    VistaSliderCase{&frmSoundVista::sldLinePlay, &frmSoundVista::lblLinePlay, "LinePlayBack"},
                    VistaSliderCase{&frmSoundVista::sldMicPlay, &frmSoundVista::lblMicPlay, "MicPlayBack"},
                    VistaSliderCase{&frmSoundVista::sldMic, &frmSoundVista::lblMicRecord, "MicRecordVolume"},
                    VistaSliderCase{&frmSoundVista::sldLine, &frmSoundVista::lblLineRecord,
                                    "LineRecordVolume"}));

TEST_P(VistaSliders, SetTheirLevel) {
    VistaRig rig;
    rig.form.Show();
    (rig.form.*GetParam().slider).UserMoves(37);
    EXPECT_THAT(rig.Sets(), ElementsAre("Set" + std::string(GetParam().control) + " 37"));
    EXPECT_EQ((rig.form.*GetParam().slider).Value(), 37);
    EXPECT_EQ((rig.form.*GetParam().slider).Min(), 0);
    EXPECT_EQ((rig.form.*GetParam().slider).Max(), 100);
}

TEST_P(VistaSliders, AreGreyedWithTheirLabelAndComeBack) {
    VistaRig rig;
    rig.card.missing = {GetParam().control};
    rig.form.RefreshVistaSoundControls();
    EXPECT_FALSE((rig.form.*GetParam().slider).Enabled());
    if (GetParam().label != nullptr) {
        EXPECT_FALSE((rig.form.*GetParam().label).Enabled());
    }
    rig.card.missing.clear();
    rig.form.RefreshVistaSoundControls();
    EXPECT_TRUE((rig.form.*GetParam().slider).Enabled());
    if (GetParam().label != nullptr) {
        EXPECT_TRUE((rig.form.*GetParam().label).Enabled());
    }
}

struct VistaBoxCase {
    CheckBox frmSoundVista::*box;
    const char* control;
};
class VistaBoxes : public testing::TestWithParam<VistaBoxCase> {};
INSTANTIATE_TEST_SUITE_P(All, VistaBoxes,
                         testing::Values(VistaBoxCase{&frmSoundVista::chkMasterMute, "MasterMute"},
                                         VistaBoxCase{&frmSoundVista::chkLinePlay, "LinePlayBackMute"},
                                         VistaBoxCase{&frmSoundVista::chkMicPlay, "MicPlayBackMute"},
                                         VistaBoxCase{&frmSoundVista::chkBoost, "MicBoost"},
                                         VistaBoxCase{&frmSoundVista::chkNoMon, "NoMonitor"}));

TEST_P(VistaBoxes, SetTheirState) {
    VistaRig rig;
    const std::string set = "Set" + std::string(GetParam().control);
    (rig.form.*GetParam().box).UserSets(true);
    (rig.form.*GetParam().box).UserSets(false);
    EXPECT_THAT(rig.Sets(), ElementsAre(set + " True", set + " False"));
}

TEST_P(VistaBoxes, AreGreyedAndComeBack) {
    VistaRig rig;
    rig.card.missing = {GetParam().control};
    rig.form.RefreshVistaSoundControls();
    EXPECT_FALSE((rig.form.*GetParam().box).Enabled());
    rig.card.missing.clear();
    rig.form.RefreshVistaSoundControls();
    EXPECT_TRUE((rig.form.*GetParam().box).Enabled());
}

TEST(InputDevice, WithAMicrophonesLevelStandsThere) {
    VistaRig rig;
    rig.form.RefreshVistaSoundControls();
    EXPECT_EQ(rig.form.lblInputMixer.Caption(), "Microphone of a card");
    EXPECT_EQ(rig.form.lblLineInMixer.Caption(), "Not Selected");
}

TEST(InputDevice, WithoutOneStandsBesideLineIn) {
    VistaRig rig;
    rig.card.missing = {"MicRecordVolume"};
    rig.form.RefreshVistaSoundControls();
    EXPECT_EQ(rig.form.lblInputMixer.Caption(), "Not Selected");
    EXPECT_EQ(rig.form.lblLineInMixer.Caption(), "Microphone of a card");
}

TEST(Master, ShowsTheLevelThatTheCardTook) {
    VistaRig rig;
    rig.form.Show();
    rig.card.highestMaster = 64;
    rig.form.sldMaster.UserMoves(90);
    EXPECT_EQ(rig.form.sldMaster.Value(), 64);
}

TEST(Master, AboveSilentSpeakersIsADivisionByZero) {
    VistaRig rig;
    rig.form.Show();
    rig.form.sldSpeakers.SetValue(0);
    EXPECT_EQ(ErrorOf([&] {
                  rig.form.sldMaster.UserMoves(10);
                  return 0;
              }),
              11);
    EXPECT_THAT(rig.Sets(), IsEmpty()) << "raised before the card is asked";
    rig.form.sldMaster.UserMoves(0);
    EXPECT_THAT(rig.Sets(), ElementsAre("SetMasterVolume 0"));
}

TEST(Master, OfAMixerWithoutSpeakerControlIsMovedFreely) {
    VistaRig rig;
    rig.speaker = {};
    rig.form.Show();
    EXPECT_FALSE(rig.form.sldSpeakers.Enabled());
    EXPECT_FALSE(rig.form.lblSpeaker.Enabled());
    EXPECT_FALSE(rig.form.chkSpeakerMute.Enabled());
    rig.form.sldMaster.UserMoves(10);
    EXPECT_THAT(rig.Sets(), ElementsAre("SetMasterVolume 10"));
    rig.form.sldSpeakers.UserMoves(10);
    rig.form.chkSpeakerMute.UserSets(true);
    EXPECT_THAT(rig.output.written, IsEmpty());
}

// As another mixer program: no control stays as it was.
void ChangeEverything(VistaRig& rig) {
    rig.output.Find("Master Volume").values = {6550, 6550};
    rig.output.Find("Master Mute").values = {0, 0};
    rig.card.masterVolume = 5;
    rig.card.masterMute = true;
    rig.card.linePlayBack = 6;
    rig.card.linePlayBackMute = false;
    rig.card.micPlayBack = 7;
    rig.card.micPlayBackMute = false;
    rig.card.micRecordVolume = 8;
    rig.card.micBoost = true;
    rig.card.lineRecordVolume = 9;
    rig.card.noMonitor = false;
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
    EXPECT_THAT(rig.Sets(), IsEmpty());
    EXPECT_THAT(rig.output.written, IsEmpty());
}

// The speaker's controls on the last of three destinations, on lines of their own.
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
    rig.card.masterVolume = 33;
    rig.form.Activate();
    EXPECT_EQ(rig.form.sldMaster.Value(), 33);
}

}  // namespace
}  // namespace sonavex
