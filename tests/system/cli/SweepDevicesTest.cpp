// Runs on loops of 24 bits: a sound server of each kind, and a card without a server. Only dither limits
// them.

#include <gmock/gmock.h>

#include <array>
#include <cmath>
#include <csignal>

#include "support/Files.h"
#include "support/PipeWireServer.h"
#include "support/PulseServer.h"
#include "support/alsa/LoopCards.h"
#include "support/alsa/PlayedEnd.h"
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

TEST(SweepOnDevices, ASignalEndsTheToneWithARampAndNothingIsLouderThanTheRun) {
    LoopCards cards(CardList{{.name = "card", .description = "Test card", .format = "S32_LE"}});
    MeasureProgram program(
        {"sweep", "--rate", "48000", "--length", "4096", "--over", "frequency", "--list", "100,120,140,160",
         "--dbfs", "-6", "--output", "alsa:card", "--input", "alsa:card"},
        cards.ForPrograms());
    ASSERT_TRUE(program.Prints("\"point\":1", 20s));
    program.Send(SIGTERM);
    ASSERT_TRUE(program.End(10s).ended);
    const std::vector<double> played = PlayedBy(cards.State("card"));
    const double peak = std::pow(10.0, -6.0 / 20.0);
    for (const double sample : played) ASSERT_LE(std::abs(sample), peak + 4e-7);
    const PlayedEnd end = EndOf(played);
    EXPECT_TRUE(end.silent);
    EXPECT_NEAR(end.loudest, peak, 1e-3);
    // The slopes of the tone and of its ramp of 5 ms.
    EXPECT_LE(end.largestStep, peak * (2.0 * M_PI * 160.0 / 48000 + 0.5 * M_PI / 240));
}

}  // namespace
}  // namespace sonavex
