#pragma once

#include "core/controls/Commands.h"
#include "core/controls/Controls.h"
#include "core/controls/ModelessForm.h"
#include "core/mixer/QuenbyVista.h"

namespace sonavex {

// The dialog of the card's tone controls, in whole decibels.
class frmVistaTone : public ModelessForm {
public:
    // The library must outlive the form.
    explicit frmVistaTone(QuenbyVista& library);

    // Reads the range and the present gains into the controls.
    void RefreshToneControls();

    void sldBass_Change();
    void sldMid_Change();
    void sldTreble_Change();
    void cmdClose_Click();

    Slider sldBass;
    Slider sldMid;
    Slider sldTreble;
    Label lblBass;
    Label lblMid;
    Label lblTreble;
    Label lblBassValue;
    Label lblMidValue;
    Label lblTrebleValue;
    CommandButton cmdClose;

protected:
    void Form_Load() override;

private:
    QuenbyVista& library_;
};

}  // namespace sonavex
