#pragma once

#include <cstdint>
#include <functional>

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

    SignalControls Controls;
    sonavex::MemoryControls MemoryControls;

    // At start-up, after the limits of the frequency sliders are set: restores everything stored. Stores the
    // level. A setting that does not convert or fit raises an error that names the key.
    void InitGenerator();

    // Stores all settings of the generator.
    void WriteMemoryToRegistry() { memory_.WriteMemoryToRegistry(); }

    // While something plays, presses each start button that currently stops playing. Also stops a stimulus.
    void StopPlaying();

    // While a stimulus plays, Command1 and cmdStartMemory are disabled.
    void ShowStimulus(bool playing) { interlock_.ShowStimulus(playing); }
    bool StimulusPlaying() const noexcept { return interlock_.StimulusPlaying(); }
    // Stops the stimulus at once. May be empty.
    std::function<void()> StopStimulus;

    // Call after a change of the sampling rate: shows the frequencies that the new limits have clamped.
    void FollowLimits() { current_.FollowLimits(); }

    bool CheckEntries() { return current_.CheckEntries(); }
    sonavex::CurrentSignal& CurrentSignal() noexcept { return current_; }
    sonavex::MemoryTones& MemoryTones() noexcept { return memory_; }

private:
    GeneratorNeeds needs_;
    MenuItem& mnuPrint_;
    PlayInterlock interlock_;
    sonavex::CurrentSignal current_;
    sonavex::MemoryTones memory_;
};

}  // namespace sonavex
