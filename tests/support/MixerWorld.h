#pragma once

#include <map>
#include <string>

#include "core/mixer/SoundCardMixers.h"
#include "platform/plain/MemorySettingsStore.h"
#include "support/FakeMixerControl.h"
#include "support/FakePlaces.h"
#include "support/FormRig.h"
#include "support/MemoryVista.h"

namespace sonavex {

// Levels of devices in memory. Records "Restore SIDE NAME" for what is written.
class FakeLevels : public DeviceLevels {
public:
    explicit FakeLevels(CallLog& log) noexcept : log_(log) {}

    std::optional<std::string> Read(const MixerDevice& device) override {
        const auto found = devices.find(Key(device));
        if (found == devices.end()) return {};
        return found->second;
    }
    bool Write(const MixerDevice& device, const std::string& levels) override {
        const auto found = devices.find(Key(device));
        if (found == devices.end()) return false;
        if (found->second != levels) log_.Call("Restore", Key(device));
        found->second = levels;
        return takes;
    }
    void OnChange(std::function<void()> handler) override { changed = std::move(handler); }

    static std::string Key(const MixerDevice& device) {
        return (device.side == MixerSide::kPlayback ? "playback " : "capture ") + device.name;
    }
    // By side and name; a device that is not listed is not there.
    std::map<std::string, std::string> devices;
    bool takes = true;
    std::function<void()> changed;

private:
    CallLog& log_;
};

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

// The mixers with fakes all around. The card in memory records into the log.
struct MixerWorld {
    explicit MixerWorld(std::int32_t osMajorVersion) {
        desktop.majorVersion = osMajorVersion;
        levels.devices = {{"playback Speakers", "Master\t10 20\n"}, {"capture Microphone", "Capture\t5\n"}};
        output.devices = {
            {"Speakers",
             {{FakeMixerControl::Level("Master Volume", 100), FakeMixerControl::Switch("Master Mute")}}}};
        input.devices = {{"Other", {}}, {"Micro", {{FakeMixerControl::Level("Microphone Volume", 200)}}}};
    }
    SoundCardMixers::World World() {
        return {store, desktop, dialogs, places, output, input, card, levels, journal};
    }
    std::vector<std::string> CallsWith(const std::string& prefix) const {
        std::vector<std::string> found;
        for (const std::string& line : log.Lines())
            if (line.starts_with(prefix)) found.push_back(line);
        return found;
    }

    CallLog log;
    MemorySettingsStore store;
    FakeDesktop desktop{log};
    RecordingDialogs dialogs{log};
    FakePlaces places{log};
    FakeMixerControl output;
    FakeMixerControl input;
    MemoryVista card{log};
    FakeLevels levels{log};
    MemoryJournal journal;
};

}  // namespace sonavex
