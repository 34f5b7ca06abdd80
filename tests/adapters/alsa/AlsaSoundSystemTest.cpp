#include "contract/SoundSystemContract.h"
#include "platform/alsa/AlsaSoundSystem.h"
#include "support/alsa/LoopCards.h"

namespace sonavex {
namespace {

class LoopCardPlatform {
public:
    static std::unique_ptr<SoundSystem> Create(EventLoop& loop) {
        return std::make_unique<AlsaSoundSystem>(loop);
    }
    static std::string DefaultOutput() { return "alsa:card"; }
    static std::string DefaultInput() { return "alsa:card"; }

private:
    LoopCards cards_{CardList{{"card", "Test card"}, {"second", "Second card"}}};
};

INSTANTIATE_TYPED_TEST_SUITE_P(Alsa, SoundSystemContract, LoopCardPlatform);

}  // namespace
}  // namespace sonavex
