// Binds every control of the mixer forms to its widget.

#include "ui/MixerDialogs.h"
#include "ui_frmSound.h"
#include "ui_frmSoundVista.h"
#include "ui_frmVistaTone.h"

namespace sonavex::ui {

void SoundDialog::BindControls() {
    Binder& binder = Bindings();
    binder.Bind(*ui_->MasterOut, form_.MasterOut);
    binder.Bind(*ui_->WaveOut, form_.WaveOut);
    binder.Bind(*ui_->LineOut, form_.LineOut);
    binder.Bind(*ui_->playMic, form_.playMic);
    binder.Bind(*ui_->MicIn, form_.MicIn);
    binder.Bind(*ui_->LineIn, form_.LineIn);
    binder.Bind(*ui_->MasterMute, form_.MasterMute);
    binder.Bind(*ui_->WaveMute, form_.WaveMute);
    binder.Bind(*ui_->LinePlayMute, form_.LinePlayMute);
    binder.Bind(*ui_->micPlayMute, form_.micPlayMute);
    binder.Bind(*ui_->chk20Db, form_.chk20Db);
    binder.Bind(*ui_->chkNoMon, form_.chkNoMon);
    binder.Bind(*ui_->chkmic, form_.chkmic);
    binder.Bind(*ui_->chkline, form_.chkline);
    binder.Bind(*ui_->Command1, form_.Command1);
    binder.Bind(*ui_->cmdOk, form_.cmdOk);
    binder.Bind(*ui_->lblPlay, form_.lblPlay);
    binder.Bind(*ui_->lblRecord, form_.lblRecord);
    binder.Bind(*ui_->lblMaster, form_.lblMaster);
    binder.Bind(*ui_->lblWave, form_.lblWave);
    binder.Bind(*ui_->lblLine, form_.lblLine);
    binder.Bind(*ui_->lblPlayMic, form_.lblPlayMic);
    binder.Bind(*ui_->lblMicrophone, form_.lblMicrophone);
    binder.Bind(*ui_->lblLineRec, form_.lblLineRec);
}

void SoundVistaDialog::BindControls() {
    Binder& binder = Bindings();
    binder.Bind(*ui_->sldSpeakers, form_.sldSpeakers);
    binder.Bind(*ui_->sldMaster, form_.sldMaster);
    binder.Bind(*ui_->sldLinePlay, form_.sldLinePlay);
    binder.Bind(*ui_->sldMicPlay, form_.sldMicPlay);
    binder.Bind(*ui_->sldMic, form_.sldMic);
    binder.Bind(*ui_->sldLine, form_.sldLine);
    binder.Bind(*ui_->chkSpeakerMute, form_.chkSpeakerMute);
    binder.Bind(*ui_->chkMasterMute, form_.chkMasterMute);
    binder.Bind(*ui_->chkLinePlay, form_.chkLinePlay);
    binder.Bind(*ui_->chkMicPlay, form_.chkMicPlay);
    binder.Bind(*ui_->chkBoost, form_.chkBoost);
    binder.Bind(*ui_->chkNoMon, form_.chkNoMon);
    binder.Bind(*ui_->cmdTone, form_.cmdTone);
    binder.Bind(*ui_->cmdSync, form_.cmdSync);
    binder.Bind(*ui_->Command1, form_.Command1);
    binder.Bind(*ui_->lblSpeaker, form_.lblSpeaker);
    binder.Bind(*ui_->lblLinePlay, form_.lblLinePlay);
    binder.Bind(*ui_->lblMicPlay, form_.lblMicPlay);
    binder.Bind(*ui_->lblMicRecord, form_.lblMicRecord);
    binder.Bind(*ui_->lblLineRecord, form_.lblLineRecord);
    binder.Bind(*ui_->lblOutputMixer, form_.lblOutputMixer);
    binder.Bind(*ui_->lblInputMixer, form_.lblInputMixer);
    binder.Bind(*ui_->lblLineInMixer, form_.lblLineInMixer);
}

void VistaToneDialog::BindControls() {
    Binder& binder = Bindings();
    binder.Bind(*ui_->sldBass, form_.sldBass);
    binder.Bind(*ui_->sldMid, form_.sldMid);
    binder.Bind(*ui_->sldTreble, form_.sldTreble);
    binder.Bind(*ui_->lblBass, form_.lblBass);
    binder.Bind(*ui_->lblMid, form_.lblMid);
    binder.Bind(*ui_->lblTreble, form_.lblTreble);
    binder.Bind(*ui_->lblBassValue, form_.lblBassValue);
    binder.Bind(*ui_->lblMidValue, form_.lblMidValue);
    binder.Bind(*ui_->lblTrebleValue, form_.lblTrebleValue);
    binder.Bind(*ui_->cmdClose, form_.cmdClose);
}

}  // namespace sonavex::ui
