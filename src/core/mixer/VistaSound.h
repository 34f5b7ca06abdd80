#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "core/ports/MixerControl.h"
#include "core/ports/QuenbyVista.h"

namespace sonavex {

// Where the speaker's controls are on the output mixer; -1 marks one that the mixer does not have.
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

// The whole mixer of a card as one line of text: thirteen fields, each followed by a comma. Levels are
// whole numbers, switches "True" or "False", tones decibels.
namespace VistaSound {

// Master volume and mute, line playback level and mute, microphone playback level and mute, boost, no
// monitor, bass, mid range, treble, microphone record volume, line record volume.
std::string GetVistaMixerState(QuenbyVista& library);

// The line to save: as above, but a control that the card lacks keeps its field of the line saved before,
// where that has one, so that a level that nobody has set is not saved as one.
std::string StateToSave(QuenbyVista& library, std::string_view savedBefore);

// Puts a state line on the card, field by field. Errors 5 (a comma is missing), 13 (a field that does
// not convert, or is empty) and 6 (out of range) after the fields before it have been applied.
void SetVistaMixerState(QuenbyVista& library, std::string_view line);

// Searches the output mixer for the controls whose names hold "VOL" and "MUT"; the last one of each
// wins.
SpeakerLocators SetUpVistaSoundControls(MixerControl& outputMixer);

}  // namespace VistaSound
}  // namespace sonavex
