// Loops from a sink through its monitor.

#include "adapters/pulse/Passage.h"
#include "support/PipeWireServer.h"
#include "support/PulseServer.h"

namespace sonavex {
namespace {

using namespace std::chrono_literals;

// All rates at the same time, because the lowest takes six seconds.
void ExpectBitExactLoops(const std::string& address,
                         const std::vector<std::pair<std::string, std::int32_t>>& sinksAndRates) {
    PlainEventLoop loop;
    std::vector<std::unique_ptr<Passage>> passages;
    for (const auto& [sink, rateHz] : sinksAndRates)
        passages.push_back(std::make_unique<Passage>(loop, address, sink, rateHz));
    const auto end = loop.Now() + 10s;
    while (!passages.empty()) {
        const auto complete = [](const auto& passage) { return passage->Complete(); };
        ASSERT_TRUE(loop.RunUntil([&] { return std::any_of(passages.begin(), passages.end(), complete); },
                                  end - loop.Now()));
        for (const auto& passage : passages)
            EXPECT_TRUE(!complete(passage) || passage->Exact()) << passage->Difference();
        std::erase_if(passages, complete);
    }
}

void ExpectBitExactLoop(const std::string& address) {
    ExpectBitExactLoops(address, {{"card", 48000}});
}

TEST(PulseLoop, IsBitExactAtTheRateOfTheSink) {
    const PulseServer server(SinksOfAllRates());
    std::vector<std::pair<std::string, std::int32_t>> sinks;
    for (const std::int32_t rateHz : SampleRateTable) sinks.emplace_back(SinkOfRate(rateHz), rateHz);
    ExpectBitExactLoops(server.Address(), sinks);
}

// Sets every stream of the kind ("sink-input", "source-output") to a quarter of the volume, muted.
void TurnDown(const SoundServer& server, const std::string& kind) {
    const std::string streams = server.Control({"list", "short", kind + "s"});
    ASSERT_FALSE(streams.empty());
    const std::string number = streams.substr(0, streams.find('\t'));
    server.Control({"set-" + kind + "-volume", number, "25%"});
    server.Control({"set-" + kind + "-mute", number, "1"});
}

TEST(PulseLoop, InheritsNoVolumeFromEarlierStreams) {
    const PulseServer server({{"card", 48000, "TestCard"}});
    server.Control({"load-module", "module-stream-restore"});
    {
        DuplexOn<PulseSoundSystem> session(server.Address());
        session.OpenPlayback("", 48000);
        session.OpenCapture("", 48000);
        TurnDown(server, "sink-input");
        TurnDown(server, "source-output");
    }
    ExpectBitExactLoop(server.Address());
}

TEST(PulseLoop, IsBitExactOnPipeWire) {
    const PipeWireServer server({{"card", 48000, "TestCard"}}, PipeWireServer::kPatientCycle);
    ExpectBitExactLoop(server.Address());
}

}  // namespace
}  // namespace sonavex
