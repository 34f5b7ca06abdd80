#pragma once

#include <string>

#include "core/mixer/SoundCardMixers.h"
#include "support/FakePlaces.h"
#include "support/MemoryHardware.h"
#include "support/World.h"

namespace sonavex {

// Levels that differ from those of the card in memory, as an earlier run saved them.
inline constexpr const char* kSavedVistaLine = "11,True,12,False,13,False,True,False,1,2,3,14,15,";

class MemoryJournal : public MixerJournal {
public:
    std::string Read() override { return text; }
    void Write(const std::string& newText) override {
        text = newText;
        ++writes;
    }
    std::string text;
    int writes = 0;
};

// What SoundCardMixers needs, with the devices "Speakers" and "Microphone" in memory. On the older
// generation these have only a master and a microphone level, in steps of 1/65535.
struct MixerWorld : WorldOf<VirtualEventLoop, MemorySettingsStore, NoMixers> {
    explicit MixerWorld(std::int32_t osMajorVersion) {
        desktop.majorVersion = osMajorVersion;
        hardware.playback["Speakers"] = Playback();
        hardware.capture["Microphone"] = Capture();
    }
    bool Newer() const { return desktop.majorVersion >= 6; }
    MemoryHardware::Controls Playback() const {
        if (Newer()) return MemoryCardPlayback();
        return {{MixerFunction::kMasterVolume, MemoryHardware::Level({100, 100}, 65535)},
                {MixerFunction::kMasterMute, MemoryHardware::Switch({0, 0})}};
    }
    MemoryHardware::Controls Capture() const {
        if (Newer()) return MemoryCardCapture();
        return {{MixerFunction::kMicRecord, MemoryHardware::Level({200, 200}, 65535)}};
    }
    SoundCardMixers::Needs Needs() { return {store, dialogs, places, hardware, journal}; }
    std::vector<std::int32_t>& Values(MixerFunction function) {
        auto& side = SideOf(function) == MixerSide::kPlayback ? hardware.playback.at("Speakers")
                                                              : hardware.capture.at("Microphone");
        return side.at(function).values;
    }

    FakePlaces places{log};
    MemoryHardware hardware{log};
    MemoryJournal journal;
};

}  // namespace sonavex
