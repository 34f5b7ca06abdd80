#pragma once

#include "core/controls/Commands.h"
#include "core/controls/Controls.h"
#include "core/controls/ModelessForm.h"
#include "core/ports/QuenbyVista.h"

namespace sonavex {

// The card's own tone controls, in whole decibels. User-interface thread only.
class frmVistaTone : public ModelessForm {
public:
    // The library must outlive the form.
    explicit frmVistaTone(QuenbyVista& library);

    // Reads the gains from the card into the controls.
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
