#pragma once

#include <cstdint>

#include "core/ports/MixerBinding.h"

namespace sonavex {

// Numbers of the mixer devices in use, counted from 0; -1 for none.
struct MixerDeviceNumbers {
    std::int32_t PlayMixerDeviceNumber = -1;
    std::int32_t MixerDeviceNumber = -1;  // of the capture side
};

// The mixers from start-up to shutdown, as the main form uses them.
class MixerSession : public MixerBinding {
public:
    virtual MixerDeviceNumbers DeviceNumbers() const = 0;

    // Start-up, after the devices have been bound: remembers the user's own levels, then applies the
    // levels saved by the previous run. newerGeneration selects the mixers for the rest of the run.
    virtual void CaptureAndApplySaved(bool newerGeneration) = 0;

    // Finds the controls that the dialogs show.
    virtual void SetUpSoundControls() = 0;

    // Shows the generation's dialog of the sound card's levels.
    virtual void ShowSoundCard() = 0;

    // Closes all open mixer dialogs.
    virtual void UnloadDialogs() = 0;

    // Shutdown: saves the present levels and restores the user's own.
    virtual void SaveAndRestoreInitial() = 0;

    // Immediate end: restores the user's own levels and saves nothing.
    virtual void RestoreInitial() = 0;
};

}  // namespace sonavex
