// Where the server resamples, the buffers say so.

#include "adapters/pulse/Passage.h"
#include "core/ports/SoundErrors.h"
#include "support/Errors.h"
#include "support/PipeWireServer.h"
#include "support/PulseServer.h"

namespace sonavex {
namespace {

using namespace std::chrono_literals;

// PipeWire's, of input and output.
constexpr const char* kFloatBothWays =
    "converted through float by the sound serverconverted through float by the sound server";

// True when all samples are the same; otherwise the buffers must say why not. A busy machine tears the
// stream, which says nothing about the path, so that there are four attempts.
bool ExactOrSaid(const std::string& address, const std::string& sink, std::int32_t rateHz) {
    std::string difference;
    for (int attempt = 0; attempt < 4; ++attempt) {
        PlainEventLoop loop;
        const Passage passage(loop, address, sink, rateHz);
        EXPECT_TRUE(loop.RunUntil([&] { return passage.Complete(); }, 10s)) << rateHz;
        if (passage.Notes().find("resampled") != std::string::npos) return false;
        EXPECT_THAT(passage.Notes(), testing::AnyOf("", kFloatBothWays)) << rateHz;
        if (passage.Exact()) return true;
        difference = passage.Difference();
    }
    ADD_FAILURE() << difference;
    return false;
}

// The daemon runs at one rate at a time and at none below its lowest.
TEST(PulseResampling, IsSaidOnPipeWireOrTheLoopIsBitExact) {
    const PipeWireServer server(SinksOfAllRates());
    int exact = 0;
    for (const std::int32_t rateHz : SampleRateTable)
        exact += ExactOrSaid(server.Address(), SinkOfRate(rateHz), rateHz) ? 1 : 0;
    EXPECT_GE(exact, 1);
}

void ExpectExtendedRates(SoundSystem& system, const std::string& sink, const RateList& rates) {
    EXPECT_EQ(system.ExtendedPlaybackRates(sink), rates) << sink;
    EXPECT_EQ(system.ExtendedCaptureRates(sink + ".monitor"), rates) << sink;
}

TEST(PulseExtendedRates, AreThePresentRateOfTheSink) {
    const PulseServer server({{"slow", 48000, "Slow"}, {"card", 96000, "Card"}, {"fast", 192000, "Fast"}});
    PlainEventLoop loop;
    PulseSoundSystem system(loop, server.Address());
    ExpectExtendedRates(system, "slow", {});
    ExpectExtendedRates(system, "card", {96000});
    ExpectExtendedRates(system, "fast", {192000});
    server.Control({"set-default-sink", "fast"});
    EXPECT_EQ(system.ExtendedPlaybackRates(""), RateList{192000});
    EXPECT_EQ(ErrorOf([&] { return system.ExtendedPlaybackRates("none"); }), sound_error::kNoDriver);
}

// PipeWire runs virtual devices at its own rate, whatever rate they report.
TEST(PulseExtendedRates, OfVirtualDevicesAreThatOfPipeWire) {
    for (const std::uint32_t serverHz : {48000U, 96000U}) {
        const PipeWireServer server({{"card", 96000, "Card"}, {"slow", 48000, "Slow"}}, 0, serverHz);
        PlainEventLoop loop;
        PulseSoundSystem system(loop, server.Address());
        ExpectExtendedRates(system, "card", serverHz == 96000 ? RateList{96000} : RateList());
        ExpectExtendedRates(system, "slow", {});
    }
}

// A sink of 48000 Hz used at another rate.
TEST(PulseResampling, IsSaidWhereTheSinkHasAnotherRate) {
    const PulseServer pulse({{"card", 48000, "TestCard"}});
    for (const std::int32_t rateHz : SampleRateTable)
        EXPECT_EQ(ExactOrSaid(pulse.Address(), "card", rateHz), rateHz == 48000) << rateHz;
}

}  // namespace
}  // namespace sonavex
