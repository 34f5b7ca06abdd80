#pragma once

#include <QWidget>

#include "support/CardWorld.h"
#include "support/QtWait.h"
#include "ui/MixerDialogs.h"

namespace sonavex {

// The real dialogs and forms over the simulated card's mixer, after the start.
struct MixerRig : CardWorld<> {
    explicit MixerRig(std::int32_t osMajorVersion, const std::vector<MixerFunction>& missing = {}) {
        desktop.majorVersion = osMajorVersion;
        for (const MixerFunction function : missing) hardware.Remove(function);
        const std::string name = SimulatedSoundSystem::kDescription;
        mixers.PointMixersAt(name, name);
        if (osMajorVersion >= 6) mixers.ReopenSoundCard(name, name);
        mixers.CaptureAndApplySaved(osMajorVersion >= 6);
        mixers.SetUpSoundControls();
    }
    // Delivers the changes of the mixer and shows them.
    void Settle() {
        loop.DeliverSignals();
        sonavex::Settle();
    }

    HandlerGuard guard{dialogs, errorLog, ending};
    QWidget parent;
    ui::MixerDialogs windows{mixers, guard, parent};
};

}  // namespace sonavex
