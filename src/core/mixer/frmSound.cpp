#include "core/mixer/frmSound.h"

#include "core/text/Numbers.h"

namespace sonavex {
namespace {

constexpr std::int32_t kFullPercent = 100;
constexpr double kFullValue = 65535.0;

// 655.35 units per percent; halves are rounded to even.
std::int32_t ValueOf(std::int32_t levelPercent) {
    return CLng(levelPercent * kFullValue / kFullPercent);
}

}  // namespace

frmSound::frmSound(LegacyMixer& mixer, FormPlaces& places)
    : ModelessForm("frmSound", "Sound Card Controls"), mixer_(mixer), places_(places) {
    for (Slider* slider : {&MasterOut, &WaveOut, &LineOut, &playMic, &MicIn, &LineIn})
        slider->SetRange(-kFullPercent, 0);
    lblMaster.SetCaption("Master");
    lblWave.SetCaption("Wave");
    lblLine.SetCaption("Line");
    lblPlayMic.SetCaption("Microphone");
    lblMicrophone.SetCaption("Microphone");
    lblLineRec.SetCaption("Line Rec");
    HandleControls();
}

void frmSound::HandleControls() {
    MasterOut.Change.Handle([this] { MasterOut_Change(); });
    WaveOut.Change.Handle([this] { WaveOut_Change(); });
    LineOut.Change.Handle([this] { LineOut_Change(); });
    playMic.Change.Handle([this] { playMic_Change(); });
    MicIn.Change.Handle([this] { MicIn_Change(); });
    LineIn.Change.Handle([this] { LineIn_Change(); });
    MasterMute.Click.Handle([this] { MasterMute_Click(); });
    WaveMute.Click.Handle([this] { WaveMute_Click(); });
    LinePlayMute.Click.Handle([this] { LinePlayMute_Click(); });
    micPlayMute.Click.Handle([this] { micPlayMute_Click(); });
    chk20Db.Click.Handle([this] { chk20Db_Click(); });
    chkNoMon.Click.Handle([this] { chkNoMon_Click(); });
    chkmic.Click.Handle([this] { chkmic_Click(); });
    chkline.Click.Handle([this] { chkline_Click(); });
    Command1.Click.Handle([this] { Command1_Click(); });
    cmdOk.Click.Handle([this] { cmdOk_Click(); });
}

void frmSound::Form_Load() {
    places_.Restore(Frame);
}

void frmSound::Form_Activate() {
    RefreshSoundControls();
}

void frmSound::Form_QueryUnload() {
    places_.Store(Frame);
}

void frmSound::RefreshSoundControls() {
    MixerControl& output = mixer_.OutputMixer;
    MixerControl& input = mixer_.InputMixer;
    MixerLocatorTable& table = mixer_.MixerLocators;
    lblRecord.SetCaption(input.DeviceName());
    lblPlay.SetCaption(output.DeviceName());
    Display(output, table.MasterVolume, MasterOut, lblMaster);
    Display(output, table.MasterMute, MasterMute);
    Display(output, table.WaveVolume, WaveOut, lblWave);
    Display(output, table.WaveMute, WaveMute);
    Display(output, table.LineVolume, LineOut, lblLine);
    Display(output, table.LineMute, LinePlayMute);
    Display(output, table.MicVolume, playMic, lblPlayMic);
    Display(output, table.MicMute, micPlayMute);
    Display(input, table.MicRecord, MicIn, lblMicrophone);
    Display(input, table.LineRecord, LineIn, lblLineRec);
    Display(input, table.MicBoost, chk20Db);
    Display(input, table.MonitorOff, chkNoMon);
    Display(input, table.MicSource, chkmic);
    Display(input, table.LineSource, chkline);
}

void frmSound::Display(MixerControl& mixer, MixerLocator& entry, Slider& slider, Label& label) {
    entry = ReadLocated(mixer, entry);
    slider.SetEnabled(entry.Available());
    label.SetEnabled(entry.Available());
    slider.SetStep(entry.Available() ? mixer.Description().stepPercent : 1);
    slider.SetValue(entry.Available() ? -CLng(static_cast<double>(entry.Value)) : 0);
}

void frmSound::Display(MixerControl& mixer, MixerLocator& entry, CheckBox& box) {
    entry = ReadLocated(mixer, entry);
    box.SetEnabled(entry.Available());
    box.SetValue(static_cast<std::int16_t>(entry.Available() && entry.Value != 0.0F));
}

void frmSound::Display(MixerControl& mixer, MixerLocator& entry, OptionButton& button) {
    entry = ReadLocated(mixer, entry);
    button.SetEnabled(entry.Available());
    button.SetValue(entry.Available() && entry.Value != 0.0F);
}

void frmSound::Move(MixerControl& mixer, MixerLocator& entry, const Slider& slider) {
    const std::int32_t levelPercent = -slider.Value();
    SelectLocated(mixer, entry);
    mixer.SetValue(0, ValueOf(levelPercent));
    mixer.SetValue(1, ValueOf(levelPercent));
    mixer.Commit();
    entry.Value = static_cast<float>(levelPercent);
    mixer_.MixerChanged = true;
}

void frmSound::Set(MixerControl& mixer, const MixerLocator& entry, std::int16_t value,
                   std::int16_t channels) {
    SelectLocated(mixer, entry);
    for (std::int16_t channel = 0; channel < channels; ++channel) mixer.SetValue(channel, value);
    mixer.Commit();
    mixer_.MixerChanged = true;
}

void frmSound::SelectSource(MixerLocator& chosen, MixerLocator& other, OptionButton& otherButton) {
    otherButton.SetValue(false);
    Set(mixer_.InputMixer, chosen, 1, 1);
    chosen.Value = 1.0F;
    other.Value = 0.0F;
}

void frmSound::MasterOut_Change() {
    Move(mixer_.OutputMixer, mixer_.MixerLocators.MasterVolume, MasterOut);
}

void frmSound::WaveOut_Change() {
    Move(mixer_.OutputMixer, mixer_.MixerLocators.WaveVolume, WaveOut);
}

void frmSound::LineOut_Change() {
    Move(mixer_.OutputMixer, mixer_.MixerLocators.LineVolume, LineOut);
}

void frmSound::playMic_Change() {
    Move(mixer_.OutputMixer, mixer_.MixerLocators.MicVolume, playMic);
}

void frmSound::MicIn_Change() {
    Move(mixer_.InputMixer, mixer_.MixerLocators.MicRecord, MicIn);
}

void frmSound::LineIn_Change() {
    Move(mixer_.InputMixer, mixer_.MixerLocators.LineRecord, LineIn);
}

void frmSound::MasterMute_Click() {
    Set(mixer_.OutputMixer, mixer_.MixerLocators.MasterMute, MasterMute.Value(), 2);
}

void frmSound::WaveMute_Click() {
    Set(mixer_.OutputMixer, mixer_.MixerLocators.WaveMute, WaveMute.Value(), 2);
}

void frmSound::LinePlayMute_Click() {
    Set(mixer_.OutputMixer, mixer_.MixerLocators.LineMute, LinePlayMute.Value(), 2);
}

void frmSound::micPlayMute_Click() {
    Set(mixer_.OutputMixer, mixer_.MixerLocators.MicMute, micPlayMute.Value(), 2);
}

void frmSound::chk20Db_Click() {
    Set(mixer_.InputMixer, mixer_.MixerLocators.MicBoost, chk20Db.Value(), 1);
}

void frmSound::chkNoMon_Click() {
    Set(mixer_.InputMixer, mixer_.MixerLocators.MonitorOff, chkNoMon.Value(), 1);
}

void frmSound::chkmic_Click() {
    SelectSource(mixer_.MixerLocators.MicSource, mixer_.MixerLocators.LineSource, chkline);
}

void frmSound::chkline_Click() {
    SelectSource(mixer_.MixerLocators.LineSource, mixer_.MixerLocators.MicSource, chkmic);
}

void frmSound::Command1_Click() {
    RefreshSoundControls();
}

void frmSound::cmdOk_Click() {
    Unload();
}

}  // namespace sonavex
