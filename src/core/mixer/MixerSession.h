#pragma once

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

    // Closes the dialogs that are open.
    virtual void UnloadDialogs() = 0;

    // Shutdown: saves the present levels and gives the user's own back.
    virtual void SaveAndRestoreInitial() = 0;

    // The end at once: gives the user's own levels back and saves nothing.
    virtual void RestoreInitial() = 0;
};

}  // namespace sonavex
