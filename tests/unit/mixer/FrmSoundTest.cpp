#include <gmock/gmock.h>

#include "core/mixer/frmSound.h"
#include "support/FakeMixerControl.h"
#include "support/FakePlaces.h"

namespace sonavex {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

struct Rig {
    FakeMixerControl output{
        {{FakeMixerControl::Level("Wave Volume", 0), FakeMixerControl::Switch("Wave Mute"),
          FakeMixerControl::Level("Line Volume", 0), FakeMixerControl::Switch("Line Mute"),
          FakeMixerControl::Level("Microphone Volume", 0), FakeMixerControl::Switch("Microphone Mute"),
          FakeMixerControl::Level("Master Volume", 0), FakeMixerControl::Switch("Master Mute")}}};
    FakeMixerControl input{
        {{FakeMixerControl::Level("Microphone Volume", 0), FakeMixerControl::Level("Line Volume", 0),
          FakeMixerControl::Switch("Microphone Boost"), FakeMixerControl::Switch("Monitor Off"),
          FakeMixerControl::Switch("Microphone Select", 1), FakeMixerControl::Switch("Line Select", 0)}}};
    LegacyMixer mixer{output, input};
    CallLog log;
    FakePlaces places{log};
    frmSound form{mixer, places};
    Rig() { SetUpSoundControls(mixer); }
};

struct SliderCase {
    const char* control;
    bool onOutput;
    Slider frmSound::*slider;
    MixerLocator MixerLocatorTable::*entry;
};
class Sliders : public testing::TestWithParam<SliderCase> {};
INSTANTIATE_TEST_SUITE_P(
    All, Sliders,
    testing::Values(SliderCase{"Master Volume", true, &frmSound::MasterOut, &MixerLocatorTable::MasterVolume},
                    SliderCase{"Wave Volume", true, &frmSound::WaveOut, &MixerLocatorTable::WaveVolume},
                    SliderCase{"Line Volume", true, &frmSound::LineOut, &MixerLocatorTable::LineVolume},
                    SliderCase{"Microphone Volume", true, &frmSound::playMic, &MixerLocatorTable::MicVolume},
                    SliderCase{"Microphone Volume", false, &frmSound::MicIn, &MixerLocatorTable::MicRecord},
                    SliderCase{"Line Volume", false, &frmSound::LineIn, &MixerLocatorTable::LineRecord}));

TEST_P(Sliders, WriteTheirLevelToBothChannelsOfTheirControl) {
    for (const auto& [level, value] : {std::pair{0, 0}, std::pair{10, 6554}, std::pair{30, 19660},
                                       std::pair{50, 32768}, std::pair{90, 58982}, std::pair{100, 65535}}) {
        Rig rig;
        (rig.form.*GetParam().slider).UserMoves(-level);
        const std::string name = GetParam().control;
        FakeMixerControl& mixer = GetParam().onOutput ? rig.output : rig.input;
        EXPECT_THAT(mixer.written,
                    ElementsAre(name + "/0=" + std::to_string(value), name + "/1=" + std::to_string(value)));
        EXPECT_EQ(mixer.commits, 1);
        EXPECT_EQ((rig.mixer.MixerLocators.*GetParam().entry).Value, static_cast<float>(level));
        EXPECT_TRUE(rig.mixer.MixerChanged);
        EXPECT_THAT((GetParam().onOutput ? rig.input : rig.output).written, IsEmpty());
    }
}

TEST_P(Sliders, ShowTheCardsLevelNegated) {
    for (const auto& [value, level] :
         {std::pair{0, 0}, std::pair{6554, -10}, std::pair{32768, -50}, std::pair{65535, -100}}) {
        Rig rig;
        FakeMixerControl& mixer = GetParam().onOutput ? rig.output : rig.input;
        mixer.Find(GetParam().control).values = {value, value};
        rig.form.RefreshSoundControls();
        EXPECT_EQ((rig.form.*GetParam().slider).Value(), level);
        EXPECT_TRUE((rig.form.*GetParam().slider).Enabled());
        EXPECT_FALSE(rig.mixer.MixerChanged);
        EXPECT_THAT(mixer.written, IsEmpty());
    }
}

TEST_P(Sliders, RunFromMinusHundredToZero) {
    Rig rig;
    EXPECT_EQ((rig.form.*GetParam().slider).Min(), -100);
    EXPECT_EQ((rig.form.*GetParam().slider).Max(), 0);
}

struct BoxCase {
    const char* control;
    bool onOutput;
    int channels;
    CheckBox frmSound::*box;
};
class Boxes : public testing::TestWithParam<BoxCase> {};
INSTANTIATE_TEST_SUITE_P(All, Boxes,
                         testing::Values(BoxCase{"Master Mute", true, 2, &frmSound::MasterMute},
                                         BoxCase{"Wave Mute", true, 2, &frmSound::WaveMute},
                                         BoxCase{"Line Mute", true, 2, &frmSound::LinePlayMute},
                                         BoxCase{"Microphone Mute", true, 2, &frmSound::micPlayMute},
                                         BoxCase{"Microphone Boost", false, 1, &frmSound::chk20Db},
                                         BoxCase{"Monitor Off", false, 1, &frmSound::chkNoMon}));

TEST_P(Boxes, WriteTheirValueToTheirChannels) {
    for (const bool checked : {true, false}) {
        Rig rig;
        (rig.form.*GetParam().box).UserSets(checked);
        std::vector<std::string> expected;
        for (int channel = 0; channel < GetParam().channels; ++channel)
            expected.push_back(GetParam().control + std::string("/") + std::to_string(channel) +
                               (checked ? "=1" : "=0"));
        FakeMixerControl& mixer = GetParam().onOutput ? rig.output : rig.input;
        EXPECT_EQ(mixer.written, expected);
        EXPECT_EQ(mixer.commits, 1);
        EXPECT_TRUE(rig.mixer.MixerChanged);
    }
}

TEST_P(Boxes, ShowTheCardsState) {
    Rig rig;
    FakeMixerControl& mixer = GetParam().onOutput ? rig.output : rig.input;
    mixer.Find(GetParam().control).values = {1, 1};
    rig.form.RefreshSoundControls();
    EXPECT_TRUE((rig.form.*GetParam().box).Checked());
    mixer.Find(GetParam().control).values = {0, 0};
    rig.form.RefreshSoundControls();
    EXPECT_FALSE((rig.form.*GetParam().box).Checked());
}

TEST(RecordSource, SelectingLineLeavesTheMicrophone) {
    Rig rig;
    rig.form.RefreshSoundControls();
    ASSERT_TRUE(rig.form.chkmic.Value());
    rig.form.chkline.UserSelects();
    EXPECT_THAT(rig.input.written, ElementsAre("Line Select/0=1"));
    EXPECT_EQ(rig.mixer.MixerLocators.LineSource.Value, 1.0F);
    EXPECT_EQ(rig.mixer.MixerLocators.MicSource.Value, 0.0F);
    EXPECT_TRUE(rig.form.chkline.Value());
    EXPECT_FALSE(rig.form.chkmic.Value());
    EXPECT_TRUE(rig.mixer.MixerChanged);
}

TEST(RecordSource, SelectingTheMicrophoneLeavesLine) {
    Rig rig;
    rig.form.chkline.UserSelects();
    rig.input.written.clear();
    rig.form.chkmic.UserSelects();
    EXPECT_THAT(rig.input.written, ElementsAre("Microphone Select/0=1"));
    EXPECT_EQ(rig.mixer.MixerLocators.MicSource.Value, 1.0F);
    EXPECT_EQ(rig.mixer.MixerLocators.LineSource.Value, 0.0F);
    EXPECT_FALSE(rig.form.chkline.Value());
}

TEST(RecordSource, SelectedAgainWritesNothing) {
    Rig rig;
    rig.form.RefreshSoundControls();
    rig.form.chkmic.UserSelects();
    EXPECT_THAT(rig.input.written, IsEmpty());
    EXPECT_FALSE(rig.mixer.MixerChanged);
}

TEST(SoundForm, ShowsTheMixersNames) {
    Rig rig;
    rig.output.devices[0].name = "Speakers";
    rig.input.devices[0].name = "Line In";
    rig.form.Show();
    EXPECT_EQ(rig.form.lblPlay.Caption(), "Speakers");
    EXPECT_EQ(rig.form.lblRecord.Caption(), "Line In");
    EXPECT_EQ(rig.form.Frame.Caption(), "Sound Card Controls");
}

TEST(SoundForm, GreysWhatTheCardLacks) {
    CallLog log;
    FakePlaces places{log};
    FakeMixerControl output({{FakeMixerControl::Level("Master Volume", 65535)}});
    FakeMixerControl input;
    LegacyMixer mixer{output, input};
    SetUpSoundControls(mixer);
    frmSound form(mixer, places);
    form.RefreshSoundControls();
    EXPECT_TRUE(form.MasterOut.Enabled());
    EXPECT_TRUE(form.lblMaster.Enabled());
    for (const Slider* slider : {&form.WaveOut, &form.LineOut, &form.playMic, &form.MicIn, &form.LineIn}) {
        EXPECT_FALSE(slider->Enabled());
        EXPECT_EQ(slider->Value(), 0);
    }
    for (const Label* label :
         {&form.lblWave, &form.lblLine, &form.lblPlayMic, &form.lblMicrophone, &form.lblLineRec})
        EXPECT_FALSE(label->Enabled());
    for (const CheckBox* box : {&form.MasterMute, &form.WaveMute, &form.LinePlayMute, &form.micPlayMute,
                                &form.chk20Db, &form.chkNoMon})
        EXPECT_FALSE(box->Enabled());
    EXPECT_FALSE(form.chkmic.Enabled());
    EXPECT_FALSE(form.chkline.Enabled());
}

TEST(SoundForm, SyncReadsTheCardAgain) {
    Rig rig;
    rig.form.Show();
    rig.output.Find("Master Volume").values = {65535, 65535};
    rig.input.Find("Microphone Select").values = {0, 0};
    rig.input.Find("Line Select").values = {1, 1};
    rig.form.Command1.Press();
    EXPECT_EQ(rig.form.MasterOut.Value(), -100);
    EXPECT_TRUE(rig.form.chkline.Value());
    EXPECT_FALSE(rig.form.chkmic.Value());
}

TEST(SoundForm, KeepsItsPlaceAndClosesOnce) {
    Rig rig;
    int shown = 0;
    int hidden = 0;
    rig.form.OnShow = [&] { ++shown; };
    rig.form.OnClosed = [&] { ++hidden; };
    rig.form.Show();
    rig.form.Show();
    EXPECT_EQ(shown, 2);
    rig.form.cmdOk.Press();
    rig.form.Unload();
    EXPECT_EQ(hidden, 1);
    EXPECT_FALSE(rig.form.Loaded());
    EXPECT_THAT(rig.log.Lines(), ElementsAre("Restore frmSound", "Store frmSound"));
    EXPECT_EQ(rig.form.Frame.Left(), 40);
}

}  // namespace
}  // namespace sonavex
