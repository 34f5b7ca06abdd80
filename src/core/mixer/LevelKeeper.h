#pragma once

#include <map>
#include <string>
#include <utility>
#include <vector>

#include "core/mixer/DeviceLevels.h"
#include "core/ports/MixerJournal.h"

namespace sonavex {

// Saves the user's own levels of every device in use before the instrument changes them, and restores
// them. Until then a journal holds them, so that the next run restores the levels of a killed run.
class LevelKeeper {
public:
    // Both must outlive this object.
    LevelKeeper(DeviceLevels& levels, MixerJournal& journal) noexcept : levels_(levels), journal_(journal) {}

    // Replaces the devices in use: restores those that are no longer used and saves the levels of new ones.
    // Call it before changing the levels of a new device. The first call also restores the levels that a
    // killed run left in the journal. True when the levels of a device were saved. A device whose name has
    // changed meanwhile is the same device.
    bool Use(std::vector<MixerDevice> devices);

    // Restores all devices in use, which ends their use. The levels of an absent device stay in the journal
    // for a later run.
    void Restore();

    // Whether a device of this side is in use and present.
    bool Present(MixerSide side);

private:
    struct Kept {
        MixerDevice device;
        std::string levels;
    };

    static std::vector<Kept> Parse(const std::string& text);
    static std::string Text(const std::vector<Kept>& kept);
    void ReadJournal();
    void WriteJournal();
    bool TryRestore(const Kept& kept);
    bool Save(const MixerDevice& device);
    MixerDevice Lasting(const MixerDevice& device);

    DeviceLevels& levels_;
    MixerJournal& journal_;
    std::vector<Kept> inUse_;                                           // by lasting names
    std::vector<Kept> waiting_;                                         // of absent devices
    std::map<std::pair<MixerSide, std::string>, MixerDevice> lasting_;  // last known, by the names used
    bool journalRead_ = false;
};

}  // namespace sonavex
