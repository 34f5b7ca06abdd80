// The precise measurement with sound devices, against theory.

#include <gmock/gmock.h>

#include <algorithm>
#include <cmath>
#include <csignal>
#include <thread>

#include "support/Files.h"
#include "support/MachineLoad.h"
#include "support/PipeWireServer.h"
#include "support/PulseServer.h"
#include "support/alsa/LoopCards.h"
#include "system/cli/MeasureProgram.h"

namespace sonavex {
namespace {

using namespace std::chrono_literals;
using nlohmann::ordered_json;
using testing::HasSubstr;
using testing::StartsWith;

// Noise of a loop whose only imperfection is the dither of its stimulus, in dBFS.
double DitherDbfs(int bits, double rateHz) {
    const double half = 0.5 * rateHz;
    const double band = (std::min(20000.0, half) - 20.0) / half;
    return 20.0 * std::log10(std::ldexp(1.0, 1 - bits) / std::sqrt(2.0)) + 10.0 * std::log10(band);
}

// The newest of the valid readings with the most records. A busy machine may lose frames, which begins the
// average again.
ordered_json ValidReading(const Outcome& outcome) {
    EXPECT_TRUE(outcome.ended);
    EXPECT_EQ(outcome.errors, "");
    ordered_json valid;
    for (const ordered_json& line : outcome.Json())
        if (line["valid"] && (valid.is_null() || line["blocks"] >= valid["blocks"])) valid = line;
    EXPECT_FALSE(valid.is_null()) << outcome.output.substr(0, 2000);
    return valid;
}

ordered_json ValidReading(MeasureProgram& program) {
    return ValidReading(program.End(20s));
}

// What a dithered sine of -1 dBFS reads in a digital loop.
void ExpectDitherOnly(const ordered_json& reading, int bits, double rateHz) {
    if (reading.is_null()) return;
    const double noise = DitherDbfs(bits, rateHz);
    EXPECT_NEAR(reading["frequency_hz"].get<double>(), 997.3, 1e-3);
    EXPECT_NEAR(reading["level_dbfs"].get<double>(), -1.0, 1e-3);
    EXPECT_NEAR(reading["noise_dbfs"].get<double>(), noise, 0.2);
    EXPECT_NEAR(reading["thdn_db"].get<double>(), noise + 1.0, 0.3);
    EXPECT_EQ(reading["input_bits"], bits);
    EXPECT_EQ(reading["output_bits"], bits);
    EXPECT_EQ(reading["bits"], bits);
    EXPECT_EQ(reading["rate_hz"], rateHz);
    EXPECT_EQ(reading["mode"], "thd");
    EXPECT_EQ(reading["played_hz"], ordered_json({997.3}));
    EXPECT_EQ(reading["stimulus"], "sine:997.3");
    EXPECT_TRUE(reading["notes"].is_array());
}

// A third of a second is long enough for the noise of a digital loop.
Arguments LoopAnalysis(const std::string& output, const std::string& input, int rateHz,
                       const Arguments& more = {"--average", "0", "--seconds", "2"}) {
    const std::string length = rateHz > 48000 ? "32768" : "16384";
    Arguments arguments{
        "analyze",  "--output", output,       "--input",    input,   "--rate", std::to_string(rateHz),
        "--length", length,     "--stimulus", "sine:997.3", "--json"};
    arguments.insert(arguments.end(), more.begin(), more.end());
    return arguments;
}

// -142.3 dBFS in the band.
TEST(AnalyzeLive, ReadsTheDitherOfNullSinks) {
    const PulseServer server({{"card", 48000, "Card", "s24le"}, {"wide", 48000, "Wide", "s32le"}});
    const Environment environment{{"PULSE_SERVER", server.Address()}};
    MeasureProgram card(LoopAnalysis("card", "card.monitor", 48000), environment);
    MeasureProgram wide(LoopAnalysis("wide", "wide.monitor", 48000), environment);
    ExpectDitherOnly(ValidReading(card), 24, 48000);
    ExpectDitherOnly(ValidReading(wide), 24, 48000);
}

TEST(AnalyzeLive, ReadsTheDitherOfALoopThroughPipeWire) {
    const PipeWireServer server({{"card", 48000, "Card"}}, PipeWireServer::kPatientCycle);
    const Outcome outcome =
        Measure(LoopAnalysis("card", "card.monitor", 48000), {{"PULSE_SERVER", server.Address()}});
    ExpectDitherOnly(ValidReading(outcome), 24, 48000);
}

// -145.3 dBFS in the band at 96 kHz.
TEST(AnalyzeLive, ReadsTheDitherOfCards) {
    const LoopCards cards(CardList{
        {.name = "card", .description = "Test card", .format = "S32_LE"},
        {.name = "fast", .description = "Fast card", .ratesHz = {96000}, .format = "S32_LE"},
    });
    MeasureProgram card(LoopAnalysis("alsa:card", "alsa:card", 48000), cards.ForPrograms());
    MeasureProgram fast(LoopAnalysis("alsa:fast", "alsa:fast", 96000), cards.ForPrograms());
    ExpectDitherOnly(ValidReading(card), 24, 48000);
    ExpectDitherOnly(ValidReading(fast), 24, 96000);
}

// The tolerance of the noise is six standard deviations of one record.
void ExpectTrueIfValid(const ordered_json& reading) {
    if (!reading["valid"]) return;
    EXPECT_NEAR(reading["frequency_hz"].get<double>(), 997.3, 1e-3);
    EXPECT_NEAR(reading["level_dbfs"].get<double>(), -1.0, 1e-4);
    EXPECT_NEAR(reading["noise_dbfs"].get<double>(), DitherDbfs(24, 48000), 0.5);
    EXPECT_NEAR(reading["thdn_db"].get<double>(), DitherDbfs(24, 48000) + 1.0, 0.5);
    EXPECT_LT(reading["thd_db"].get<double>(), -150.0);
}

// The server is stopped for longer than its buffers last.
TEST(AnalyzeLive, AnOverloadedServerVoidsReadingsAndNeverFalsifiesThem) {
    PulseServer server({{"card", 48000, "Card", "s24le"}});
    const MachineLoad load;
    MeasureProgram program(LoopAnalysis("card", "card.monitor", 48000, {"--seconds", "4"}),
                           {{"PULSE_SERVER", server.Address()}});
    ASSERT_TRUE(program.Prints("\"valid\":", 20s));
    server.Pause();
    std::this_thread::sleep_for(600ms);
    server.Continue();
    const Outcome outcome = program.End(20s);
    EXPECT_TRUE(outcome.ended);
    EXPECT_EQ(outcome.errors, "");
    const std::vector<ordered_json> readings = outcome.Json();
    for (const ordered_json& reading : readings) ExpectTrueIfValid(reading);
    EXPECT_TRUE(std::any_of(readings.begin(), readings.end(), [](const ordered_json& reading) {
        return reading["void"] == ordered_json({"disturbed"});
    })) << outcome.output.substr(0, 2000);
}

// At least until the first reading.
Arguments FirstReading(const Arguments& more, const std::string& seconds = "0") {
    Arguments arguments{"analyze", "--rate", "48000", "--length", "4096", "--seconds", seconds};
    arguments.insert(arguments.end(), more.begin(), more.end());
    return arguments;
}

TEST(AnalyzeLive, ReadsTheSimulatedCardOf16Bits) {
    const Outcome outcome = MeasureSimulated(LoopAnalysis("", "", 48000));
    const ordered_json reading = ValidReading(outcome);
    ExpectDitherOnly(reading, 16, 48000);
    EXPECT_EQ(outcome.status, outcome.Json().back()["valid"] ? 0 : 2);
    EXPECT_EQ(reading["warnings"], ordered_json({"limited by 16 bit"}));
    EXPECT_EQ(reading["simulated"], true);
    EXPECT_THAT(reading["input"].get<std::string>(), HasSubstr("imulated"));
    EXPECT_THAT(reading["output"].get<std::string>(), HasSubstr("imulated"));
    for (const char* counter : {"frames_lost", "frames_missing", "stimulus_frames_missing", "underruns"})
        EXPECT_TRUE(reading[counter].is_number()) << counter;
}

TEST(AnalyzeLive, AveragesAndPrintsALineForEachReading) {
    MeasureProgram two(FirstReading({"--stimulus", "sine:1000", "--average", "2", "--json"}, "1"),
                       kSimulated);
    MeasureProgram all(FirstReading({"--stimulus", "sine:1000", "--average", "0", "--json"}, "1"),
                       kSimulated);
    const auto blocks = [](MeasureProgram& program) {
        int most = 0;
        for (const ordered_json& line : program.End(20s).Json())
            most = std::max(most, line["blocks"].get<int>());
        return most;
    };
    EXPECT_EQ(blocks(two), 2);
    EXPECT_GT(blocks(all), 2);
}

TEST(AnalyzeLive, WritesFilesAndATable) {
    const PrivateFolder folder;
    const std::string reference = folder.Path() / "reference.json";
    const std::string spectrum = folder.Path() / "spectrum.csv";
    const std::string residual = folder.Path() / "residual.wav";
    const Outcome outcome =
        MeasureSimulated(FirstReading({"--stimulus", "sine:2400", "--snap", "--save-reference", reference,
                                       "--spectrum", spectrum, "--residual", residual}));
    EXPECT_EQ(outcome.errors, "");
    EXPECT_EQ(outcome.status, 0);
    EXPECT_THAT(outcome.output, StartsWith("VALID\n"));
    // Bin 205.
    EXPECT_THAT(outcome.output, HasSubstr("Played: 2402.34375 Hz\n"));
    EXPECT_THAT(outcome.output, HasSubstr("SIMULATED"));
    EXPECT_EQ(ordered_json::parse(FileText(reference))["valid"], true);
    EXPECT_THAT(FileText(spectrum), HasSubstr("record: 4096 samples; records: 1,"));
    EXPECT_GT(FileText(residual).size(), 4U * 4096U);

    const Outcome compared = MeasureSimulated(
        FirstReading({"--stimulus", "sine:2400", "--reference", reference, "--idle", reference, "--json"}));
    const ordered_json rules = ValidReading(compared)["rules"];
    ASSERT_EQ(rules.size(), 4U) << rules;
    EXPECT_EQ(rules[0]["rule"], "source");
    EXPECT_EQ(rules[0]["met"], false);
    EXPECT_EQ(rules[2]["rule"], "idle");
}

// Without --mode.
TEST(AnalyzeLive, TheStimulusChoosesTheMode) {
    MeasureProgram pair(FirstReading({"--json", "--stimulus", "pair:300,3000,4"}), kSimulated);
    MeasureProgram tones(FirstReading({"--json", "--stimulus", "multitone:300@0,700@-6"}), kSimulated);
    MeasureProgram noise(FirstReading({"--json", "--stimulus", "white"}), kSimulated);
    MeasureProgram square(FirstReading({"--json", "--stimulus", "square:400"}), kSimulated);
    const ordered_json products = ValidReading(pair);
    EXPECT_EQ(products["mode"], "imd");
    EXPECT_LT(products["mod_db"].get<double>(), -80.0);
    const ordered_json multitone = ValidReading(tones);
    EXPECT_EQ(multitone["mode"], "multitone");
    EXPECT_EQ(multitone["level_dbfs"].size(), 2U);
    EXPECT_LT(multitone["tdn_db"].get<double>(), -80.0);
    const ordered_json level = ValidReading(noise);
    EXPECT_EQ(level["mode"], "noise");
    EXPECT_NEAR(level["level_dbfs"].get<double>(), -12.0, 0.3);
    const ordered_json harmonics = ValidReading(square);
    EXPECT_EQ(harmonics["mode"], "thd");
    EXPECT_NEAR(harmonics["harmonic"][1]["level_dbc"].get<double>(), 20.0 * std::log10(1.0 / 3.0), 0.01);
}

TEST(AnalyzeLive, AModeCanBeChosenForAnyStimulus) {
    const ordered_json noise = ValidReading(
        MeasureSimulated(FirstReading({"--json", "--stimulus", "sine:1000", "--mode", "noise"})));
    EXPECT_EQ(noise["mode"], "noise");
    EXPECT_NEAR(noise["level_dbfs"].get<double>(), -1.0, 0.01);
}

// The other channel is silent.
TEST(AnalyzeLive, PlaysOnOneSide) {
    MeasureProgram played(FirstReading({"--stimulus", "sine:2400", "--side", "right", "--channel", "1",
                                        "--dbfs", "-20", "--json"}),
                          kSimulated);
    MeasureProgram silent(
        FirstReading({"--stimulus", "sine:2400", "--side", "right", "--dither", "off", "--json"}),
        kSimulated);
    EXPECT_NEAR(ValidReading(played)["level_dbfs"].get<double>(), -20.0, 0.01);
    EXPECT_EQ(silent.End(20s).status, 2);
}

TEST(AnalyzeLive, SilenceIsVoid) {
    const Outcome outcome = MeasureSimulated(FirstReading({"--json"}));
    EXPECT_EQ(outcome.status, 2);
    ASSERT_FALSE(outcome.Json().empty());
    EXPECT_EQ(outcome.Json().back()["void"], ordered_json({"silence"}));
    EXPECT_TRUE(outcome.Json().back()["thd_db"].is_null());
}

// The first reading would take 22 seconds; nothing is void until then.
TEST(AnalyzeLive, EndedBeforeTheFirstReadingItHasOneVoidLine) {
    MeasureProgram program(
        {"analyze", "--rate", "48000", "--length", "1048576", "--stimulus", "sine:1000", "--json"},
        kSimulated);
    std::this_thread::sleep_for(1s);
    EXPECT_FALSE(program.Prints("{", 0ms));
    program.Send(SIGTERM);
    const Outcome outcome = program.End(10s);
    EXPECT_EQ(outcome.status, 2);
    ASSERT_EQ(outcome.Json().size(), 1U);
    EXPECT_EQ(outcome.Json()[0]["void"], ordered_json({"too short"}));
    EXPECT_THAT(outcome.Json()[0]["sentences"][0].get<std::string>(), HasSubstr(" of 1048576"));
}

TEST(AnalyzeLive, ASignalEndsItWithTheStatusOfTheLastReading) {
    const Arguments endless = FirstReading({"--stimulus", "sine:1000", "--json"}, "1000");
    MeasureProgram interrupted(endless, kSimulated);
    MeasureProgram terminated(endless, kSimulated);
    const auto end = [](MeasureProgram& program, int signal) {
        ASSERT_TRUE(program.Prints("\"valid\":true", 20s));
        program.Send(signal);
        const Outcome outcome = program.End(10s);
        EXPECT_TRUE(outcome.ended);
        EXPECT_EQ(outcome.errors, "");
        EXPECT_EQ(outcome.status, outcome.Json().back()["valid"] ? 0 : 2);
    };
    end(interrupted, SIGINT);
    end(terminated, SIGTERM);
}

Arguments EndlessAnalysis() {
    return LoopAnalysis("card", "card.monitor", 48000, {"--seconds", "600"});
}

TEST(AnalyzeLive, ALostServerIsAnError) {
    PulseServer server({{"card", 48000, "Card"}});
    MeasureProgram program(EndlessAnalysis(), {{"PULSE_SERVER", server.Address()}});
    ASSERT_TRUE(program.Prints("\"valid\":", 20s));
    server.Kill();
    Outcome outcome = program.End(3s);
    outcome.output.clear();
    ExpectRefusal(outcome, "The connection to the sound server was lost.");
}

// The server does not answer, so that the first signal has no effect at once.
TEST(AnalyzeLive, ASecondSignalEndsItAtOnce) {
    PulseServer server({{"card", 48000, "Card"}});
    MeasureProgram program(EndlessAnalysis(), {{"PULSE_SERVER", server.Address()}});
    ASSERT_TRUE(program.Prints("\"valid\":", 20s));
    server.Pause();
    program.Send(SIGTERM);
    EXPECT_FALSE(program.End(300ms).ended);
    program.Send(SIGTERM);
    EXPECT_EQ(program.End(1s).status, 128 + SIGTERM);
    server.Continue();
}

TEST(AnalyzeLive, RefusesWhatCannotBePlayedOrMeasured) {
    const auto refused = [](const Arguments& more, const char* text) {
        ExpectRefusal(MeasureSimulated(FirstReading(more)), text);
    };
    refused({"--stimulus", "sine"}, "sine");
    refused({"--stimulus", ""}, "--stimulus takes");
    refused({"--stimulus", "sine:25000"}, "25000");
    refused({"--stimulus", "sine:1000", "--dbfs", "0"}, "0");
    refused({"--stimulus", "sine:1000", "--dither", "24"}, "24");
    refused({"--stimulus", "sine:1000", "--dither", "none"},
            "--dither takes 8 to 32 bits or off, not 'none'.");
    refused({"--stimulus", "sine:1000", "--side", "top"}, "--side takes left, right or both, not 'top'.");
    refused({"--stimulus", "sine:1000", "--mode", "imd"}, "The mode imd takes two tones.");
    refused({"--stimulus", "sine:1000", "--tones", "1,2"}, "--tones is for the modes imd and multitone.");
    refused({"--snap"}, "--stimulus");
    refused({"--dbfs", "-3"}, "--stimulus");
    refused({"--average", "-1"}, "--average");
    refused({"--fundamental", "24000"}, "half the sampling rate");
    refused({"--mode", "multitone"}, "needs --tones");
    refused({"--input", "absent"}, "There is no input device 'absent'");
    refused({"--reference", "absent.json"}, "absent.json");
    refused({"a.wav"}, "--rate");
}

}  // namespace
}  // namespace sonavex
