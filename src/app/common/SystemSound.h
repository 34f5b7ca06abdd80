#pragma once

#include <memory>

#include "core/ports/EventLoop.h"
#include "core/ports/SoundSystem.h"

namespace sonavex::app {

// The sound of the machine: the sound server's devices, and the cards themselves beside them. The
// loop must outlive it.
std::unique_ptr<SoundSystem> CreateSystemSound(EventLoop& loop);

}  // namespace sonavex::app
