#pragma once

#include "core/controls/Commands.h"
#include "core/controls/Controls.h"
#include "core/controls/FormPlaces.h"
#include "core/controls/ModelessForm.h"
#include "core/controls/OptionButton.h"
#include "core/mixer/MixerLocators.h"

namespace sonavex {

// The dialog of the older generation: shows and changes the present levels of the card. A slider's value
// is the negated level, 0 to -100 percent. A function that the card lacks is disabled together with its
// label.
class frmSound : public ModelessForm {
public:
    // Both must outlive the form.
    frmSound(LegacyMixer& mixer, FormPlaces& places);

    // Reads the present value of every function into its control.
    void RefreshSoundControls();

    void MasterOut_Change();
    void WaveOut_Change();
    void LineOut_Change();
    void playMic_Change();
    void MicIn_Change();
    void LineIn_Change();
    void MasterMute_Click();
    void WaveMute_Click();
    void LinePlayMute_Click();
    void micPlayMute_Click();
    void chk20Db_Click();
    void chkNoMon_Click();
    void chkmic_Click();
    void chkline_Click();
    void Command1_Click();
    void cmdOk_Click();

    Slider MasterOut;
    Slider WaveOut;
    Slider LineOut;
    Slider playMic;
    Slider MicIn;
    Slider LineIn;
    CheckBox MasterMute;
    CheckBox WaveMute;
    CheckBox LinePlayMute;
    CheckBox micPlayMute;
    CheckBox chk20Db;
    CheckBox chkNoMon;
    OptionButton chkmic;
    OptionButton chkline;
    CommandButton Command1;
    CommandButton cmdOk;
    Label lblPlay;    // name of the playback mixer
    Label lblRecord;  // name of the record mixer
    // Captions of the sliders; disabled together with them.
    Label lblMaster;
    Label lblWave;
    Label lblLine;
    Label lblPlayMic;
    Label lblMicrophone;
    Label lblLineRec;

protected:
    void Form_Load() override;
    void Form_Activate() override;
    void Form_QueryUnload() override;

private:
    void HandleControls();
    void Move(MixerControl& mixer, MixerLocator& entry, const Slider& slider);
    void Set(MixerControl& mixer, const MixerLocator& entry, std::int16_t value, std::int16_t channels);
    void SelectSource(MixerLocator& chosen, MixerLocator& other, OptionButton& otherButton);
    void Display(MixerControl& mixer, MixerLocator& entry, Slider& slider, Label& label);
    void Display(MixerControl& mixer, MixerLocator& entry, CheckBox& box);
    void Display(MixerControl& mixer, MixerLocator& entry, OptionButton& button);

    LegacyMixer& mixer_;
    FormPlaces& places_;
};

}  // namespace sonavex
