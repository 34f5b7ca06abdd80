#pragma once

#include <alsa/asoundlib.h>

#include <string>

namespace sonavex {

// What lies between a PCM of libasound and the card.
enum class AlsaPath {
    kIndirect,   // a sound server, other programs, a file or nothing: not an access to a card
    kDirect,     // nothing that changes samples
    kConverting  // plugins that may change samples
};

// libasound's configuration as its files are now: the system's, the user's, or the one that
// ALSA_CONFIG_PATH names. User-interface thread only.
class AlsaConfiguration {
public:
    // A configuration that cannot be read is an empty one.
    AlsaConfiguration();
    ~AlsaConfiguration();
    AlsaConfiguration(const AlsaConfiguration&) = delete;
    AlsaConfiguration& operator=(const AlsaConfiguration&) = delete;

    struct Pcm {
        AlsaPath path = AlsaPath::kIndirect;
        std::string type;  // of the definition, "hw" for example
    };
    // Of the PCM of that name, with its arguments; indirect when it is not defined or has nothing for
    // this direction.
    Pcm Find(const std::string& name, snd_pcm_stream_t direction) const;

private:
    AlsaPath PathOf(const std::string& name, snd_pcm_stream_t direction, int depth) const;
    AlsaPath PathOf(snd_config_t* definition, snd_pcm_stream_t direction, int depth) const;
    AlsaPath PathOfSlave(snd_config_t* slave, snd_pcm_stream_t direction, int depth) const;

    snd_config_t* top_ = nullptr;
    snd_config_update_t* update_ = nullptr;
};

}  // namespace sonavex
