#pragma once

#include <cstdint>

#include "core/ports/MixerControl.h"

namespace sonavex {

// Where a function of the mixer is, and its value when it was last read. A destination of -1 marks a
// function that the card does not have.
struct MixerLocator {
    std::int16_t Line = -1;
    std::int16_t Destination = -1;
    std::int16_t Control = -1;
    float Value = -1.0F;  // percent for a level, 0 or 1 for a switch

    bool Available() const noexcept { return Destination != -1; }
    friend bool operator==(const MixerLocator&, const MixerLocator&) = default;
};

// Every function that the older mixer dialog shows.
struct MixerLocatorTable {
    // On the playback mixer.
    MixerLocator MasterVolume;
    MixerLocator MasterMute;
    MixerLocator WaveVolume;
    MixerLocator WaveMute;
    MixerLocator LineVolume;
    MixerLocator LineMute;
    MixerLocator MicVolume;
    MixerLocator MicMute;
    // On the record mixer.
    MixerLocator MicRecord;
    MixerLocator LineRecord;
    MixerLocator MicBoost;
    MixerLocator MonitorOff;
    MixerLocator MicSource;
    MixerLocator LineSource;
};

// The mixers of the older generation and what is known of them. User-interface thread only.
struct LegacyMixer {
    MixerControl& OutputMixer;
    MixerControl& InputMixer;
    MixerLocatorTable MixerLocators{};
    // A handler has written to a mixer.
    bool MixerChanged = false;
};

// Sets all three selectors to the located control.
void SelectLocated(MixerControl& mixer, const MixerLocator& entry);

// The entry with its present value: percent for a level, the raw value for anything else. Not available
// when it was not located, or when the value lies outside the control's own range.
MixerLocator ReadLocated(MixerControl& mixer, const MixerLocator& entry);

// Searches both mixers, destinations and controls ascending; the first match of a function that can be
// read wins.
void SetUpSoundControls(LegacyMixer& mixer);

}  // namespace sonavex
