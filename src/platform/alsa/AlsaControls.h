#pragma once

#include <alsa/asoundlib.h>

#include <string>

namespace sonavex {

// The control of libasound ("hw:PCH") that holds the mixer of the card behind a PCM of a card
// ("hw:CARD=PCH,DEV=0", "hw:1,0"); empty for any other PCM.
std::string AlsaControlOfPcm(const std::string& pcm);

// The same for the listed device of that description; empty when there is none.
std::string AlsaControlOf(snd_pcm_stream_t direction, const std::string& description);

}  // namespace sonavex
