#include "app/sonavex/SoundOffer.h"

#include <exception>
#include <string>

#include "app/common/SystemSound.h"
#include "platform/simulated/SimulatedSoundSystem.h"

namespace sonavex::app {
namespace {

constexpr const char* kOffer =
    "\r\rThe built-in simulated sound card can be used instead. Its readings are not a measurement.\r"
    "Select 'OK' to use the simulated sound card.";

// What keeps the system's sound from being used; empty when nothing does. The first entry of a list is
// the primary device, which stands for one of the others.
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

SoundMakers SoundMakers::Of(EventLoop& loop) {
    return {[&loop] { return CreateSystemSound(loop); },
            [&loop] {
                return std::make_unique<SimulatedSoundSystem>(loop, SimulatedSoundSystem::Pace::kRealTime);
            }};
}

std::unique_ptr<SoundSystem> ChooseSound(WantedSound wanted, const SoundMakers& make, Dialogs& dialogs) {
    if (wanted == WantedSound::kSimulated) return make.simulated();
    auto system = make.system();
    const std::string trouble = Trouble(*system);
    if (trouble.empty() || !dialogs.AskOkCancel(trouble + kOffer)) return system;
    return make.simulated();
}

}  // namespace sonavex::app
