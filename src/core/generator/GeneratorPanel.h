#pragma once

#include <cstdint>
#include <functional>
#include <utility>

#include "core/controls/Commands.h"
#include "core/generator/CurrentSignal.h"
#include "core/generator/GeneratorEnvironment.h"
#include "core/generator/MemoryTones.h"
#include "core/generator/PlayInterlock.h"
#include "core/generator/SignalControls.h"

namespace sonavex {

// The generator as the main form has it: its controls, the current signal and the memory tones.
// User-interface thread only.
class GeneratorPanel {
public:
    // mnuPrint and chkMuteOutput belong to the main form. All must outlive this object.
    GeneratorPanel(const GeneratorEnvironment& environment, MenuItem& mnuPrint,
                   const CheckBox& chkMuteOutput);

    SignalControls Signal;
    MemoryControls Memory;

    // Start-up, after the frequency sliders got their limits: everything as stored. Stores the level.
    // Settings that do not convert or do not fit raise an error that names the key.
    void InitGenerator();

    // Everything the generator stores, anew.
    void WriteMemoryToRegistry() { memory_.WriteMemoryToRegistry(); }

    // Presses each start button that is a stop button now.
    void StopPlaying();

    // After a change of the sampling rate: shows the frequencies that the new limits clamped.
    void FollowLimits() { current_.FollowLimits(); }

    // Given the level at every change, hundredths of a dB; passes it on to the playback buffer, if
    // there is one.
    void SetPlaybackVolume(std::function<void(std::int32_t)> hook) {
        current_.SetPlaybackVolume = std::move(hook);
    }

    bool CheckEntries() { return current_.CheckEntries(); }
    CurrentSignal& Current() noexcept { return current_; }
    MemoryTones& Tones() noexcept { return memory_; }

private:
    GeneratorEnvironment env_;
    MenuItem& mnuPrint_;
    PlayInterlock interlock_;
    CurrentSignal current_;
    MemoryTones memory_;
};

}  // namespace sonavex
