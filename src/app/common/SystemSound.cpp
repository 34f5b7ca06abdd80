#include "app/common/SystemSound.h"

#include "platform/alsa/AlsaSoundSystem.h"
#include "platform/combined/CombinedSoundSystem.h"
#include "platform/pulse/PulseSoundSystem.h"

namespace sonavex::app {

std::unique_ptr<SoundSystem> CreateSystemSound(EventLoop& loop) {
    return std::make_unique<CombinedSoundSystem>(std::make_unique<PulseSoundSystem>(loop),
                                                 std::make_unique<AlsaSoundSystem>(loop),
                                                 AlsaSoundSystem::kIdentifierPrefix);
}

}  // namespace sonavex::app
