#pragma once

#include <memory>

#include "core/ports/Dialogs.h"
#include "core/ports/EventLoop.h"
#include "core/ports/SoundSystem.h"

namespace sonavex::app {

// The sound that SONAVEX_SOUND asks for ("system", also when it is not set, or "simulated"). Where the
// system has no sound card, or no server answers, says so and offers the simulated card; when that is
// declined the system's sound is returned as it is. Another name in SONAVEX_SOUND: error 5.
// The loop must outlive the result.
std::unique_ptr<SoundSystem> ChooseSound(EventLoop& loop, Dialogs& dialogs);

}  // namespace sonavex::app
