// The bits of the devices in the JSON lines, for each kind of device and format.

#include <gmock/gmock.h>

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include "support/PipeWireServer.h"
#include "support/PulseServer.h"
#include "support/alsa/LoopCards.h"
#include "system/cli/MeasureProgram.h"

namespace sonavex {
namespace {

using namespace std::chrono_literals;

// A device pair and the bits that its direction must report.
struct BitsCase {
    std::string output;
    std::string input;
    int inputBits;
    int outputBits;
};

// All at the same time, each on a pair of its own.
void ExpectReportedBits(const std::vector<BitsCase>& cases, const Environment& environment,
                        const std::string& rateHz = "48000") {
    std::vector<std::unique_ptr<MeasureProgram>> programs;
    for (const BitsCase& with : cases)
        programs.push_back(std::make_unique<MeasureProgram>(
            Arguments{"run", "--output", with.output, "--input", with.input, "--rate", rateHz, "--tone",
                      "sine:1125", "--seconds", "0", "--json"},
            environment));
    for (std::size_t i = 0; i < cases.size(); ++i) {
        const Outcome outcome = programs[i]->End(60s);
        const auto lines = outcome.Json();
        ASSERT_FALSE(lines.empty()) << cases[i].output << outcome.errors;
        for (const auto& line : lines) {
            EXPECT_EQ(line["input_bits"], cases[i].inputBits) << cases[i].input;
            EXPECT_EQ(line["output_bits"], cases[i].outputBits) << cases[i].output;
            EXPECT_EQ(line["bits"], std::min(cases[i].inputBits, cases[i].outputBits)) << cases[i].output;
        }
    }
}

TEST(Bits, OfPulseAudioFollowTheFormatOfTheSink) {
    std::vector<NullSink> sinks;
    std::vector<BitsCase> cases;
    for (const auto& [format, bits] :
         {std::pair{"u8", 8}, {"s16le", 16}, {"s24le", 24}, {"s32le", 24}, {"float32le", 24}}) {
        sinks.push_back({format, 48000, "Card", format});
        cases.push_back({format, std::string(format) + ".monitor", bits, bits});
    }
    const PulseServer server(sinks);
    ExpectReportedBits(cases, {{"PULSE_SERVER", server.Address()}});
}

TEST(Bits, OfPipeWireAre24) {
    const PipeWireServer server({{"card", 48000, "Card"}});
    ExpectReportedBits({{"card", "card.monitor", 24, 24}}, {{"PULSE_SERVER", server.Address()}});
}

TEST(Bits, OfACardReachedDirectlyAreThoseOfItsWidestFormat) {
    const LoopCards cards(CardList{{"wide", "Wide card", {48000}, 2, "S16_LE S32_LE"},
                                   {"packed", "Packed card", {48000}, 2, "S24_3LE"},
                                   {"padded", "Padded card", {48000}, 2, "S24_LE"},
                                   {"narrow", "Narrow card", {48000}, 2, "S16_LE"}});
    // The last two measure from one card to another.
    ExpectReportedBits({{"alsa:wide", "alsa:wide", 24, 24},
                        {"alsa:packed", "alsa:packed", 24, 24},
                        {"alsa:narrow", "alsa:padded", 24, 16},
                        {"alsa:padded", "alsa:narrow", 16, 24}},
                       cards.ForPrograms());
}

TEST(Bits, AreReportedAtAnExtendedRate) {
    const LoopCards cards(CardList{{"fast", "Fast card", {96000}, 2, "S24_3LE"}});
    ExpectReportedBits({{"alsa:fast", "alsa:fast", 24, 24}}, cards.ForPrograms(), "96000");
}

TEST(Bits, OfTheSimulatedCardAre16) {
    ExpectReportedBits({{"", "", 16, 16}}, kSimulated);
}

}  // namespace
}  // namespace sonavex
