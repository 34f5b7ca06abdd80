#include <gmock/gmock.h>

#include <QCheckBox>
#include <QLabel>
#include <QPushButton>
#include <QRadioButton>
#include <QSlider>
#include <QTest>
#include <QTimer>
#include <set>

#include "support/DialogUser.h"
#include "ui/MixerRig.h"

namespace sonavex {
namespace {

using testing::Contains;
using testing::IsEmpty;

// Every control has a widget, and every widget with a control's prefix has a control.
void ExpectJoined(ui::ModelessDialog& dialog, std::size_t controls) {
    std::set<QObject*> widgets;
    std::set<Control*> bound;
    for (const auto& pair : std::as_const(dialog).Bindings().Pairs()) {
        widgets.insert(pair.widget);
        bound.insert(pair.control);
    }
    EXPECT_EQ(bound.size(), controls);
    for (const QWidget* widget : dialog.findChildren<QWidget*>()) {
        const QString name = widget->objectName();
        const bool prefixed = name.startsWith("sld") || name.startsWith("chk") || name.startsWith("cmd") ||
                              name.startsWith("lbl") || name.startsWith("Command");
        if (prefixed) {
            EXPECT_TRUE(widgets.count(const_cast<QWidget*>(widget)) == 1) << name.toStdString();
        }
    }
}

TEST(MixerDialogs, JoinEveryControl) {
    MixerRig rig(10);
    ExpectJoined(rig.windows.Sound, 24);
    ExpectJoined(rig.windows.SoundVista, 23);
    ExpectJoined(rig.windows.Tone, 10);
}

TEST(MixerDialogs, HaveTheirCaptionsAndToolTips) {
    MixerRig rig(10);
    EXPECT_EQ(rig.windows.Sound.windowTitle(), "Sound Card Controls");
    EXPECT_EQ(rig.windows.SoundVista.windowTitle(), "Sound Controls");
    EXPECT_EQ(rig.windows.Tone.windowTitle(), "Tone Controls");
    const std::pair<const char*, const char*> tips[] = {
        {"sldSpeakers", "Percentage of Speaker Output"},
        {"chkSpeakerMute", "Mute speaker control"},
        {"sldMaster", "Master Speaker Volume"},
        {"chkMasterMute", "Master Mute Speaker"},
        {"sldLinePlay", "Playback Line Level"},
        {"chkLinePlay", "Mute Playback Line Out"},
        {"sldMicPlay", "Play Back Microphone Level (Should always be muted)"},
        {"chkMicPlay", "Mute Play Back Microphone  (Should always be muted)"},
        {"cmdTone", "Internal soundcard tone controls"},
        {"sldMic", "Recording microphone level"},
        {"sldLine", "Recording Line In level"},
        {"chkBoost", "Amplify microphone +20 dB"},
        {"chkNoMon", "Record without monitoring (should be checked if availble)"},
        {"cmdSync",
         "Sync all controls with windows levels. Only useful if windows controls are adjested while this "
         "dialog box is open"}};
    for (const auto& [name, tip] : tips)
        EXPECT_EQ(Find<QWidget>(rig.windows.SoundVista, name).toolTip(), tip) << name;
    EXPECT_EQ(Find<QSlider>(rig.windows.Tone, "sldBass").toolTip(), "Adjust Bass Response");
    EXPECT_EQ(Find<QSlider>(rig.windows.Tone, "sldMid").toolTip(), "Adjust Midrange Response");
    EXPECT_EQ(Find<QSlider>(rig.windows.Tone, "sldTreble").toolTip(), "Adjust Treble Response");
}

using Captions = std::vector<std::pair<const char*, const char*>>;

// Captions of labels, boxes and buttons by name. An empty name stands for any label, such as a frame's
// title.
void ExpectCaptions(QWidget& dialog, const Captions& captions) {
    std::set<std::string> titles;
    for (const QLabel* label : dialog.findChildren<QLabel*>()) titles.insert(label->text().toStdString());
    for (const auto& [name, caption] : captions) {
        if (*name == '\0') {
            EXPECT_THAT(titles, Contains(caption));
            continue;
        }
        EXPECT_EQ(Find<QWidget>(dialog, name).property("text").toString(), caption) << name;
    }
}

TEST(MixerDialogs, NameTheirControls) {
    MixerRig rig(5);
    ExpectCaptions(rig.windows.Sound, {{"", "Play Controls (Output)"},
                                       {"", "Record Controls (Input)"},
                                       {"lblMaster", "Master"},
                                       {"lblWave", "Wave"},
                                       {"lblLine", "Line"},
                                       {"lblMicrophone", "Microphone"},
                                       {"lblLineRec", "Line Rec"},
                                       {"MasterMute", "Mute"},
                                       {"WaveMute", "Mute"},
                                       {"LinePlayMute", "Mute"},
                                       {"micPlayMute", "Mute"},
                                       {"chkmic", "Select"},
                                       {"chkline", "Select"},
                                       {"chk20Db", "+20 Db"},
                                       {"chkNoMon", "Mon Off"},
                                       {"Command1", "Sync"},
                                       {"cmdOk", "Close"}});
}

TEST(VistaDialog, NamesItsControls) {
    MixerRig rig(10);
    rig.mixers.ShowSoundCard();
    ExpectCaptions(rig.windows.SoundVista, {{"", "Playback"},
                                            {"", "Record"},
                                            {"lblSpeaker", "Speaker :"},
                                            {"chkSpeakerMute", "Mute"},
                                            {"chkMasterMute", "Mute"},
                                            {"lblLinePlay", "Line :"},
                                            {"chkLinePlay", "Mute"},
                                            {"lblMicPlay", "Microphone :"},
                                            {"chkMicPlay", "Mute"},
                                            {"cmdTone", "Tone"},
                                            {"lblMicRecord", "Microphone :"},
                                            {"lblLineRecord", "Line In :"},
                                            {"chkBoost", "+20 dB"},
                                            {"chkNoMon", "No Mon"},
                                            {"cmdSync", "Sync"}});
    ExpectCaptions(
        rig.windows.Tone,
        {{"lblBass", "Bass :"}, {"lblMid", "Mid Range :"}, {"lblTreble", "Treble :"}, {"cmdClose", "Close"}});
}

TEST(MixerDialogs, OpenOnceAndAreNotModal) {
    MixerRig rig(10);
    rig.mixers.ShowSoundCard();
    rig.mixers.ShowSoundCard();
    rig.Settle();
    EXPECT_TRUE(rig.windows.SoundVista.isVisible());
    EXPECT_FALSE(rig.windows.SoundVista.isModal());
    EXPECT_FALSE(rig.windows.Sound.isVisible());
    QTest::mouseClick(&Find<QPushButton>(rig.windows.SoundVista, "cmdTone"), Qt::LeftButton);
    EXPECT_TRUE(rig.windows.Tone.isVisible());
    rig.mixers.UnloadDialogs();
    EXPECT_FALSE(rig.windows.SoundVista.isVisible());
    EXPECT_FALSE(rig.windows.Tone.isVisible());
}

TEST(MixerDialogs, CloseByButtonFrameAndEscape) {
    MixerRig rig(10);
    const std::function<void()> ways[] = {
        [&] { QTest::mouseClick(&Find<QPushButton>(rig.windows.SoundVista, "Command1"), Qt::LeftButton); },
        [&] { rig.windows.SoundVista.close(); },
        [&] { QTest::keyClick(&rig.windows.SoundVista, Qt::Key_Escape); }};
    for (const auto& close : ways) {
        rig.mixers.ShowSoundCard();
        ASSERT_TRUE(rig.windows.SoundVista.isVisible());
        close();
        EXPECT_FALSE(rig.windows.SoundVista.isVisible());
        EXPECT_FALSE(rig.mixers.SoundVista.Loaded());
    }
}

TEST(MixerDialogs, ComeBackWhereTheyWere) {
    MixerRig rig(10);
    rig.mixers.ShowSoundCard();
    rig.windows.SoundVista.move(123, 77);
    rig.Settle();
    rig.windows.SoundVista.close();
    EXPECT_EQ(rig.store.Get("Windows", "frmSoundVista Left", ""), "123");
    EXPECT_EQ(rig.store.Get("Windows", "frmSoundVista Top", ""), "77");
    rig.windows.SoundVista.move(0, 0);
    rig.mixers.ShowSoundCard();
    EXPECT_EQ(rig.windows.SoundVista.pos(), QPoint(123, 77));
}

// The percentages next to them have different widths.
TEST(MixerDialogs, EndTheirSlidersInOneLine) {
    for (const std::int32_t generation : {5, 10}) {
        MixerRig rig(generation);
        rig.hardware.SetValues(MixerFunction::kLineRecord, {6554, 6554});
        rig.mixers.ShowSoundCard();
        rig.Settle();
        QWidget& dialog = generation < 6 ? static_cast<QWidget&>(rig.windows.Sound) : rig.windows.SoundVista;
        std::set<int> ends;
        for (const QSlider* slider : dialog.findChildren<QSlider*>())
            ends.insert(slider->mapTo(&dialog, slider->rect().topRight()).x());
        EXPECT_EQ(ends.size(), 1U) << generation;
    }
}

TEST(VistaDialog, MovesTheCardAndShowsIt) {
    MixerRig rig(10);
    rig.mixers.ShowSoundCard();
    rig.Settle();
    ui::SoundVistaDialog& dialog = rig.windows.SoundVista;
    Find<QSlider>(dialog, "sldSpeakers").setValue(50);
    rig.Settle();
    EXPECT_EQ(rig.hardware.Values(MixerFunction::kMasterVolume), (std::vector<std::int32_t>{32750, 32750}));
    EXPECT_EQ(Find<QSlider>(dialog, "sldMaster").value(), 50) << "the same control of this card";
    EXPECT_EQ(Find<QLabel>(dialog, "percent_sldSpeakers").text(), "50 %");
    QTest::mouseClick(&Find<QCheckBox>(dialog, "chkBoost"), Qt::LeftButton, {}, QPoint(8, 8));
    EXPECT_EQ(rig.hardware.Values(MixerFunction::kMicBoost)[0], 1);
    EXPECT_EQ(Find<QLabel>(dialog, "lblInputMixer").text(), SimulatedSoundSystem::kDescription);
}

TEST(VistaDialog, ShowsWhatOthersChangeAtOnce) {
    MixerRig rig(10);
    rig.mixers.ShowSoundCard();
    rig.hardware.SetValues(MixerFunction::kLineRecord, {6554, 6554});
    rig.Settle();
    EXPECT_EQ(Find<QSlider>(rig.windows.SoundVista, "sldLine").value(), 10);
    EXPECT_EQ(Find<QLabel>(rig.windows.SoundVista, "percent_sldLine").text(), "10 %");
}

TEST(VistaDialog, ChecksTheBoostThatOthersSwitchOn) {
    MixerRig rig(10);
    rig.mixers.ShowSoundCard();
    rig.Settle();
    EXPECT_FALSE(Find<QCheckBox>(rig.windows.SoundVista, "chkBoost").isChecked());
    rig.hardware.SetValues(MixerFunction::kMicBoost, {1});
    rig.Settle();
    EXPECT_TRUE(Find<QCheckBox>(rig.windows.SoundVista, "chkBoost").isChecked());
}

// Speaker and Master are the same control of this card.
TEST(VistaDialog, RaisesTheMasterFromZero) {
    MixerRig rig(10);
    rig.mixers.ShowSoundCard();
    Find<QSlider>(rig.windows.SoundVista, "sldSpeakers").setValue(0);
    rig.Settle();
    Find<QSlider>(rig.windows.SoundVista, "sldMaster").setValue(20);
    rig.Settle();
    EXPECT_THAT(rig.log.Of("Message"), IsEmpty());
    EXPECT_EQ(rig.hardware.Values(MixerFunction::kMasterVolume)[0], 13107);
    EXPECT_EQ(Find<QSlider>(rig.windows.SoundVista, "sldSpeakers").value(), 20);
}

TEST(VistaDialog, GreysWhatTheCardLacks) {
    MixerRig rig(10, {MixerFunction::kMicRecord, MixerFunction::kLineMute, MixerFunction::kMasterVolume});
    rig.mixers.ShowSoundCard();
    rig.Settle();
    for (const char* name : {"sldMic", "lblMicRecord", "percent_sldMic", "chkLinePlay", "sldMaster",
                             "capMaster", "sldSpeakers", "lblSpeaker"})
        EXPECT_FALSE(Find<QWidget>(rig.windows.SoundVista, name).isEnabled()) << name;
    for (const char* name : {"sldLine", "chkSpeakerMute", "chkMasterMute", "sldMicPlay", "chkMicPlay"})
        EXPECT_TRUE(Find<QWidget>(rig.windows.SoundVista, name).isEnabled()) << name;
    EXPECT_EQ(Find<QLabel>(rig.windows.SoundVista, "lblInputMixer").text(), "Not Selected");
}

// Without placeholders the last volume and the last mute would be the microphone's.
TEST(VistaDialog, OfACardWithoutMasterMovesNothingElse) {
    MixerRig rig(10, {MixerFunction::kMasterVolume, MixerFunction::kMasterMute});
    rig.mixers.ShowSoundCard();
    rig.Settle();
    const auto level = rig.hardware.Values(MixerFunction::kMicVolume);
    const auto mute = rig.hardware.Values(MixerFunction::kMicMute);
    EXPECT_FALSE(Find<QWidget>(rig.windows.SoundVista, "sldSpeakers").isEnabled());
    EXPECT_FALSE(Find<QWidget>(rig.windows.SoundVista, "chkSpeakerMute").isEnabled());
    Find<QSlider>(rig.windows.SoundVista, "sldSpeakers").setValue(90);
    rig.mixers.SoundVista.chkSpeakerMute.UserSets(mute.front() == 0);
    rig.Settle();
    EXPECT_EQ(rig.hardware.Values(MixerFunction::kMicVolume), level);
    EXPECT_EQ(rig.hardware.Values(MixerFunction::kMicMute), mute);
    EXPECT_EQ(rig.hardware.Writes(), 0);
}

TEST(VistaDialog, OfAMasterWithoutMuteLeavesTheMicrophonesMute) {
    MixerRig rig(10, {MixerFunction::kMasterMute});
    rig.mixers.ShowSoundCard();
    rig.Settle();
    EXPECT_TRUE(Find<QWidget>(rig.windows.SoundVista, "sldSpeakers").isEnabled());
    EXPECT_FALSE(Find<QWidget>(rig.windows.SoundVista, "chkSpeakerMute").isEnabled());
    rig.mixers.SoundVista.chkSpeakerMute.UserSets(false);
    EXPECT_EQ(rig.hardware.Values(MixerFunction::kMicMute)[0], 1);
    EXPECT_EQ(rig.hardware.Writes(), 0);
}

TEST(ToneDialog, MovesTheCardsTones) {
    MixerRig rig(10);
    rig.mixers.SoundVista.ShowTone();
    rig.Settle();
    Find<QSlider>(rig.windows.Tone, "sldBass").setValue(-6);
    rig.Settle();
    EXPECT_EQ(rig.hardware.Values(MixerFunction::kBass)[0], -6);
    EXPECT_EQ(Find<QLabel>(rig.windows.Tone, "lblBassValue").text(), "-6 dB");
}

TEST(OlderDialog, SlidersRiseToTheRight) {
    MixerRig rig(5);
    rig.mixers.ShowSoundCard();
    rig.Settle();
    EXPECT_TRUE(rig.windows.Sound.isVisible());
    auto& wave = Find<QSlider>(rig.windows.Sound, "WaveOut");
    EXPECT_EQ(wave.value(), -100);
    wave.setFocus();
    QTest::keyClick(&wave, Qt::Key_Left);
    rig.Settle();
    EXPECT_EQ(wave.value(), -99);
    EXPECT_EQ(rig.hardware.Values(MixerFunction::kWaveVolume)[0], 64880);
    EXPECT_EQ(Find<QLabel>(rig.windows.Sound, "percent_WaveOut").text(), "99 %");
    QTest::keyClick(&wave, Qt::Key_Right);
    EXPECT_EQ(wave.value(), -100);
}

// A page is never shorter than a step.
template <class Dialog, class Form>
void ExpectStepsOfTheCard(Dialog& dialog, Form& form, std::initializer_list<Slider Form::*> levels) {
    for (const std::int32_t step : {4, 20, 1}) {
        for (Slider Form::*level : levels) (form.*level).SetStep(step);
        Settle();
        for (const QSlider* slider : dialog.template findChildren<QSlider*>()) {
            EXPECT_EQ(slider->singleStep(), step) << slider->objectName().toStdString();
            EXPECT_EQ(slider->pageStep(), std::max(10, step)) << slider->objectName().toStdString();
        }
    }
}

TEST(VistaDialog, StepsByTheStepsOfTheCard) {
    MixerRig rig(10);
    ExpectStepsOfTheCard<QWidget, frmSoundVista>(
        rig.windows.SoundVista, rig.mixers.SoundVista,
        {&frmSoundVista::sldSpeakers, &frmSoundVista::sldMaster, &frmSoundVista::sldLinePlay,
         &frmSoundVista::sldMicPlay, &frmSoundVista::sldMic, &frmSoundVista::sldLine});
}

TEST(OlderDialog, StepsByTheStepsOfTheCard) {
    MixerRig rig(5);
    ExpectStepsOfTheCard<QWidget, frmSound>(rig.windows.Sound, rig.mixers.Sound,
                                            {&frmSound::MasterOut, &frmSound::WaveOut, &frmSound::LineOut,
                                             &frmSound::playMic, &frmSound::MicIn, &frmSound::LineIn});
}

TEST(OlderDialog, GoesToTheEndsByKey) {
    MixerRig rig(5);
    rig.mixers.ShowSoundCard();
    rig.Settle();
    for (auto* slider : rig.windows.Sound.findChildren<QSlider*>()) {
        QTest::keyClick(slider, Qt::Key_Home);
        EXPECT_EQ(slider->value(), 0) << slider->objectName().toStdString();
        QTest::keyClick(slider, Qt::Key_End);
        EXPECT_EQ(slider->value(), -100) << slider->objectName().toStdString();
    }
    QTest::keyClick(&Find<QSlider>(rig.windows.Sound, "WaveOut"), Qt::Key_Home);
    rig.Settle();
    EXPECT_EQ(rig.hardware.Values(MixerFunction::kWaveVolume)[0], 0);
    EXPECT_EQ(Find<QLabel>(rig.windows.Sound, "percent_WaveOut").text(), "0 %");
}

TEST(OlderDialog, SelectsOneSource) {
    MixerRig rig(5);
    rig.mixers.ShowSoundCard();
    rig.Settle();
    auto& mic = Find<QRadioButton>(rig.windows.Sound, "chkmic");
    auto& line = Find<QRadioButton>(rig.windows.Sound, "chkline");
    EXPECT_TRUE(line.isChecked());
    mic.click();
    rig.Settle();
    EXPECT_TRUE(mic.isChecked());
    EXPECT_FALSE(line.isChecked());
    EXPECT_EQ(rig.hardware.Values(MixerFunction::kMicSource)[0], 1);
    mic.click();
    rig.Settle();
    EXPECT_TRUE(mic.isChecked()) << "a second click keeps it";
}

}  // namespace
}  // namespace sonavex
