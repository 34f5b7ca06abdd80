#pragma once

namespace sonavex::app {

enum class WantedSound { kSystem, kSimulated };

// What SONAVEX_SOUND asks for: "system" (also when it is not set) or "simulated". Error 5 with a text
// for the user for anything else.
WantedSound WantedSoundFromEnvironment();

}  // namespace sonavex::app
