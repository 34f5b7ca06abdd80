#pragma once

#include "core/mixer/DeviceLevels.h"
#include "core/mixer/HardwareMixerControl.h"
#include "core/mixer/QuenbyVista.h"
#include "fuzz/FuzzTarget.h"
#include "platform/simulated/SimulatedMixer.h"
#include "support/VirtualEventLoop.h"

namespace sonavex::fuzz {

// The simulated card's mixer and everything built on it.
struct MixerBench {
    // Each bit of `lacking` removes a control, in the order of MixerFunction.
    explicit MixerBench(std::uint32_t lacking = 0) {
        for (int function = 0; function <= static_cast<int>(MixerFunction::kLineSource); ++function)
            if (((lacking >> static_cast<unsigned>(function)) & 1U) != 0)
                mixer.Remove(static_cast<MixerFunction>(function));
        output.DeviceCount();
        input.DeviceCount();
        output.SelectDevice(0);
        input.SelectDevice(0);
        std::int32_t status = 0;
        library.OpenSoundCard(name, name, "", status);
    }

    // Requires every control's value to be inside its range.
    void Check() {
        CheckLibrary();
        for (const MixerSide side : {MixerSide::kPlayback, MixerSide::kCapture}) {
            const auto device = mixer.Open({side, name});
            Require(device != nullptr, "the mixer is there");
            for (const DeviceMixer::RawEntry& entry : device->RawEntries()) {
                const RawRange range = entry.element->Range();
                for (const std::int32_t value : entry.element->Read())
                    Require(value >= range.minimum && value <= range.maximum, "a control is in its range",
                            entry.key);
            }
        }
    }

    const std::string name = SimulatedSoundSystem::kDescription;
    VirtualEventLoop loop;
    SimulatedSoundSystem card{loop, SimulatedSoundSystem::Pace::kStepped};
    SimulatedMixer mixer{card, loop};
    HardwareMixerControl output{mixer, MixerSide::kPlayback};
    HardwareMixerControl input{mixer, MixerSide::kCapture};
    QuenbyVista library{mixer};
    DeviceLevels levels{mixer};

private:
    void CheckLibrary() {
        std::int32_t status = 0;
        for (const std::int32_t level : {library.GetMasterVolume(status), library.GetLinePlayBack(status),
                                         library.GetMicPlayBack(status), library.GetMicRecordVolume(status),
                                         library.GetLineRecordVolume(status)})
            Require(level >= 0 && level <= 100, "a level is a percentage");
        double minimumDb = 0.0;
        double maximumDb = 0.0;
        library.GetEQRange(minimumDb, maximumDb, status);
        for (const double gainDb :
             {library.GetBass(status), library.GetMidRange(status), library.GetTreble(status)})
            Require(gainDb >= minimumDb && gainDb <= maximumDb, "a tone is in its range");
    }
};

}  // namespace sonavex::fuzz
