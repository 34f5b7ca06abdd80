#pragma once

#include <algorithm>
#include <initializer_list>

#include "support/PanelRig.h"

namespace sonavex {

// A panel with three memory tones: a looping sweep from 100 to 1000 Hz in 500 ms, a square wave of
// 200 Hz and a sine of 300 Hz. The current signal is that sine.
class MemoryRig : public PanelRig {
public:
    MemoryRig() {
        Init();
        SetSweep(100, 1000, 500);
        signal.chkLoop.UserSets(true);
        Add();
        MoveTo(signal.sldSweepTime, 0);
        MoveTo(signal.sldStartFreq, 200);
        signal.cmbType.UserSelects(1);
        Add();
        MoveTo(signal.sldStartFreq, 300);
        signal.cmbType.UserSelects(0);
        Add();
        log.Clear();
    }
    // Whether all controls of the current signal, except those of a sweep, have this enabled state.
    bool SignalEnabled(bool enabled) const {
        const std::initializer_list<const Control*> controls{&signal.cmbType,      &signal.sldStartFreq,
                                                             &signal.txtGenFreq,   &signal.sldSweepTime,
                                                             &signal.txtSweepTime, &signal.Command1};
        return std::all_of(controls.begin(), controls.end(),
                           [enabled](const Control* control) { return control->Enabled() == enabled; });
    }
    bool SweepEnabled(bool enabled) const {
        return signal.sldEndFreq.Enabled() == enabled && signal.txtGenEndFreq.Enabled() == enabled &&
               signal.chkLoop.Enabled() == enabled;
    }
};

}  // namespace sonavex
