#include "core/mixer/frmVistaTone.h"

#include <algorithm>

#include "core/text/Numbers.h"

namespace sonavex {
namespace {

void ShowValue(const Slider& slider, Label& value) {
    value.SetCaption(CStr(slider.Value()) + " dB");
}

void ShowGain(Slider& slider, Label& label, Label& value, double gainDb, std::int32_t status) {
    slider.SetValue(CLng(gainDb));
    ShowValue(slider, value);
    const bool available = status == 0;
    slider.SetEnabled(available);
    label.SetEnabled(available);
    value.SetEnabled(available);
}

}  // namespace

frmVistaTone::frmVistaTone(QuenbyVista& library)
    : ModelessForm("frmVistaTone", "Tone Controls"), library_(library) {
    lblBass.SetCaption("Bass :");
    lblMid.SetCaption("Mid Range :");
    lblTreble.SetCaption("Treble :");
    sldBass.Change.Handle([this] { sldBass_Change(); });
    sldMid.Change.Handle([this] { sldMid_Change(); });
    sldTreble.Change.Handle([this] { sldTreble_Change(); });
    cmdClose.Click.Handle([this] { cmdClose_Click(); });
}

void frmVistaTone::Form_Load() {
    RefreshToneControls();
}

void frmVistaTone::RefreshToneControls() {
    double minimumDb = 0.0;
    double maximumDb = 0.0;
    std::int32_t status = 0;
    library_.GetEQRange(minimumDb, maximumDb, status);
    const std::int32_t minimum = CLng(minimumDb);
    for (Slider* slider : {&sldBass, &sldMid, &sldTreble})
        slider->SetRange(minimum, std::max(minimum, CLng(maximumDb)));
    const double bassDb = library_.GetBass(status);
    ShowGain(sldBass, lblBass, lblBassValue, bassDb, status);
    const double midDb = library_.GetMidRange(status);
    ShowGain(sldMid, lblMid, lblMidValue, midDb, status);
    const double trebleDb = library_.GetTreble(status);
    ShowGain(sldTreble, lblTreble, lblTrebleValue, trebleDb, status);
}

void frmVistaTone::sldBass_Change() {
    std::int32_t status = 0;
    library_.SetBass(sldBass.Value(), status);
    ShowValue(sldBass, lblBassValue);
}

void frmVistaTone::sldMid_Change() {
    std::int32_t status = 0;
    library_.SetMidRange(sldMid.Value(), status);
    ShowValue(sldMid, lblMidValue);
}

void frmVistaTone::sldTreble_Change() {
    std::int32_t status = 0;
    library_.SetTreble(sldTreble.Value(), status);
    ShowValue(sldTreble, lblTrebleValue);
}

void frmVistaTone::cmdClose_Click() {
    Unload();
}

}  // namespace sonavex
