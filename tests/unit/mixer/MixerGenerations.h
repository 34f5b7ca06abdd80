#pragma once

#include <string>
#include <vector>

#include "core/mixer/LegacyMixerState.h"
#include "support/MixerWorld.h"

namespace sonavex {

// The mixers of the newer generation, bound to the devices in memory.
struct NewerWorld : MixerWorld {
    NewerWorld() : MixerWorld(10) {}
    void Bind() {
        mixers.PointMixersAt("Speakers", "Microphone");
        mixers.ReopenSoundCard("Speakers", "Microphone");
    }
    void Start() {
        Bind();
        mixers.CaptureAndApplySaved(true);
        mixers.SetUpSoundControls();
    }
    std::string Line() { return VistaSound::GetVistaMixerState(mixers.Library); }
    bool Bound() {
        std::int32_t status = -1;
        static_cast<void>(mixers.Library.GetMasterVolume(status));
        return status == 0;
    }
    std::vector<std::int32_t>& Master() { return Values(MixerFunction::kMasterVolume); }
    SoundCardMixers mixers{Needs()};
};

// The mixers of the older generation.
struct OlderWorld : MixerWorld {
    OlderWorld() : MixerWorld(5) {}
    void Start() {
        mixers.PointMixersAt("Speakers", "Microphone");
        mixers.CaptureAndApplySaved(false);
        mixers.SetUpSoundControls();
    }
    std::string Output() { return GetLegacyMixerState(mixers.OutputMixer); }
    std::string Input() { return GetLegacyMixerState(mixers.InputMixer); }
    SoundCardMixers mixers{Needs()};
};

}  // namespace sonavex
