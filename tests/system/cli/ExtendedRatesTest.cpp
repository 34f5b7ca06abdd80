// Measurements above 48 kHz on the simulated card, a sound server and a card without a server.

#include <gmock/gmock.h>

#include "support/PulseServer.h"
#include "support/alsa/LoopCards.h"
#include "system/cli/MeasureProgram.h"

namespace sonavex {
namespace {

using namespace std::chrono_literals;
using nlohmann::ordered_json;

// What a run has counted.
bool CountsLosses(const ordered_json& line) {
    return line["blocksLost"] != 0 || line["overruns"] != 0 || line["underruns"] != 0 ||
           line["framesMissing"] != 0;
}

// The last settled update of a run of this rate. At 192 kHz a busy machine loses blocks, which a settled
// update excludes. Counted losses excuse two repetitions.
ordered_json SettledUpdate(std::int32_t rateHz, const Arguments& more, const Environment& sound,
                           int repetitions = 2) {
    Arguments arguments{"run", "--rate", std::to_string(rateHz), "--seconds", "2", "--json"};
    arguments.insert(arguments.end(), more.begin(), more.end());
    const Outcome outcome = MeasureProgram(arguments, sound).End(20s);
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.errors, "");
    ordered_json settled;
    for (const ordered_json& line : outcome.Json()) {
        ExpectShape(line, true);
        EXPECT_EQ(line["rate"], rateHz);
        if (line["settled"] == true) settled = line;
    }
    if (settled.is_null() && repetitions > 0 && !outcome.Json().empty() &&
        CountsLosses(outcome.Json().back()))
        return SettledUpdate(rateHz, more, sound, repetitions - 1);
    EXPECT_FALSE(settled.is_null()) << outcome.output;
    return settled.is_null() ? outcome.Json().back() : settled;
}

// A sine of 32 samples a period, which is bin 128 at every rate.
void ExpectPureSine(std::int32_t rateHz, const Arguments& devices, const Environment& sound) {
    Arguments arguments{"--tone", "sine:" + std::to_string(rateHz / 32)};
    arguments.insert(arguments.end(), devices.begin(), devices.end());
    const ordered_json line = SettledUpdate(rateHz, arguments, sound);
    EXPECT_EQ(line["frequency"], std::to_string(rateHz / 32));
    EXPECT_EQ(line["peakBin"], 128);
    EXPECT_EQ(line["adcPeak"], 8192);
    EXPECT_EQ(line["notes"], ordered_json::array());
    EXPECT_LT(std::stod(line["thd"].get<std::string>()), 0.003);
    EXPECT_NE(line["percent"][7], "N/A");
}

class ExtendedRates : public testing::TestWithParam<std::int32_t> {};
INSTANTIATE_TEST_SUITE_P(Rates, ExtendedRates, testing::Values(96000, 192000));

TEST_P(ExtendedRates, AreMeasuredOnTheSimulatedCard) {
    ExpectPureSine(GetParam(), {}, kSimulated);
}

TEST_P(ExtendedRates, AreMeasuredOnAServer) {
    const PulseServer server({{"card", static_cast<std::uint32_t>(GetParam()), "Card"}});
    ExpectPureSine(GetParam(), {"--output", "card", "--input", "card.monitor"},
                   {{"PULSE_SERVER", server.Address()}});
}

TEST_P(ExtendedRates, AreMeasuredOnACardWithoutServer) {
    const LoopCards cards(CardList{{"card", "Test card", {GetParam()}}});
    ExpectPureSine(GetParam(), {"--output", "alsa:card", "--input", "alsa:card"}, cards.ForPrograms());
}

TEST_P(ExtendedRates, TakeFrequenciesUpToHalfTheRate) {
    const std::string frequency = std::to_string(GetParam() / 16 * 5);
    const ordered_json line =
        SettledUpdate(GetParam(), {"--tone", "sine:" + frequency, "--frequency", frequency}, kSimulated);
    EXPECT_EQ(line["frequency"], frequency);
    EXPECT_EQ(line["peakBin"], 1280);
    EXPECT_EQ(line["locked"], true);
}

TEST(ExtendedRatesLock, HoldsOnAFrequencyBetweenBins) {
    const ordered_json line =
        SettledUpdate(192000, {"--tone", "sine:1007", "--frequency", "1007"}, kSimulated);
    EXPECT_EQ(line["peakBin"], 21);  // 984 Hz
    EXPECT_EQ(line["locked"], true);
}

}  // namespace
}  // namespace sonavex
