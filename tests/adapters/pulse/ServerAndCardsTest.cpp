// A sound server and cards combined fulfil the contract of a sound system.

#include "contract/SoundSystemContract.h"
#include "platform/alsa/AlsaSoundSystem.h"
#include "platform/combined/CombinedSoundSystem.h"
#include "platform/pulse/PulseSoundSystem.h"
#include "support/PulseServer.h"
#include "support/alsa/LoopCards.h"

namespace sonavex {
namespace {

class ServerAndCards {
public:
    std::unique_ptr<SoundSystem> Create(EventLoop& loop) {
        return std::make_unique<CombinedSoundSystem>(
            std::make_unique<PulseSoundSystem>(loop, server_.Address()),
            std::make_unique<AlsaSoundSystem>(loop), AlsaSoundSystem::kIdentifierPrefix);
    }
    std::string DefaultOutput() { return server_.Control({"get-default-sink"}); }
    std::string DefaultInput() { return server_.Control({"get-default-source"}); }

private:
    PulseServer server_{{{"card", 48000, "ServerCard"}}};
    LoopCards cards_{CardList{{"card", "Test card"}, {"hw:CARD=Fake,DEV=0", "Fake card"}}};
};

INSTANTIATE_TYPED_TEST_SUITE_P(ServerAndCards, SoundSystemContract, ServerAndCards);

}  // namespace
}  // namespace sonavex
