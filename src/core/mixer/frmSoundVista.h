#pragma once

#include <functional>
#include <string>

#include "core/controls/Commands.h"
#include "core/controls/Controls.h"
#include "core/controls/ModelessForm.h"
#include "core/mixer/VistaSound.h"

namespace sonavex {

// The card's playback and record levels on the newer generation, shown and changed live. A control
// that the card lacks is disabled with its label. User-interface thread only.
class frmSoundVista : public ModelessForm {
public:
    // What the form shows and changes. Everything must outlive it.
    struct Card {
        QuenbyVista& library;
        MixerControl& outputMixer;
        const SpeakerLocators& speaker;
        const std::string& outputDeviceName;
        const std::string& inputDeviceName;
    };
    frmSoundVista(const Card& card, FormPlaces& places);

    // Reads every value from the card into the controls.
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

    // Shows the tone dialog.
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
    Label lblInputMixer;   // the input device, when it has a microphone's record level
    Label lblLineInMixer;  // the input device, when it has none

    // Range of the tone controls as read by the last refresh, in decibels.
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
    bool SelectSpeakerVolume();
    bool SelectSpeakerMute();

    Card card_;
    FormPlaces& places_;
};

}  // namespace sonavex
