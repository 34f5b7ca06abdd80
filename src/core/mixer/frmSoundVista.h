#pragma once

#include <functional>
#include <string>

#include "core/controls/Commands.h"
#include "core/controls/Controls.h"
#include "core/controls/FormPlaces.h"
#include "core/controls/ModelessForm.h"
#include "core/mixer/MixerControl.h"
#include "core/mixer/QuenbyVista.h"
#include "core/mixer/VistaSound.h"

namespace sonavex {

// The dialog of the newer generation: shows and changes the present playback and record levels. A control
// that the device lacks is disabled together with its label.
class frmSoundVista : public ModelessForm {
public:
    // All must outlive the form.
    struct Needs {
        QuenbyVista& library;
        MixerControl& outputMixer;
        const SpeakerLocators& speaker;
        const std::string& outputDeviceName;
        const std::string& inputDeviceName;
        FormPlaces& places;
    };
    explicit frmSoundVista(const Needs& needs);

    // Reads every present value into its control.
    void RefreshVistaSoundControls();

    void sldSpeakers_Change();
    void sldMaster_Change();
    void sldLinePlay_Change();
    void sldMicPlay_Change();
    void sldMic_Change();
    void sldLine_Change();
    void chkSpeakerMute_Click();
    void chkMasterMute_Click();
    void chkLinePlay_Click();
    void chkMicPlay_Click();
    void chkBoost_Click();
    void chkNoMon_Click();
    void cmdTone_Click();
    void cmdSync_Click();
    void Command1_Click();

    // Called to show the tone dialog.
    std::function<void()> ShowTone;

    Slider sldSpeakers;
    Slider sldMaster;
    Slider sldLinePlay;
    Slider sldMicPlay;
    Slider sldMic;
    Slider sldLine;
    CheckBox chkSpeakerMute;
    CheckBox chkMasterMute;
    CheckBox chkLinePlay;
    CheckBox chkMicPlay;
    CheckBox chkBoost;
    CheckBox chkNoMon;
    CommandButton cmdTone;
    CommandButton cmdSync;
    CommandButton Command1;
    Label lblSpeaker;
    Label lblLinePlay;
    Label lblMicPlay;
    Label lblMicRecord;
    Label lblLineRecord;
    Label lblOutputMixer;
    // Exactly one shows the input device: lblInputMixer if it has a microphone level, else lblLineInMixer.
    Label lblInputMixer;
    Label lblLineInMixer;

    // Range of the tone controls in decibels, as of the last refresh.
    double MinimumEqDb = 0.0;
    double MaximumEqDb = 0.0;

protected:
    void Form_Load() override;
    void Form_Activate() override;
    void Form_QueryUnload() override;

private:
    void HandleControls();
    void RefreshSpeaker();
    void PlaceInputDevice();
    void RefreshPlayback();
    void RefreshRecord();
    void RefreshSteps();
    bool SelectSpeakerVolume();
    bool SelectSpeakerMute();

    Needs needs_;
};

}  // namespace sonavex
