#pragma once

#include <cstdint>
#include <functional>
#include <utility>

#include "core/controls/Commands.h"
#include "core/generator/CurrentSignal.h"
#include "core/generator/GeneratorNeeds.h"
#include "core/generator/MemoryTones.h"
#include "core/generator/PlayInterlock.h"
#include "core/generator/SignalControls.h"

namespace sonavex {

// The generator's controls on the main form, with the current signal and the memory tones.
class GeneratorPanel {
public:
    // mnuPrint and chkMuteOutput belong to the main form. All referenced objects must outlive this object.
    GeneratorPanel(const GeneratorNeeds& needs, MenuItem& mnuPrint, const CheckBox& chkMuteOutput);

    SignalControls Signal;
    MemoryControls Memory;

    // At start-up, after the limits of the frequency sliders are set: restores everything stored. Stores the
    // level. A setting that does not convert or fit raises an error that names the key.
    void InitGenerator();

    // Stores all settings of the generator.
    void WriteMemoryToRegistry() { memory_.WriteMemoryToRegistry(); }

    // While something plays, presses each start button that currently stops playing.
    void StopPlaying();

    // Call after a change of the sampling rate: shows the frequencies that the new limits have clamped.
    void FollowLimits() { current_.FollowLimits(); }

    // The hook is called with the level (hundredths of a dB) at every change, to set the volume of the
    // playback buffer.
    void SetPlaybackVolume(std::function<void(std::int32_t)> hook) {
        current_.SetPlaybackVolume = std::move(hook);
    }

    bool CheckEntries() { return current_.CheckEntries(); }
    CurrentSignal& Current() noexcept { return current_; }
    MemoryTones& Tones() noexcept { return memory_; }

private:
    GeneratorNeeds needs_;
    MenuItem& mnuPrint_;
    PlayInterlock interlock_;
    CurrentSignal current_;
    MemoryTones memory_;
};

}  // namespace sonavex
