#pragma once

#include <cstdint>

#include "core/mixer/MixerControl.h"

namespace sonavex {

// The selectors of a mixer function and its value when it was last read. The destination is -1 when the
// card does not have the function.
struct MixerLocator {
    std::int16_t Line = -1;
    std::int16_t Destination = -1;
    std::int16_t Control = -1;
    float Value = -1.0F;  // percent for a level, 0 or 1 for a switch

    bool Available() const noexcept { return Destination != -1; }
    friend bool operator==(const MixerLocator&, const MixerLocator&) = default;
};

// All functions that the older mixer dialog shows.
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

// The two mixers of the older generation and the functions found on them.
struct LegacyMixer {
    MixerControl& OutputMixer;
    MixerControl& InputMixer;
    MixerLocatorTable MixerLocators{};
    // Set by the first write to a mixer.
    bool MixerChanged = false;
};

// Sets all three selectors to the located control.
void SelectLocated(MixerControl& mixer, const MixerLocator& entry);

// Returns the entry with its present value: percent for a level, the raw value for anything else. The
// result is not available when the entry was not located or its value is outside the control's range.
MixerLocator ReadLocated(MixerControl& mixer, const MixerLocator& entry);

// Searches both mixers by ascending destination and control index. A function is located at its first
// matching control that can be read.
void SetUpSoundControls(LegacyMixer& mixer);

}  // namespace sonavex
