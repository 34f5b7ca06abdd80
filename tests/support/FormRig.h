#pragma once

#include <string>

#include "platform/simulated/SimulatedSoundSystem.h"
#include "support/World.h"

namespace sonavex {

// The main form on the stepped simulated card.
class FormRig : public World {
public:
    FormRig() { form.Frame.SetSize(980, 640); }

    // Captures and processes this number of blocks.
    void Step(int blocks) {
        for (int i = 0; i < blocks; ++i) {
            card.Card().Step(2048);
            loop.DeliverSignals();
        }
    }
    const std::string& Thd() const { return form.Instrument.Meter.Controls.lblThd.Caption(); }

    SimulatedSoundSystem card{loop, SimulatedSoundSystem::Pace::kStepped};
    frmMain form{On(card)};
};

}  // namespace sonavex
