// Loops from a sink through its monitor.

#include "adapters/pulse/Passage.h"
#include "support/PipeWireServer.h"
#include "support/PulseServer.h"

namespace sonavex {
namespace {

using namespace std::chrono_literals;

struct Loop {
    std::string sink;
    std::int32_t rateHz;
};

// All loops at the same time, because the lowest rate takes six seconds. Returns those that differ after a
// counted disturbance; any other difference is a failure.
std::vector<Loop> DisturbedLoops(const std::string& address, const std::vector<Loop>& loops) {
    PlainEventLoop events;
    std::vector<std::unique_ptr<Passage>> passages;
    for (const auto& [sink, rateHz] : loops)
        passages.push_back(std::make_unique<Passage>(events, address, sink, rateHz));
    std::vector<Loop> disturbed;
    const auto end = events.Now() + 10s;
    for (std::size_t complete = 0; complete < loops.size(); ++complete) {
        const auto done = [](const auto& passage) { return passage && passage->Complete(); };
        const auto any = [&] { return std::any_of(passages.begin(), passages.end(), done); };
        EXPECT_TRUE(events.RunUntil(any, end - events.Now()));
        const auto passage = std::find_if(passages.begin(), passages.end(), done);
        if (passage == passages.end()) break;
        if (!(*passage)->Exact() && (*passage)->Disturbed())
            disturbed.push_back(loops[static_cast<std::size_t>(passage - passages.begin())]);
        else
            EXPECT_TRUE((*passage)->Exact()) << (*passage)->Difference();
        passage->reset();
    }
    return disturbed;
}

// A busy machine starves the server, which then counts an underrun. That excuses one repetition.
void ExpectBitExactLoops(const std::string& address, const std::vector<Loop>& loops) {
    for (const Loop& loop : DisturbedLoops(address, DisturbedLoops(address, loops)))
        ADD_FAILURE() << loop.rateHz << " Hz: disturbed twice";
}

void ExpectBitExactLoop(const std::string& address) {
    ExpectBitExactLoops(address, {{"card", 48000}});
}

TEST(PulseLoop, IsBitExactAtTheRateOfTheSink) {
    const PulseServer server(SinksOfAllRates());
    std::vector<Loop> loops;
    for (const std::int32_t rateHz : SampleRateTable) loops.push_back({SinkOfRate(rateHz), rateHz});
    // Nothing is read before all loops are open. At the highest rate the capture buffer lasts 0.17 s, so it
    // is opened last.
    std::sort(loops.begin(), loops.end(), [](const Loop& a, const Loop& b) { return a.rateHz < b.rateHz; });
    ExpectBitExactLoops(server.Address(), loops);
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
