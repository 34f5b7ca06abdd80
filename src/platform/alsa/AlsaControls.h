#pragma once

#include <alsa/asoundlib.h>

#include <string>

namespace sonavex {

// The name of libasound's control ("hw:PCH") that holds the mixer of the card of a PCM ("hw:CARD=PCH,DEV=0",
// "hw:1,0"). Empty for a PCM that does not name a card.
std::string AlsaControlOfPcm(const std::string& pcm);

// The same for the device with this description or lasting name. Empty when there is no such device.
std::string AlsaControlOf(snd_pcm_stream_t direction, const std::string& name);

// The device's lasting name, as MixerHardware::LastingName defines it.
std::string AlsaLastingName(snd_pcm_stream_t direction, const std::string& name);

}  // namespace sonavex
