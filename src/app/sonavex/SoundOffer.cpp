#include "app/sonavex/SoundOffer.h"

#include <string>

#include "app/common/SystemSound.h"
#include "app/common/WantedSound.h"
#include "platform/simulated/SimulatedSoundSystem.h"

namespace sonavex::app {
namespace {

// What keeps the system's sound from being used; empty when nothing does.
std::string Trouble(SoundSystem& sound) {
    try {
        return sound.EnumeratePlayback().size() > 1 ? "" : "The system has no sound card.";
    } catch (const RuntimeError& error) {
        return error.what();
    }
}

}  // namespace

std::unique_ptr<SoundSystem> ChooseSound(EventLoop& loop, Dialogs& dialogs) {
    if (WantedSoundFromEnvironment() == WantedSound::kSystem) {
        auto system = CreateSystemSound(loop);
        const std::string trouble = Trouble(*system);
        if (trouble.empty()) return system;
        if (!dialogs.AskOkCancel(
                trouble + "\r\rThe built-in simulated sound card can be used instead. Its readings are "
                          "not a measurement.\rSelect 'OK' to use the simulated sound card."))
            return system;
    }
    return std::make_unique<SimulatedSoundSystem>(loop, SimulatedSoundSystem::Pace::kRealTime);
}

}  // namespace sonavex::app
