// Samples of more than 16 bits through a sink and its monitor.

#include <gtest/gtest.h>

#include "platform/pulse/PulseSoundSystem.h"
#include "support/Duplex.h"
#include "support/FineLoop.h"
#include "support/PipeWireServer.h"
#include "support/PulseServer.h"

namespace sonavex {
namespace {

constexpr const char* kFloatNote = "converted through float by the sound server";

void ExpectEveryBit(const SoundServer& server, const NullSink& sink, int bits, const std::string& note) {
    SystemOnLoop<PulseSoundSystem> on(server.Address());
    FineLoop fine(on.system, sink.name, sink.name + ".monitor", static_cast<std::int32_t>(sink.rateHz), bits);
    EXPECT_EQ(fine.playback->Bits(), bits) << sink.name;
    EXPECT_EQ(fine.capture->Bits(), bits) << sink.name;
    EXPECT_EQ(fine.playback->PathNote(), note) << sink.name;
    fine.ExpectExact(on.loop);
}

TEST(PulseFine, ReturnsEveryBitOfTheSink) {
    struct Case {
        const char* format;
        int bits;
        const char* note;
    };
    std::vector<NullSink> sinks;
    const std::vector<Case> cases{
        {"s16le", 16, ""}, {"s24le", 24, kFloatNote}, {"s24-32le", 24, kFloatNote},
        {"s32le", 24, ""}, {"s32be", 24, kFloatNote}, {"float32le", 24, kFloatNote}};
    for (const Case& with : cases)
        for (const std::uint32_t rateHz : {48000U, 96000U})
            sinks.push_back({with.format + std::to_string(rateHz), rateHz, "Card", with.format});
    const PulseServer server(sinks);
    for (std::size_t i = 0; i < sinks.size(); ++i)
        ExpectEveryBit(server, sinks[i], cases[i / 2].bits, cases[i / 2].note);
}

TEST(PulseFine, KnowsSinksOf8Bits) {
    const PulseServer server({{"u8", 48000, "Card", "u8"}, {"alaw", 48000, "Card", "aLaw"}});
    for (const char* sink : {"u8", "alaw"}) {
        SystemOnLoop<PulseSoundSystem> on(server.Address());
        const auto device = on.system.CreatePlaybackDevice(sink);
        EXPECT_EQ(device->CreateBuffer(Stereo(kPlaybackBytes, 48000))->Bits(), 8) << sink;
    }
}

TEST(PulseFine, ReturnsEveryBitOnPipeWire) {
    for (const std::uint32_t rateHz : {48000U, 96000U}) {
        const NullSink sink{"card", rateHz, "Card"};
        const PipeWireServer server({sink}, PipeWireServer::kPatientCycle);
        SystemOnLoop<PulseSoundSystem> on(server.Address());
        FineLoop fine(on.system, "card", "card.monitor", static_cast<std::int32_t>(rateHz), 24);
        EXPECT_EQ(fine.playback->Bits(), 24);
        EXPECT_NE(fine.playback->PathNote().find(kFloatNote), std::string::npos);
        fine.ExpectExact(on.loop);
    }
}

}  // namespace
}  // namespace sonavex
