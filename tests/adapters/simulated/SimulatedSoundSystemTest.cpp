#include "contract/SoundSystemContract.h"
#include "platform/simulated/SimulatedSoundSystem.h"

namespace sonavex {
namespace {

struct SimulatedPlatform {
    static std::unique_ptr<SoundSystem> Create(EventLoop& loop) {
        return std::make_unique<SimulatedSoundSystem>(loop, SimulatedSoundSystem::Pace::kRealTime);
    }
    static std::string DefaultOutput() { return SimulatedSoundSystem::kIdentifier; }
    static std::string DefaultInput() { return SimulatedSoundSystem::kIdentifier; }
};

INSTANTIATE_TYPED_TEST_SUITE_P(Simulated, SoundSystemContract, SimulatedPlatform);

}  // namespace
}  // namespace sonavex
