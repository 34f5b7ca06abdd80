#include "core/mixer/frmSoundVista.h"

#include "core/text/Numbers.h"

namespace sonavex {
namespace {

constexpr const char* kNotSelected = "Not Selected";
constexpr double kSpeakerUnitsPerPercent = 655.0;

void Display(Slider& slider, std::int32_t level, std::int32_t status) {
    slider.SetValue(level);
    slider.SetEnabled(status == 0);
}

void Display(Slider& slider, Label& label, std::int32_t level, std::int32_t status) {
    Display(slider, level, status);
    label.SetEnabled(status == 0);
}

void Display(CheckBox& box, bool state, std::int32_t status) {
    box.SetValue(static_cast<std::int16_t>(state));
    box.SetEnabled(status == 0);
}

}  // namespace

frmSoundVista::frmSoundVista(const Needs& needs)
    : ModelessForm("frmSoundVista", "Sound Controls"), needs_(needs) {
    lblSpeaker.SetCaption("Speaker :");
    lblLinePlay.SetCaption("Line :");
    lblMicPlay.SetCaption("Microphone :");
    lblMicRecord.SetCaption("Microphone :");
    lblLineRecord.SetCaption("Line In :");
    HandleControls();
}

void frmSoundVista::HandleControls() {
    sldSpeakers.Change.Handle([this] { sldSpeakers_Change(); });
    sldMaster.Change.Handle([this] { sldMaster_Change(); });
    sldLinePlay.Change.Handle([this] { sldLinePlay_Change(); });
    sldMicPlay.Change.Handle([this] { sldMicPlay_Change(); });
    sldMic.Change.Handle([this] { sldMic_Change(); });
    sldLine.Change.Handle([this] { sldLine_Change(); });
    chkSpeakerMute.Click.Handle([this] { chkSpeakerMute_Click(); });
    chkMasterMute.Click.Handle([this] { chkMasterMute_Click(); });
    chkLinePlay.Click.Handle([this] { chkLinePlay_Click(); });
    chkMicPlay.Click.Handle([this] { chkMicPlay_Click(); });
    chkBoost.Click.Handle([this] { chkBoost_Click(); });
    chkNoMon.Click.Handle([this] { chkNoMon_Click(); });
    cmdTone.Click.Handle([this] { cmdTone_Click(); });
    cmdSync.Click.Handle([this] { cmdSync_Click(); });
    Command1.Click.Handle([this] { Command1_Click(); });
}

void frmSoundVista::Form_Load() {
    needs_.places.Restore(Frame);
}

void frmSoundVista::Form_Activate() {
    RefreshVistaSoundControls();
}

void frmSoundVista::Form_QueryUnload() {
    needs_.places.Store(Frame);
}

void frmSoundVista::RefreshVistaSoundControls() {
    std::int32_t status = 0;
    RefreshSpeaker();
    lblOutputMixer.SetCaption(needs_.outputDeviceName);
    PlaceInputDevice();
    RefreshPlayback();
    RefreshRecord();
    RefreshSteps();
    needs_.library.GetEQRange(MinimumEqDb, MaximumEqDb, status);
}

bool frmSoundVista::SelectSpeakerVolume() {
    const SpeakerLocators& speaker = needs_.speaker;
    if (speaker.SpeakerVolumeControl < 0) return false;
    needs_.outputMixer.SetLine(speaker.SpeakerVolumeLineInfo);
    needs_.outputMixer.SetDestination(speaker.SpeakerVolumeDestination);
    needs_.outputMixer.SetControl(speaker.SpeakerVolumeControl);
    return true;
}

bool frmSoundVista::SelectSpeakerMute() {
    const SpeakerLocators& speaker = needs_.speaker;
    if (speaker.SpeakerMuteControl < 0) return false;
    needs_.outputMixer.SetLine(speaker.SpeakerMuteLineInfo);
    needs_.outputMixer.SetDestination(speaker.SpeakerMuteDestination);
    needs_.outputMixer.SetControl(speaker.SpeakerMuteControl);
    return true;
}

// The value is -1 when the device lacks the control or does not answer.
void frmSoundVista::RefreshSpeaker() {
    const std::int32_t volume = SelectSpeakerVolume() ? needs_.outputMixer.Value(0) : -1;
    Display(sldSpeakers, lblSpeaker, CLng(volume / kSpeakerUnitsPerPercent), volume < 0);
    const std::int32_t mute = SelectSpeakerMute() ? needs_.outputMixer.Value(0) : -1;
    Display(chkSpeakerMute, mute > 0, mute < 0);
}

void frmSoundVista::RefreshSteps() {
    sldSpeakers.SetStep(SelectSpeakerVolume() ? needs_.outputMixer.Description().stepPercent : 1);
    sldMaster.SetStep(needs_.library.StepPercent(MixerFunction::kMasterVolume));
    sldLinePlay.SetStep(needs_.library.StepPercent(MixerFunction::kLineVolume));
    sldMicPlay.SetStep(needs_.library.StepPercent(MixerFunction::kMicVolume));
    sldMic.SetStep(needs_.library.StepPercent(MixerFunction::kMicRecord));
    sldLine.SetStep(needs_.library.StepPercent(MixerFunction::kLineRecord));
}

void frmSoundVista::PlaceInputDevice() {
    std::int32_t status = 0;
    static_cast<void>(needs_.library.GetMicRecordVolume(status));
    const bool microphone = status == 0;
    lblInputMixer.SetCaption(microphone ? needs_.inputDeviceName : kNotSelected);
    lblLineInMixer.SetCaption(microphone ? kNotSelected : needs_.inputDeviceName);
}

void frmSoundVista::RefreshPlayback() {
    QuenbyVista& library = needs_.library;
    std::int32_t status = 0;
    std::int32_t level = library.GetMasterVolume(status);
    Display(sldMaster, level, status);
    bool mute = library.GetMasterMute(status);
    Display(chkMasterMute, mute, status);
    level = library.GetLinePlayBack(status);
    Display(sldLinePlay, lblLinePlay, level, status);
    mute = library.GetLinePlayBackMute(status);
    Display(chkLinePlay, mute, status);
    level = library.GetMicPlayBack(status);
    Display(sldMicPlay, lblMicPlay, level, status);
    mute = library.GetMicPlayBackMute(status);
    Display(chkMicPlay, mute, status);
}

void frmSoundVista::RefreshRecord() {
    QuenbyVista& library = needs_.library;
    std::int32_t status = 0;
    std::int32_t level = library.GetMicRecordVolume(status);
    Display(sldMic, lblMicRecord, level, status);
    const bool boost = library.GetMicBoost(status);
    Display(chkBoost, boost, status);
    level = library.GetLineRecordVolume(status);
    Display(sldLine, lblLineRecord, level, status);
    const bool noMonitor = library.GetNoMonitor(status);
    Display(chkNoMon, noMonitor, status);
}

void frmSoundVista::sldSpeakers_Change() {
    if (!SelectSpeakerVolume()) return;
    const std::int32_t value = CLng(sldSpeakers.Value() * kSpeakerUnitsPerPercent);
    for (std::int16_t channel = 0; channel < 2; ++channel) {
        needs_.outputMixer.SetValue(channel, value);
        needs_.outputMixer.Commit();
    }
}

void frmSoundVista::sldMaster_Change() {
    std::int32_t status = 0;
    sldMaster.SetValue(needs_.library.SetMasterVolume(sldMaster.Value(), status));
}

void frmSoundVista::sldLinePlay_Change() {
    std::int32_t status = 0;
    needs_.library.SetLinePlayBack(sldLinePlay.Value(), status);
}

void frmSoundVista::sldMicPlay_Change() {
    std::int32_t status = 0;
    needs_.library.SetMicPlayBack(sldMicPlay.Value(), status);
}

void frmSoundVista::sldMic_Change() {
    std::int32_t status = 0;
    needs_.library.SetMicRecordVolume(sldMic.Value(), status);
}

void frmSoundVista::sldLine_Change() {
    std::int32_t status = 0;
    needs_.library.SetLineRecordVolume(sldLine.Value(), status);
}

void frmSoundVista::chkSpeakerMute_Click() {
    if (!SelectSpeakerMute()) return;
    needs_.outputMixer.SetValue(0, chkSpeakerMute.Value());
    needs_.outputMixer.Commit();
}

void frmSoundVista::chkMasterMute_Click() {
    std::int32_t status = 0;
    needs_.library.SetMasterMute(chkMasterMute.Checked(), status);
}

void frmSoundVista::chkLinePlay_Click() {
    std::int32_t status = 0;
    needs_.library.SetLinePlayBackMute(chkLinePlay.Checked(), status);
}

void frmSoundVista::chkMicPlay_Click() {
    std::int32_t status = 0;
    needs_.library.SetMicPlayBackMute(chkMicPlay.Checked(), status);
}

void frmSoundVista::chkBoost_Click() {
    std::int32_t status = 0;
    needs_.library.SetMicBoost(chkBoost.Checked(), status);
}

void frmSoundVista::chkNoMon_Click() {
    std::int32_t status = 0;
    needs_.library.SetNoMonitor(chkNoMon.Checked(), status);
}

void frmSoundVista::cmdTone_Click() {
    if (ShowTone) ShowTone();
}

void frmSoundVista::cmdSync_Click() {
    RefreshVistaSoundControls();
}

void frmSoundVista::Command1_Click() {
    Unload();
}

}  // namespace sonavex
