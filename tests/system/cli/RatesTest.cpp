// The main use case on real streams, at each of the seven indexed rates: a 1000 Hz sine is played through a
// sound server, returns bit for bit and is measured.

#include <gmock/gmock.h>

#include <chrono>
#include <cstdlib>
#include <map>
#include <memory>
#include <thread>

#include "support/PipeWireServer.h"
#include "support/PulseServer.h"
#include "system/cli/MeasureProgram.h"

namespace sonavex {
namespace {

using namespace std::chrono_literals;
using nlohmann::ordered_json;

constexpr std::uint32_t kRates[]{48000, 44100, 32000, 22050, 16000, 8000, 4000};
const std::string kAllNotAvailable = "N/A N/A N/A N/A N/A N/A N/A N/A";

std::string SinkOf(std::uint32_t rateHz) {
    return "card" + std::to_string(rateHz);
}

// Expectations for every update of such a loop at any rate.
void ExpectLoopUpdate(const ordered_json& line, std::int64_t block, std::uint32_t rateHz) {
    ExpectShape(line, true);
    EXPECT_EQ(line["block"], block);
    EXPECT_EQ(line["locked"], true);
    // The first cycle has only 18 blocks, and the first of them are silent.
    EXPECT_EQ(line["settled"], block > 18);
    EXPECT_EQ(line["adc"], "25");
    EXPECT_EQ(line["adcPeak"], 8192);
    EXPECT_EQ(line["dac"], "Muted");
    EXPECT_EQ(line["dacPeak"], 0);
    EXPECT_EQ(line["rate"], rateHz);
    EXPECT_EQ(line["simulated"], false);
}

std::vector<ordered_json> LoopUpdates(const Outcome& outcome, std::uint32_t rateHz) {
    EXPECT_TRUE(outcome.ended);
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.errors, "");
    const std::vector<ordered_json> lines = outcome.Json();
    EXPECT_GE(lines.size(), 2U);
    std::int64_t block = 18;
    for (const ordered_json& line : lines) {
        ExpectLoopUpdate(line, block, rateHz);
        block += 19;
    }
    return lines;
}

double Total(const ordered_json& line) {
    return std::strtod(line.at("thd").get<std::string>().c_str(), nullptr);
}

// Runs the measurements at all rates in parallel, because the lowest rate needs 19 seconds.
class AllRates : public testing::Environment {
public:
    void SetUp() override {
        std::vector<NullSink> sinks;
        for (const std::uint32_t rateHz : kRates)
            sinks.push_back({SinkOf(rateHz), rateHz, "Card" + std::to_string(rateHz)});
        server_ = std::make_unique<PulseServer>(sinks);
        for (const std::uint32_t rateHz : kRates) {
            programs_[rateHz] = Start(rateHz);
            // The server refuses a connection while five others wait.
            std::this_thread::sleep_for(100ms);
        }
    }
    void TearDown() override {
        programs_.clear();
        server_.reset();
    }
    // A busy machine starves the server. A counted loss excuses one repetition.
    Outcome End(std::uint32_t rateHz) {
        const Outcome outcome = programs_.at(rateHz)->End(30s);
        if (!CountsLosses(outcome)) return outcome;
        programs_[rateHz] = Start(rateHz);
        return programs_.at(rateHz)->End(30s);
    }

private:
    static bool CountsLosses(const Outcome& outcome) {
        if (outcome.status != 0) return false;
        const ordered_json last = outcome.Json().back();
        for (const char* count : {"blocksLost", "framesMissing", "overruns", "underruns"})
            if (last.at(count) != 0) return true;
        return false;
    }
    std::unique_ptr<MeasureProgram> Start(std::uint32_t rateHz) {
        return std::make_unique<MeasureProgram>(
            Arguments{"run", "--output", SinkOf(rateHz), "--input", SinkOf(rateHz) + ".monitor", "--rate",
                      std::to_string(rateHz), "--tone", "sine:1000", "--seconds", "2.5", "--json"},
            sonavex::Environment{{"PULSE_SERVER", server_->Address()}});
    }

