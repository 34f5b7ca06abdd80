#pragma once

#include "core/generator/SignalControls.h"

namespace sonavex {

enum class Playing { kNothing, kCurrent, kMemory };

// Enables and disables the generator's controls while something plays. The current signal and the memory
// tones exclude each other. The list is locked while anything plays, and so is the current signal while
// memory tones play. The level is always enabled.
class PlayInterlock {
public:
    PlayInterlock(SignalControls& signal, MemoryControls& memory) noexcept
        : signal_(signal), memory_(memory) {}

    // Updates all controls and the status picture.
    void Show(Playing playing);
    Playing Now() const noexcept { return playing_; }
    // While a stimulus plays, nothing else can start.
    void ShowStimulus(bool playing);
    bool StimulusPlaying() const noexcept { return stimulusPlaying_; }
    // Updates the buttons after a change of the list.
    void ShowList();
    // Updates the buttons that need a selection.
    void ShowSelection();

private:
    void EnableSignal(bool enabled);
    void EnableStart();
    bool AnySelected() const;

    SignalControls& signal_;
    MemoryControls& memory_;
    Playing playing_ = Playing::kNothing;
    bool stimulusPlaying_ = false;
};

}  // namespace sonavex
