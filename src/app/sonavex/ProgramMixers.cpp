#include "app/sonavex/ProgramMixers.h"

#include <string>
#include <utility>
#include <vector>

#include "platform/alsa/AlsaControls.h"
#include "platform/alsa/AlsaDevices.h"
#include "platform/alsamixer/AlsaMixer.h"
#include "platform/combined/LayeredMixer.h"
#include "platform/pulse/PulseMixer.h"
#include "platform/simulated/SimulatedMixer.h"

namespace sonavex::app {
namespace {

snd_pcm_stream_t DirectionOf(MixerSide side) {
    return side == MixerSide::kPlayback ? SND_PCM_STREAM_PLAYBACK : SND_PCM_STREAM_CAPTURE;
}

// The devices with direct access.
std::vector<std::string> DirectDevices(MixerSide side) {
    std::vector<std::string> names;
    for (const AlsaDevice& device : ListAlsaDevices(DirectionOf(side)))
        names.push_back(device.info.description);
    return names;
}

// libasound's control of the card behind the server's device, or of the card with direct access.
std::string ControlOf(PulseMixer& server, const MixerDevice& device) {
    const std::string number = server.AlsaCardOf(device);
    return number.empty() ? AlsaControlOf(DirectionOf(device.side), device.name) : "hw:" + number;
}

std::string DirectLastingName(const MixerDevice& device) {
    return AlsaLastingName(DirectionOf(device.side), device.name);
}

std::unique_ptr<MixerHardware> MixersOfTheSystem(EventLoop& loop) {
    auto server = std::make_unique<PulseMixer>(loop);
    AlsaMixer::Cards cards{DirectDevices,
                           [&pulse = *server](const MixerDevice& device) { return ControlOf(pulse, device); },
                           DirectLastingName};
    return std::make_unique<LayeredMixer>(std::move(server),
                                          std::make_unique<AlsaMixer>(loop, std::move(cards)));
}

std::unique_ptr<MixerHardware> MixersOf(SoundSystem& sound, EventLoop& loop) {
    if (sound.Simulated())
        return std::make_unique<SimulatedMixer>(static_cast<SimulatedSoundSystem&>(sound), loop);
    return MixersOfTheSystem(loop);
}

}  // namespace

ProgramMixers::ProgramMixers(SoundSystem& sound, EventLoop& loop, SettingsStore& store, Desktop& desktop,
                             Dialogs& dialogs, const std::filesystem::path& journalFile)
    : hardware_(MixersOf(sound, loop)),
      places_(store, desktop),
      journal_(journalFile),
      mixers_({store, dialogs, places_, *hardware_, journal_}) {}

}  // namespace sonavex::app
