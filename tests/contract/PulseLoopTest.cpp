// The loop from a sink through its monitor.

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

// Plays random samples through the sink and compares what its monitor returns.
void ExpectBitExactLoop(const std::string& address, const std::string& sink, std::int32_t rateHz) {
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
    // Ten segments: more than once round the playback buffer.
    ASSERT_TRUE(loop.RunUntil([&] { return recorder.Order().size() >= 10; }, 10s)) << rateHz;
    const LoopComparison comparison = CompareLoop(recorder.Samples(), pattern, 0);
    EXPECT_GE(comparison.comparedFrames, 16384U) << rateHz;
    EXPECT_EQ(comparison.differentFrames, 0U) << rateHz;
    EXPECT_EQ(capture->Statistics().framesMissing, 0U) << rateHz;
}

TEST(PulseLoop, IsBitExactAtTheRateOfTheSink) {
    std::vector<NullSink> sinks;
    for (const std::int32_t rateHz : SampleRateTable)
        sinks.push_back({SinkOfRate(rateHz), static_cast<std::uint32_t>(rateHz), "Card"});
    const PulseServer server(sinks);
    for (const std::int32_t rateHz : SampleRateTable)
        ExpectBitExactLoop(server.Address(), SinkOfRate(rateHz), rateHz);
}

TEST(PulseLoop, IsBitExactOnPipeWire) {
    const PipeWireServer server({{"card", 48000, "TestCard"}});
    ExpectBitExactLoop(server.Address(), "card", 48000);
}

}  // namespace
}  // namespace sonavex
