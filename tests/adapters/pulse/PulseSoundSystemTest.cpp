#include "contract/SoundSystemContract.h"
#include "platform/pulse/PulseSoundSystem.h"
#include "support/PipeWireServer.h"
#include "support/PulseServer.h"

namespace sonavex {
namespace {

template <class Server>
class ServerPlatform {
public:
    std::unique_ptr<SoundSystem> Create(EventLoop& loop) {
        return std::make_unique<PulseSoundSystem>(loop, server_.Address());
    }
    std::string DefaultOutput() { return server_.Control({"get-default-sink"}); }
    std::string DefaultInput() { return server_.Control({"get-default-source"}); }

private:
    Server server_{{{"card", 48000, "TestCard"}, {"second", 48000, "SecondCard"}}};
};

INSTANTIATE_TYPED_TEST_SUITE_P(PulseAudio, SoundSystemContract, ServerPlatform<PulseServer>);
INSTANTIATE_TYPED_TEST_SUITE_P(PipeWire, SoundSystemContract, ServerPlatform<PipeWireServer>);

}  // namespace
}  // namespace sonavex
