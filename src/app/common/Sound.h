#pragma once

#include <functional>
#include <memory>

#include "core/ports/Dialogs.h"
#include "core/ports/EventLoop.h"
#include "core/ports/SoundSystem.h"

namespace sonavex::app {

enum class Sound { kSystem, kSimulated };

// The value of SONAVEX_SOUND: "system" (also if it is not set) or "simulated". Error 5 with a text for the
// user for anything else.
Sound SoundFromEnvironment();
// The value of SONAVEX_SOUND for this sound.
const char* NameOf(Sound sound) noexcept;

// The simulated card in real time, or the sound server's devices and the cards with direct access. The loop
// must outlive the sound system.
std::unique_ptr<SoundSystem> CreateSound(Sound sound, EventLoop& loop);

// Creates a sound system: CreateSound with its loop, or a fake in tests.
using SoundMaker = std::function<std::unique_ptr<SoundSystem>(Sound)>;

// For the window: creates the wanted sound. If the system has no playback or no capture device, or no server
// answers, offers the simulated card. If the user declines, the system's sound is used anyway.
std::unique_ptr<SoundSystem> OfferSound(Sound wanted, const SoundMaker& make, Dialogs& dialogs);

}  // namespace sonavex::app
