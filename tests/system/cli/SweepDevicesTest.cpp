// Runs on loops of 24 bits: a sound server of each kind, and a card without a server. Only dither limits
// them.

#include <gmock/gmock.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cmath>
#include <csignal>

#include "support/Files.h"
#include "support/PipeWireServer.h"
#include "support/PulseServer.h"
#include "support/alsa/LoopCards.h"
#include "system/cli/MeasureProgram.h"

namespace sonavex {
namespace {

using namespace std::chrono_literals;
using nlohmann::ordered_json;
using testing::HasSubstr;

constexpr std::array<double, 4> kLoopHz{100, 997.3, 3000, 6000};
constexpr double kLoopDbfs = -1;
// Dither of 24 bits in the band from 20 to 20000 Hz at 48 kHz, relative to the tone.
constexpr double kLoopThdnDb = -142.3 - kLoopDbfs;

// A third of a second is long enough for the noise of a digital loop.
Arguments LoopSweep(const std::string& output, const std::string& input, const Arguments& more) {
    Arguments arguments{"sweep",
                        "--rate",
                        "48000",
                        "--length",
                        "16384",
                        "--over",
                        "frequency",
                        "--list",
                        "100,997.3,3000,6000",
                        "--output",
                        output,
                        "--input",
                        input,
                        "--limit",
                        "thd:-150",
                        "--limit",
                        "thdn:-140",
                        "--limit",
                        "response:-0.001:0.001"};
    arguments.insert(arguments.end(), more.begin(), more.end());
    return arguments;
}

void ExpectLoopPoint(const ordered_json& point, double hertz) {
    EXPECT_EQ(point["valid"], true);
    EXPECT_EQ(point["void"], ordered_json::array());
    EXPECT_EQ(point["requested_hz"], hertz);
    EXPECT_NEAR(point["frequency_hz"].get<double>(), hertz, 1e-3);
    EXPECT_NEAR(point["level_dbfs"].get<double>(), kLoopDbfs, 1e-3);
    EXPECT_NEAR(point["gain_db"].get<double>(), 0.0, 1e-3);
    EXPECT_NEAR(point["thdn_db"].get<double>(), kLoopThdnDb, 0.5);
    EXPECT_LT(point["thd_db"].get<double>(), -150.0);
    EXPECT_GE(point["harmonic"].size(), 2U);
    EXPECT_EQ(point["blocks"], 2);
    // Virtual devices do not tell their clocks.
    EXPECT_TRUE(point["phase_deg"].is_null());
    EXPECT_GT(point["path_delay_ms"].get<double>(), 5.0);
    EXPECT_LT(point["path_delay_ms"].get<double>(), 500.0);
    EXPECT_EQ(point["after_loss"], false);
    EXPECT_EQ(point["bits"], 24);
    EXPECT_EQ(point["input_bits"], 24);
    EXPECT_EQ(point["output_bits"], 24);
    EXPECT_EQ(point["simulated"], false);
}

void ExpectLoopRun(const std::string& output, const std::string& input, const Environment& sound) {
    const PrivateFolder folder;
    const std::string csv = folder.Path() / "run.csv";
    MeasureProgram program(LoopSweep(output, input, {"--csv", csv}), sound);
    const Outcome outcome = program.End(60s);
    ASSERT_TRUE(outcome.ended);
    EXPECT_EQ(outcome.status, 0) << outcome.errors;
    EXPECT_THAT(outcome.errors, HasSubstr("\nPASS: 4 of 4 points measured. Worst: "));
    const std::vector<ordered_json> points = outcome.Json();
    ASSERT_EQ(points.size(), kLoopHz.size());
    for (std::size_t i = 0; i < points.size(); ++i) ExpectLoopPoint(points[i], kLoopHz.at(i));
    EXPECT_THAT(FileText(csv), HasSubstr("\n# PASS: 4 of 4 points measured."));
}

TEST(SweepOnDevices, MeasuresALoopOfPulseAudio) {
    const PulseServer server({{"card", 48000, "Card", "s24le"}});
    ExpectLoopRun("card", "card.monitor", {{"PULSE_SERVER", server.Address()}});
}

TEST(SweepOnDevices, MeasuresALoopOfPipeWire) {
    const PipeWireServer server({{"card", 48000, "Card"}}, PipeWireServer::kPatientCycle);
    ExpectLoopRun("card", "card.monitor", {{"PULSE_SERVER", server.Address()}});
}

TEST(SweepOnDevices, MeasuresALoopOfACard) {
    const LoopCards cards(CardList{{.name = "card", .description = "Test card", .format = "S32_LE"}});
    ExpectLoopRun("alsa:card", "alsa:card", cards.ForPrograms());
}

// The left channel that the card has played, full scale 1, up to its newest frame. The card keeps 5 s.
std::vector<double> Played(const LoopCardState& card) {
    const auto tagOf = [](std::uint64_t word) { return word >> 48U; };
    std::vector<std::uint64_t> words;
    for (const std::atomic<std::uint64_t>& frame : card.frames) words.push_back(frame.load());
    const std::uint64_t newestTag = tagOf(*std::max_element(words.begin(), words.end()));
    const auto older = std::find_if(words.begin(), words.end(),
                                    [&](std::uint64_t word) { return tagOf(word) != newestTag; });
    std::rotate(words.begin(), older, words.end());
    std::vector<double> samples;
    for (const std::uint64_t word : words) {
        const auto bits = static_cast<std::int32_t>(static_cast<std::uint32_t>(word) << 8U);
        samples.push_back(tagOf(word) + 1 < newestTag ? 0.0 : std::ldexp(bits, -31));
    }
    return samples;
}

TEST(SweepOnDevices, ASignalEndsTheToneWithARampAndNothingIsLouderThanTheRun) {
    LoopCards cards(CardList{{.name = "card", .description = "Test card", .format = "S32_LE"}});
    MeasureProgram program(
        {"sweep", "--rate", "48000", "--length", "4096", "--over", "frequency", "--list", "100,120,140,160",
         "--dbfs", "-6", "--output", "alsa:card", "--input", "alsa:card"},
        cards.ForPrograms());
    ASSERT_TRUE(program.Prints("\"point\":1", 20s));
    program.Send(SIGTERM);
    ASSERT_TRUE(program.End(10s).ended);
    const std::vector<double> played = Played(cards.State("card"));
    const double peak = std::pow(10.0, -6.0 / 20.0);
    constexpr double kDither = 4e-7;
    for (const double sample : played) ASSERT_LE(std::abs(sample), peak + kDither);
    const auto loud = [](double sample) { return std::abs(sample) > kDither; };
    const auto last = std::find_if(played.rbegin(), played.rend(), loud);
    // Silence follows, and a quarter of a second before it contains the tone and the ramp of 5 ms. Their
    // slopes limit the steps.
    ASSERT_NE(last, played.rbegin());
    ASSERT_GT(played.rend() - last, 12000);
    const double steepest = peak * (2.0 * M_PI * 160.0 / 48000 + 0.5 * M_PI / 240);
    double loudest = 0.0;
    for (auto sample = last - 1; sample != last + 12000; ++sample) {
        loudest = std::max(loudest, std::abs(*sample));
        ASSERT_LE(std::abs(*sample - *(sample + 1)), steepest);
    }
    EXPECT_NEAR(loudest, peak, 1e-3);
}

}  // namespace
}  // namespace sonavex
