#pragma once

#include <functional>
#include <memory>

#include "core/ports/Dialogs.h"
#include "core/ports/EventLoop.h"
#include "core/ports/SoundSystem.h"

namespace sonavex::app {

enum class Sound { kSystem, kSimulated };

// What SONAVEX_SOUND asks for: "system" (also when it is not set) or "simulated". Error 5 with a text
// for the user for anything else.
Sound SoundFromEnvironment();
// The name that SONAVEX_SOUND takes.
const char* NameOf(Sound sound) noexcept;

// The simulated card in real time; or the sound server's devices together with the cards that are
// reached without the server. The loop must outlive the sound system.
std::unique_ptr<SoundSystem> CreateSound(Sound sound, EventLoop& loop);

// Makes a sound system; CreateSound with its loop, or a test's own.
using SoundMaker = std::function<std::unique_ptr<SoundSystem>(Sound)>;

// For the window: the wanted sound. When the system has no playback or no capture device, or no server
// answers, says so and offers the simulated card. When the user declines, the system's sound is used as
// it is.
std::unique_ptr<SoundSystem> OfferSound(Sound wanted, const SoundMaker& make, Dialogs& dialogs);

}  // namespace sonavex::app
