#pragma once

#include <alsa/asoundlib.h>

#include <string>
#include <vector>

#include "core/ports/SoundSystem.h"

namespace sonavex {

// Begins the identifiers of ALSA devices, before the name of the PCM.
inline constexpr const char* kAlsaPrefix = "alsa:";

struct AlsaDevice {
    SoundDeviceInfo info;
    std::string pcm;          // name that libasound knows it by
    bool converting = false;  // its definition holds plugins that may change samples

    // A device of a card, as against one that the user's configuration defines.
    bool Hardware() const { return pcm.starts_with("hw:"); }
};

// What leads straight to a card in that direction: the devices of the cards first, then the PCMs
// that the user's configuration defines. Not what leads to a sound server, to a file or to nothing.
// Empty when there is none. User-interface thread only.
std::vector<AlsaDevice> ListAlsaDevices(snd_pcm_stream_t direction);

// The device of that identifier, for an empty one the first. Throws kNoDriver.
AlsaDevice FindAlsaDevice(snd_pcm_stream_t direction, const std::string& identifier);

}  // namespace sonavex
