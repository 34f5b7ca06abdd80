#pragma once

#include <cstdint>

#include "core/audio/MixerBinding.h"

namespace sonavex {

// The mixers over the life of the program: what they were at start, what was saved of them, and their
// dialogs. User-interface thread only.
class MixerSession : public MixerBinding {
public:
    // Start-up: remembers the user's own levels, then applies those saved last.
    virtual void CaptureAndApplySaved() = 0;

    // Finds the controls behind the dialogs; on the older generation also the table of lines.
    virtual void SetUpSoundControls() = 0;

    // Shows the generation's dialog of the sound card's levels.
    virtual void ShowSoundCard() = 0;

    // Closes the dialogs that are open.
    virtual void UnloadDialogs() = 0;

    // Shutdown: saves the present levels and gives the user's own back.
    virtual void SaveAndRestoreInitial() = 0;

    // The end at once: gives the user's own levels back and saves nothing.
    virtual void RestoreInitial() = 0;

    // Numbers of the mixer devices in use, counted from 0; -1 for none.
    std::int32_t PlayMixerDeviceNumber = -1;
    std::int32_t MixerDeviceNumber = -1;
};

}  // namespace sonavex
