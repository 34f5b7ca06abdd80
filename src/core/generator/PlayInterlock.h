#pragma once

#include "core/generator/SignalControls.h"

namespace sonavex {

enum class Playing { kNothing, kCurrent, kMemory };

// Which of the generator's controls may be used while something plays: the current signal and the
// memory tones exclude each other, and neither the list nor, while memory tones play, the current
// signal can be changed. The level always can. User-interface thread only.
class PlayInterlock {
public:
    PlayInterlock(SignalControls& signal, MemoryControls& memory) noexcept
        : signal_(signal), memory_(memory) {}

    // Shows what plays on all controls and on the status picture.
    void Show(Playing playing);
    // Shows a changed list on its buttons.
    void ShowList();
    // Shows a changed selection on the buttons that need one.
    void ShowSelection();

private:
    void EnableSignal(bool enabled);
    bool AnySelected() const;

    SignalControls& signal_;
    MemoryControls& memory_;
    Playing playing_ = Playing::kNothing;
};

}  // namespace sonavex
