#pragma once

#include "core/mixer/MixerSession.h"

namespace sonavex {

// The mixers of a system that has none: nothing to remember, nothing to show, nothing to give back.
class AbsentMixers : public MixerSession {
public:
    void PointMixersAt(const std::string&, const std::string&) override {}
    void ReopenSoundCard(const std::string&, const std::string&) override {}
    void CaptureAndApplySaved() override {}
    void SetUpSoundControls() override {}
    void UnloadDialogs() override {}
    void SaveAndRestoreInitial() override {}
    void RestoreInitial() override {}
};

}  // namespace sonavex
