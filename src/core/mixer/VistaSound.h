#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "core/mixer/MixerControl.h"
#include "core/mixer/QuenbyVista.h"

namespace sonavex {

// Selectors of the speaker's controls on the output mixer; -1 when the mixer lacks the control.
struct SpeakerLocators {
    std::int16_t SpeakerVolumeControl = -1;
    std::int16_t SpeakerVolumeDestination = -1;
    std::int16_t SpeakerVolumeLineInfo = -1;
    float SpeakerVolumeValue = -1.0F;
    std::int16_t SpeakerMuteControl = -1;
    std::int16_t SpeakerMuteDestination = -1;
    std::int16_t SpeakerMuteLineInfo = -1;
    float SpeakerMuteValue = -1.0F;
};

// The state of the newer mixer as one line of text: thirteen fields, each followed by a comma. Levels are
// whole percent, switches "True" or "False", tones decibels.
namespace VistaSound {

// The present state. The fields are master volume and mute, line playback level and mute, microphone
// playback level and mute, boost, no monitor, bass, mid range, treble, microphone record volume, line
// record volume.
std::string GetVistaMixerState(QuenbyVista& library);

// The state to save. A control that the card lacks keeps its field of savedBefore, because its default is not
// a setting of the user.
std::string StateToSave(QuenbyVista& library, std::string_view savedBefore);

// Applies a state line field by field. Errors: 5 (a comma is missing), 13 (a field is empty or does not
// convert), 6 (a number is out of range). The fields before the error stay applied.
void SetVistaMixerState(QuenbyVista& library, std::string_view line);

// Finds the last control whose name contains "VOL" and the last one whose name contains "MUT", in any
// letter case.
SpeakerLocators SetUpVistaSoundControls(MixerControl& outputMixer);

}  // namespace VistaSound
}  // namespace sonavex
