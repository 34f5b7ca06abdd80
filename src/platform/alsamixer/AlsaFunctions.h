#pragma once

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "platform/alsamixer/AlsaElements.h"

namespace sonavex {

// Which simple elements of a card serve which function, by the names that drivers give them.
class AlsaFunctions {
public:
    // deviceName decides, where a card does not tell which input is recorded: a microphone when it
    // holds MIC in any letter case, else the line input.
    AlsaFunctions(AlsaCard card, MixerSide side, const std::string& deviceName);

    MixerElement* Find(MixerFunction function);
    bool Serves(MixerFunction function);
    std::vector<DeviceMixer::RawEntry> RawEntries();

private:
    using Names = std::vector<const char*>;

    snd_mixer_elem_t* Named(const Names& names, bool (*has)(snd_mixer_elem_t*)) const;
    snd_mixer_elem_t* NameHolding(const Names& parts, bool (*has)(snd_mixer_elem_t*)) const;
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
    bool sharedMic_ = false;  // the record level is that of whatever is selected
    bool sharedLine_ = false;
    std::map<MixerFunction, std::unique_ptr<MixerElement>> functions_;
    struct Raw {
        std::string key;
        std::unique_ptr<MixerElement> element;
    };
    std::vector<Raw> raw_;
};

}  // namespace sonavex
