#pragma once

#include <string>
#include <vector>

#include "core/ports/DeviceLevels.h"
#include "core/ports/MixerJournal.h"

namespace sonavex {

// Keeps the user's own levels of the devices in use, as they were before the instrument touched them,
// and gives them back. A journal holds them meanwhile, so that a run that was killed is made good by
// the next one. User-interface thread only.
class LevelKeeper {
public:
    // Both must outlive this object.
    LevelKeeper(DeviceLevels& levels, MixerJournal& journal) noexcept : levels_(levels), journal_(journal) {}

    // These devices are in use from now on: devices no longer used get their levels back, new ones are
    // remembered. The first call also gives back what a killed run left behind. Call it before the
    // levels of a new device are changed. True when a device has been remembered.
    bool Use(const std::vector<MixerDevice>& devices);

    // All devices get their levels back and are no longer in use. What belongs to a device that is not
    // there waits in the journal for a later run.
    void GiveBack();

    // Whether a device in use of this side is there.
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
    bool Restored(const Kept& kept);
    bool Remember(const MixerDevice& device);

    DeviceLevels& levels_;
    MixerJournal& journal_;
    std::vector<Kept> inUse_;
    std::vector<Kept> waiting_;  // of devices that are not there
    bool journalRead_ = false;
};

}  // namespace sonavex
