#pragma once

#include <cstdint>

#include "core/controls/Commands.h"
#include "core/controls/Controls.h"
#include "core/dsp/display/MeasurementControls.h"
#include "core/dsp/modDSP.h"
#include "core/ports/Dialogs.h"
#include "core/settings/Settings.h"
#include "core/settings/SharedState.h"

namespace sonavex {

// The meter's options: automatic frequency, and the baseline, which is the sound card's own distortion that
// is subtracted from the percentages.
class Baseline {
public:
    Baseline(const SharedState& shared, Settings& settings, Dialogs& dialogs, modDSP::State& analysis,
             MeasurementControls& meter);

    CommandButton cmdBaseline;

    // At start-up: restores the check boxes and their effects. Stores nothing.
    void RestoreBoxes();

    void chkAuto_Click();
    void chkBaseline_Click();
    void cmdBaseline_Click();

    // Whether the measurement is locked and the applied baseline was captured at another frequency or
    // sampling rate. False if neither is known.
    bool CapturedElsewhere() const;

private:
    void ApplyAuto();
    void ApplyBaseline();

    const SharedState& shared_;
    Settings& settings_;
    Dialogs& dialogs_;
    modDSP::State& analysis_;
    MeasurementControls& meter_;
    std::int32_t capturedHz_ = 0;  // 0: not known
    std::int32_t capturedRate_ = 0;
};

}  // namespace sonavex
