#include "app/common/WantedSound.h"

#include <cstdlib>
#include <string>

#include "core/support/RuntimeError.h"

namespace sonavex::app {

WantedSound WantedSoundFromEnvironment() {
    const char* value = std::getenv("SONAVEX_SOUND");
    const std::string name = value == nullptr ? "" : value;
    if (name.empty() || name == "system") return WantedSound::kSystem;
    if (name == "simulated") return WantedSound::kSimulated;
    throw RuntimeError(error_number::kInvalidCall,
                       "SONAVEX_SOUND is '" + name + "'; it takes 'system' or 'simulated'.");
}

}  // namespace sonavex::app
