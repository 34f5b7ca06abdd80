#pragma once

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "platform/alsamixer/AlsaElements.h"

namespace sonavex {

// Assigns a card's simple elements to mixer functions by the names that drivers commonly use.
class AlsaFunctions {
public:
    // When the card does not report which input is recorded, deviceName decides: the microphone when it
    // contains MIC in any letter case, otherwise the line input.
    AlsaFunctions(AlsaCard card, MixerSide side, const std::string& deviceName);

    MixerElement* Find(MixerFunction function);
    bool Serves(MixerFunction function);
    std::vector<DeviceMixer::RawEntry> RawEntries();

private:
    using Names = std::vector<const char*>;

    snd_mixer_elem_t* Named(const Names& names, bool (*has)(snd_mixer_elem_t*)) const;
    snd_mixer_elem_t* NameContaining(const Names& parts, bool (*has)(snd_mixer_elem_t*)) const;
    void Add(MixerFunction function, std::unique_ptr<MixerElement> element);
    void Keep(snd_mixer_elem_t* element, const char* kind, std::unique_ptr<MixerElement> raw);
    void AddLevel(MixerFunction level, MixerFunction mute, snd_mixer_elem_t* element);
    void AddTone(MixerFunction tone, const Names& names);
    void AddPlayback();
    void AddRecordLevels();
    void AddSources();
    void AddInputSwitches();
    void AddBoost();
    void AddMonitor();

    AlsaCard card_;
    bool namedMicrophone_;
    // The record level is shared: it belongs to the selected source.
    bool sharedMic_ = false;
    bool sharedLine_ = false;
    std::map<MixerFunction, std::unique_ptr<MixerElement>> functions_;
    struct Raw {
        std::string key;
        std::unique_ptr<MixerElement> element;
    };
    std::vector<Raw> raw_;
};

}  // namespace sonavex
