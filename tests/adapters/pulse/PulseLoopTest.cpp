// The loop from a sink through its monitor.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <memory>
#include <string>
#include <vector>

#include "core/settings/SampleRates.h"
#include "platform/plain/PlainEventLoop.h"
#include "platform/pulse/PulseSoundSystem.h"
#include "support/LoopSignal.h"
#include "support/PipeWireServer.h"
#include "support/PulseServer.h"

namespace sonavex {
namespace {

using namespace std::chrono_literals;

std::string SinkOfRate(std::int32_t rateHz) {
    return "card" + std::to_string(rateHz);
}

// What became of random samples on their way through a sink and back from its monitor.
struct Passage {
    LoopComparison comparison;
    std::uint64_t missing = 0;
    std::uint64_t underruns = 0;
    std::string notes;
    bool Exact() const {
        return comparison.comparedFrames >= 16384 && comparison.differentFrames == 0 && missing == 0;
    }
};

Passage Pass(const std::string& address, const std::string& sink, std::int32_t rateHz) {
    PlainEventLoop loop;
    PulseSoundSystem system(loop, address);
    const auto output = system.CreatePlaybackDevice(sink);
    const auto input = system.CreateCaptureDevice(sink + ".monitor");
    const auto capture = input->CreateBuffer(Stereo(kCaptureBytes, rateHz));
    const auto playback = output->CreateBuffer(Stereo(kPlaybackBytes, rateHz));
    const std::vector<std::int16_t> pattern = RandomPattern(static_cast<std::uint32_t>(rateHz));
    SegmentRecorder recorder(system, *capture);
    playback->WriteBuffer(0, pattern);
    playback->SetVolume(0);
    capture->StartLooping();
    playback->PlayLooping();
    // Eleven segments: more than once round the playback buffer, whatever the delay.
    EXPECT_TRUE(loop.RunUntil([&] { return recorder.Order().size() >= 11; }, 10s)) << rateHz;
    return {CompareLoop(recorder.Samples(), pattern, 0), capture->Statistics().framesMissing,
            playback->Underruns(), capture->PathNote() + playback->PathNote()};
}

// All samples are the same, or the buffers say why not. True when they are. A machine that is too busy
// tears the stream, which says nothing of the path: then again.
bool ExactOrSaid(const std::string& address, const std::string& sink, std::int32_t rateHz) {
    Passage passage;
    for (int attempt = 0; attempt < 4; ++attempt) {
        passage = Pass(address, sink, rateHz);
        if (!passage.notes.empty()) {
            EXPECT_THAT(passage.notes, testing::HasSubstr("resampled")) << rateHz;
            return false;
        }
        if (passage.Exact()) return true;
    }
    ADD_FAILURE() << rateHz << " Hz: " << passage.comparison.differentFrames << " frames of "
                  << passage.comparison.comparedFrames << " differ, " << passage.missing << " are missing";
    return false;
}

void ExpectBitExactLoop(const std::string& address, const std::string& sink, std::int32_t rateHz) {
    const Passage passage = Pass(address, sink, rateHz);
    EXPECT_GE(passage.comparison.comparedFrames, 16384U) << rateHz;
    EXPECT_EQ(passage.comparison.differentFrames, 0U)
        << rateHz << " Hz, played with " << passage.underruns << " underruns";
    EXPECT_EQ(passage.missing, 0U) << rateHz;
}

TEST(PulseLoop, IsBitExactAtTheRateOfTheSink) {
    std::vector<NullSink> sinks;
    for (const std::int32_t rateHz : SampleRateTable)
        sinks.push_back({SinkOfRate(rateHz), static_cast<std::uint32_t>(rateHz), "Card"});
    const PulseServer server(sinks);
    for (const std::int32_t rateHz : SampleRateTable)
        ExpectBitExactLoop(server.Address(), SinkOfRate(rateHz), rateHz);
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
        PlainEventLoop loop;
        PulseSoundSystem system(loop, server.Address());
        const auto output = system.CreatePlaybackDevice("");
        const auto input = system.CreateCaptureDevice("");
        const auto playback = output->CreateBuffer(Stereo(kPlaybackBytes, 48000));
        const auto capture = input->CreateBuffer(Stereo(kCaptureBytes, 48000));
        TurnDown(server, "sink-input");
        TurnDown(server, "source-output");
    }
    ExpectBitExactLoop(server.Address(), "card", 48000);
}

TEST(PulseLoop, IsBitExactOnPipeWire) {
    const PipeWireServer server({{"card", 48000, "TestCard"}}, PipeWireServer::kPatientCycle);
    ExpectBitExactLoop(server.Address(), "card", 48000);
}

// The daemon runs at one rate at a time and at none below its lowest.
TEST(PulseLoop, IsBitExactOnPipeWireOrSaidToBeResampled) {
    std::vector<NullSink> sinks;
    for (const std::int32_t rateHz : SampleRateTable)
        sinks.push_back({SinkOfRate(rateHz), static_cast<std::uint32_t>(rateHz), "Card"});
    const PipeWireServer server(sinks);
    int exact = 0;
    for (const std::int32_t rateHz : SampleRateTable)
        exact += ExactOrSaid(server.Address(), SinkOfRate(rateHz), rateHz) ? 1 : 0;
    EXPECT_GE(exact, 1);
}

// One card of 48000 Hz, asked for another rate.
TEST(PulseLoop, IsSaidToBeResampledWhereTheSinkHasAnotherRate) {
    const PulseServer pulse({{"card", 48000, "TestCard"}});
    for (const std::int32_t rateHz : SampleRateTable)
        EXPECT_EQ(ExactOrSaid(pulse.Address(), "card", rateHz), rateHz == 48000) << rateHz;
}

}  // namespace
}  // namespace sonavex
