#include "app/sonavex/ProgramMixers.h"

#include <string>
#include <utility>
#include <vector>

#include "platform/alsamixer/AlsaMixer.h"
#include "platform/mixer/LayeredMixer.h"
#include "platform/pulse/PulseMixer.h"
#include "platform/simulated/SimulatedMixer.h"

namespace sonavex::app {
namespace {

std::unique_ptr<MixerHardware> MixersOfTheSystem(EventLoop& loop) {
    auto server = std::make_unique<PulseMixer>(loop);
    AlsaMixer::Cards cards{[](MixerSide) { return std::vector<std::string>(); },
                           [&pulse = *server](const MixerDevice& device) {
                               const std::string number = pulse.AlsaCardOf(device);
                               return number.empty() ? number : "hw:" + number;
                           }};
    return std::make_unique<LayeredMixer>(std::move(server),
                                          std::make_unique<AlsaMixer>(loop, std::move(cards)));
}

std::unique_ptr<MixerHardware> MixersOf(SoundSystem& sound, EventLoop& loop) {
    if (auto* const simulated = dynamic_cast<SimulatedSoundSystem*>(&sound))
        return std::make_unique<SimulatedMixer>(*simulated, loop);
    return MixersOfTheSystem(loop);
}

}  // namespace

ProgramMixers::ProgramMixers(SoundSystem& sound, EventLoop& loop, SettingsStore& store, Desktop& desktop,
                             Dialogs& dialogs, const std::filesystem::path& journalFile)
    : hardware_(MixersOf(sound, loop)),
      places_(store, desktop),
      journal_(journalFile),
      session_({store, desktop, dialogs, places_, outputMixer_, inputMixer_, library_, levels_, journal_}) {}

}  // namespace sonavex::app
