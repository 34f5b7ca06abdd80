#include "app/common/Sound.h"

#include <cstdlib>
#include <exception>
#include <string>

#include "core/support/RuntimeError.h"
#include "platform/alsa/AlsaSoundSystem.h"
#include "platform/combined/CombinedSoundSystem.h"
#include "platform/pulse/PulseSoundSystem.h"
#include "platform/simulated/SimulatedSoundSystem.h"

namespace sonavex::app {
namespace {

constexpr const char* kOffer =
    "\r\rThe built-in simulated sound card can be used instead. Its readings are not a measurement.\r"
    "Select 'OK' to use the simulated sound card.";

// Why the system's sound cannot be used; empty if it can. The first entry of a list is the primary device,
// which refers to one of the others.
std::string Trouble(SoundSystem& sound) {
    try {
        if (sound.EnumeratePlayback().size() <= 1) return "The system has no sound card.";
        if (sound.EnumerateCapture().size() <= 1) return "The system has no sound input.";
        return {};
    } catch (const std::exception& error) {
        return *error.what() != '\0' ? error.what() : "The system's sound cannot be used.";
    }
}

}  // namespace

Sound SoundFromEnvironment() {
    const char* value = std::getenv("SONAVEX_SOUND");
    const std::string name = value == nullptr ? "" : value;
    if (name.empty() || name == NameOf(Sound::kSystem)) return Sound::kSystem;
    if (name == NameOf(Sound::kSimulated)) return Sound::kSimulated;
    throw RuntimeError(error_number::kInvalidCall,
                       "SONAVEX_SOUND is '" + name + "'; it takes 'system' or 'simulated'.");
}

const char* NameOf(Sound sound) noexcept {
    return sound == Sound::kSimulated ? "simulated" : "system";
}

std::unique_ptr<SoundSystem> CreateSound(Sound sound, EventLoop& loop) {
    if (sound == Sound::kSimulated)
        return std::make_unique<SimulatedSoundSystem>(loop, SimulatedSoundSystem::Pace::kRealTime);
    return std::make_unique<CombinedSoundSystem>(std::make_unique<PulseSoundSystem>(loop),
                                                 std::make_unique<AlsaSoundSystem>(loop),
                                                 AlsaSoundSystem::kIdentifierPrefix);
}

std::unique_ptr<SoundSystem> OfferSound(Sound wanted, const SoundMaker& make, Dialogs& dialogs) {
    auto sound = make(wanted);
    if (wanted == Sound::kSimulated) return sound;
    const std::string trouble = Trouble(*sound);
    if (trouble.empty() || !dialogs.AskOkCancel(trouble + kOffer)) return sound;
    return make(Sound::kSimulated);
}

}  // namespace sonavex::app
