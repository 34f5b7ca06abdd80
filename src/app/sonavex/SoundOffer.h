#pragma once

#include <functional>
#include <memory>

#include "app/common/WantedSound.h"
#include "core/ports/Dialogs.h"
#include "core/ports/EventLoop.h"
#include "core/ports/SoundSystem.h"

namespace sonavex::app {

// How each kind of sound is made.
struct SoundMakers {
    std::function<std::unique_ptr<SoundSystem>()> system;
    std::function<std::unique_ptr<SoundSystem>()> simulated;

    // The real ones. The loop must outlive what they make.
    static SoundMakers Of(EventLoop& loop);
};

// The sound that is wanted. Where the system lacks a sound card to play on or to capture from, or no
// server answers, says so and offers the simulated card; when that is declined the system's sound is
// returned as it is.
std::unique_ptr<SoundSystem> ChooseSound(WantedSound wanted, const SoundMakers& make, Dialogs& dialogs);

}  // namespace sonavex::app
