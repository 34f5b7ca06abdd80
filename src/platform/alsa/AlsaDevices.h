#pragma once

#include <alsa/asoundlib.h>

#include <string>
#include <vector>

#include "core/ports/SoundSystem.h"

namespace sonavex {

// Prefix of the identifiers of ALSA devices. The name of the PCM follows.
inline constexpr const char* kAlsaPrefix = "alsa:";

struct AlsaDevice {
    SoundDeviceInfo info;
    std::string pcm;          // its name in libasound
    bool converting = false;  // its definition holds plugins that may change samples

    // True for a device of a card, false for a PCM that the user's configuration defines.
    bool Hardware() const { return pcm.starts_with("hw:"); }
};

// The devices that lead directly to a card: first the devices of the cards, then the PCMs that the user's
// configuration defines. PCMs that lead to a sound server, to a file or to nothing are left out.
std::vector<AlsaDevice> ListAlsaDevices(snd_pcm_stream_t direction);

// The device with this identifier, or the first device for an empty one. Throws kNoDriver when there is none.
AlsaDevice FindAlsaDevice(snd_pcm_stream_t direction, const std::string& identifier);

}  // namespace sonavex
