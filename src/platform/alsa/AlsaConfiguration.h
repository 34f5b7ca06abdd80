#pragma once

#include <alsa/asoundlib.h>

#include <string>

namespace sonavex {

// The path from a PCM of libasound to the card.
enum class AlsaPath {
    kIndirect,   // leads to a sound server, other programs, a file or nothing, not to a card
    kDirect,     // leads to a card, and samples pass unchanged
    kConverting  // leads to a card through plugins that may change samples
};

// libasound's configuration, read from the files of the system and the user, or from the one that
// ALSA_CONFIG_PATH names.
class AlsaConfiguration {
public:
    // Reads the files. A configuration that cannot be read is empty.
    AlsaConfiguration();
    ~AlsaConfiguration();
    AlsaConfiguration(const AlsaConfiguration&) = delete;
    AlsaConfiguration& operator=(const AlsaConfiguration&) = delete;

    struct Pcm {
        AlsaPath path = AlsaPath::kIndirect;
        std::string type;  // type of the definition, "hw" for example
    };
    // The PCM with this name, which may include arguments. kIndirect when it is not defined, or not for this
    // direction.
    Pcm Find(const std::string& name, snd_pcm_stream_t direction) const;

private:
    AlsaPath PathOf(const std::string& name, snd_pcm_stream_t direction, int depth) const;
    AlsaPath PathOf(snd_config_t* definition, snd_pcm_stream_t direction, int depth) const;
    AlsaPath PathOfSlave(snd_config_t* slave, snd_pcm_stream_t direction, int depth) const;

    snd_config_t* top_ = nullptr;
    snd_config_update_t* update_ = nullptr;
};

}  // namespace sonavex