    std::unique_ptr<PulseServer> server_;
    std::map<std::uint32_t, std::unique_ptr<MeasureProgram>> programs_;
};

AllRates* const allRates = [] {
    auto environment = std::make_unique<AllRates>();
    AllRates* const kept = environment.get();
    testing::AddGlobalTestEnvironment(environment.release());
    return kept;
}();

class PulseRates : public testing::TestWithParam<std::uint32_t> {};

TEST_P(PulseRates, ReadAsTheRateDemands) {
    const std::uint32_t rateHz = GetParam();
    const std::vector<ordered_json> lines = LoopUpdates(allRates->End(rateHz), rateHz);
    ASSERT_GE(lines.size(), 2U);
    EXPECT_EQ(lines[0]["input"], "Monitor of Card" + std::to_string(rateHz));
    EXPECT_EQ(lines[0]["output"], "Card" + std::to_string(rateHz));
    struct Expected {
        int peakBin;
        const char* frequency;
        double leastPct;
        double mostPct;
    };
    // At these rates the block does not hold a whole number of periods, or just does; the readings are the
    // leakage at the harmonics' bins.
    const std::map<std::uint32_t, Expected> expected{
        {48000, {85, "996", 0.81, 0.84}},   {44100, {93, "1001", 0.74, 0.81}},
        {32000, {128, "1000", 0.0, 0.003}}, {22050, {186, "1001", 0.16, 0.19}},
        {16000, {256, "1000", 0.0, 0.006}}, {8000, {512, "1000", 0.0, 0.0}},
        {4000, {1024, "1000", 0.0, 0.0}}};
    const Expected& at = expected.at(rateHz);
    EXPECT_EQ(lines[0]["notes"], ordered_json::array());
    for (const ordered_json& line : lines) {
        EXPECT_EQ(line["peakBin"], at.peakBin);
        EXPECT_EQ(line["frequency"], at.frequency);
        if (line["settled"] == false) continue;
        EXPECT_GE(Total(line), at.leastPct);
        EXPECT_LE(Total(line), at.mostPct);
    }
}

TEST_P(PulseRates, HarmonicsBeyondTheBandAreNotAvailable) {
    const std::uint32_t rateHz = GetParam();
    const std::vector<ordered_json> lines = LoopUpdates(allRates->End(rateHz), rateHz);
    ASSERT_GE(lines.size(), 2U);
    const ordered_json& line = lines[1];
    if (rateHz <= 8000) {
        const std::string second = line["percent"][0];
        const bool zeroAt8000 = rateHz == 8000 && second == "0.0000";
        EXPECT_EQ(Captions(line, "percent").substr(second.size()), kAllNotAvailable.substr(3));
        EXPECT_TRUE(zeroAt8000 || second == "N/A") << second;
        EXPECT_EQ(line["thd"], second);
        EXPECT_EQ(Captions(line, "db"), kAllNotAvailable);
        return;
    }
    // The highest harmonic below the upper limit, 1000 Hz under half the rate.
    const std::size_t last = rateHz == 16000 ? 6 : 9;
    for (std::size_t harmonic = last + 1; harmonic <= 9; ++harmonic) {
        EXPECT_EQ(line["percent"][harmonic - 2], "N/A");
        EXPECT_EQ(line["db"][harmonic - 2], "N/A");
    }
    EXPECT_EQ(line["percent"][last - 2], line["thd"]);
    EXPECT_NE(line["thd"], "N/A");
}

INSTANTIATE_TEST_SUITE_P(PulseAudio, PulseRates, testing::ValuesIn(kRates),
                         [](const auto& test) { return "Hz" + std::to_string(test.param); });

TEST(PipeWireLoop, ReadsAsOnPulseAudio) {
    const PipeWireServer server({{"card", 48000, "Card"}}, PipeWireServer::kPatientCycle);
    const Outcome outcome = MeasureProgram({"run", "--rate", "48000", "--tone", "sine:1000", "--json"},
                                           {{"PULSE_SERVER", server.Address()}})
                                .End(20s);
    const std::vector<ordered_json> lines = LoopUpdates(outcome, 48000);
    // The default duration is five seconds.
    ASSERT_GE(lines.size(), 5U);
    EXPECT_EQ(lines[0]["output"], "Card");
    EXPECT_EQ(lines[0]["peakBin"], 85);
    for (const ordered_json& line : lines) {
        EXPECT_EQ(line["frequency"], "996");
        if (line["settled"] == false) continue;
        EXPECT_GE(Total(line), 0.81);
        EXPECT_LE(Total(line), 0.84);
    }
}

}  // namespace
}  // namespace sonavex
