#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "core/ports/EventLoop.h"
#include "core/ports/SoundSystem.h"

namespace sonavex::measure {

// "system" or "simulated", from SONAVEX_SOUND.
std::string SoundName();

// The sound chosen by SONAVEX_SOUND. The loop must outlive it.
std::unique_ptr<SoundSystem> ChooseSound(EventLoop& loop);

// Major version of the operating system's generation: 10 on this platform, or SONAVEX_OS_MAJOR.
std::int32_t OsMajorVersion();

}  // namespace sonavex::measure
