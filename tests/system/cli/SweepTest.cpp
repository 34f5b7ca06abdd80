// Runs over frequency and level, with sound devices.

#include <gmock/gmock.h>

#include <algorithm>
#include <cmath>
#include <csignal>
#include <fstream>

#include "support/Files.h"
#include "support/PulseServer.h"
#include "system/cli/MeasureProgram.h"

namespace sonavex {
namespace {

using namespace std::chrono_literals;
using nlohmann::ordered_json;
using testing::HasSubstr;
using testing::StartsWith;

// Three points of a fifth of a second.
Arguments ShortSweep(const Arguments& more = {}) {
    Arguments arguments{"sweep",  "--rate", "48000", "--length", "4096",         "--over", "frequency",
                        "--from", "1000",   "--to",  "4000",     "--per-octave", "1"};
    arguments.insert(arguments.end(), more.begin(), more.end());
    return arguments;
}

std::string LastLine(std::string text) {
    text.erase(text.find_last_not_of('\n') + 1);
    const std::size_t end = text.rfind('\n');
    return end == std::string::npos ? text : text.substr(end + 1);
}

// The phase in degrees without this delay, in place of the one that was known at the point.
double PhaseAfter(const ordered_json& point, double delayMs) {
    const double laterMs = delayMs - point["path_delay_ms"].get<double>();
    const double turns = point["played_hz"].get<double>() * laterMs / 1000.0;
    return std::remainder(point["phase_deg"].get<double>() + 360.0 * turns, 360.0);
}

TEST(SweepProgram, PrintsALineForEachPointAndTheVerdict) {
    const PrivateFolder folder;
    const std::string csv = folder.Path() / "run.csv";
    MeasureProgram program(ShortSweep({"--limit", "thdn:-60", "--limit", "response:-0.1:0.1", "--csv", csv}),
                           kSimulated);
    const Outcome outcome = program.End(60s);
    ASSERT_TRUE(outcome.ended);
    EXPECT_EQ(outcome.status, 0) << outcome.errors;
    const std::vector<ordered_json> points = outcome.Json();
    ASSERT_EQ(points.size(), 3U);
    for (std::size_t i = 0; i < points.size(); ++i) {
        const double hertz = 1000.0 * static_cast<double>(1U << i);
        EXPECT_EQ(points[i]["point"], i + 1);
        EXPECT_EQ(points[i]["points"], 3);
        EXPECT_EQ(points[i]["valid"], true);
        EXPECT_NEAR(points[i]["requested_hz"].get<double>(), hertz, 1e-9);
        EXPECT_NEAR(points[i]["frequency_hz"].get<double>(), hertz, 0.01);
        EXPECT_EQ(points[i]["stimulus_dbfs"], -1.0);
        EXPECT_NEAR(points[i]["gain_db"].get<double>(), 0.0, 0.001);
        EXPECT_NEAR(PhaseAfter(points[i], points.back()["path_delay_ms"]), 0.0, 0.01);
        EXPECT_LT(points[i]["thdn_db"].get<double>(), -90.0);
        EXPECT_EQ(points[i]["blocks"], 2);
        EXPECT_EQ(points[i]["harmonic"].size(), points[i]["lines"].get<std::size_t>() - 1);
        EXPECT_EQ(points[i]["simulated"], true);
    }
    EXPECT_THAT(outcome.errors, HasSubstr("1 of 3 points, "));
    EXPECT_THAT(LastLine(outcome.errors), StartsWith("PASS: 3 of 3 points measured. Worst: response "));

    const std::string table = FileText(csv);
    EXPECT_THAT(table, StartsWith("# run {\"over\":\"frequency\""));
    EXPECT_THAT(table, HasSubstr("\n# PASS: "));
    EXPECT_THAT(table, HasSubstr("\nrequested_hz,played_hz,stimulus_dbfs,valid,reason,attempts,after_loss,"));
    EXPECT_THAT(table, HasSubstr("\n2000,2000,-1,1,\"\","));
}

TEST(SweepProgram, PrintsThePreviewInALineOfItsOwn) {
    MeasureProgram program(ShortSweep({"--preview"}), kSimulated);
    const Outcome outcome = program.End(60s);
    ASSERT_EQ(outcome.status, 0) << outcome.errors;
    const std::vector<ordered_json> lines = outcome.Json();
    ASSERT_EQ(lines.size(), 4U);
    const auto preview = std::find_if(lines.begin(), lines.end(),
                                      [](const ordered_json& line) { return line.contains("preview"); });
    ASSERT_NE(preview, lines.end());
    ASSERT_EQ((*preview)["preview"].size(), 3U);
    for (const ordered_json& point : (*preview)["preview"]) {
        EXPECT_NEAR(point["gain_db"].get<double>(), 0.0, 0.1);
        EXPECT_GE(point["harmonics"].size(), 1U);
    }
    EXPECT_THAT(outcome.errors, HasSubstr("preview, 0 of 3 points, "));
}

TEST(SweepProgram, StoresTheRunInTheHistory) {
    const PrivateFolder folder;
    Environment environment = kSimulated;
    environment.emplace_back("XDG_DATA_HOME", folder.Path().string());
    MeasureProgram program(ShortSweep({"--history", "--limit", "thdn:-60"}), environment);
    const Outcome outcome = program.End(60s);
    ASSERT_EQ(outcome.status, 0) << outcome.errors;
    const std::vector<ordered_json> entries = Measure({"history", "--json"}, environment).Json();
    ASSERT_EQ(entries.size(), 1U);
    EXPECT_EQ(entries[0]["state"], "PASS");
    EXPECT_THAT(entries[0]["stimulus"].get<std::string>(), StartsWith("sweep: 1000 to 4000 Hz, 3 points"));
}

TEST(SweepProgram, AHistoryThatCannotBeWrittenLeavesTheRun) {
    const PrivateFolder folder;
    const std::string file = folder.Path() / "file";
    std::ofstream(file) << "no folder";
    Environment environment = kSimulated;
    environment.emplace_back("XDG_DATA_HOME", file);
    MeasureProgram program(ShortSweep({"--history"}), environment);
    const Outcome outcome = program.End(60s);
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.Json().size(), 3U);
    EXPECT_THAT(outcome.errors, HasSubstr("sonavex-measure: "));
}

TEST(SweepProgram, AValueBeyondItsLimitIsStatus3) {
    MeasureProgram program(ShortSweep({"--limit", "thdn:-120"}), kSimulated);
    const Outcome outcome = program.End(60s);
    EXPECT_EQ(outcome.status, 3);
    EXPECT_EQ(outcome.Json().size(), 3U);
    EXPECT_THAT(LastLine(outcome.errors), StartsWith("FAIL: 3 of 3 points beyond a limit. Worst: thdn "));
}

// Nothing returns on the other channel.
TEST(SweepProgram, VoidPointsAreStatus2) {
    MeasureProgram program(ShortSweep({"--side", "left", "--channel", "1", "--dither", "off"}), kSimulated);
    const Outcome outcome = program.End(60s);
    EXPECT_EQ(outcome.status, 2);
    const std::vector<ordered_json> points = outcome.Json();
    ASSERT_EQ(points.size(), 3U);
    for (const ordered_json& point : points) {
        EXPECT_EQ(point["valid"], false);
        EXPECT_EQ(point["void"], ordered_json({"silence"}));
        EXPECT_EQ(point["attempts"], 2);
        EXPECT_TRUE(point["thd_db"].is_null());
        EXPECT_TRUE(point["gain_db"].is_null());
    }
    EXPECT_EQ(LastLine(outcome.errors), "NOT COMPLETE: 3 of 3 points void, not measured or hidden by noise.");
}

TEST(SweepProgram, MeasuresARunFileOverLevelOnASoundServer) {
    const PulseServer server({{"card", 48000, "Card", "s24le"}});
    const PrivateFolder folder;
    const std::string file = folder.Path() / "run.json";
    const std::string table = folder.Path() / "limit.csv";
    WriteFile(file,
              R"({"over": "level", "frequency_hz": 997, "level_dbfs": {"from": -20, "to": -1, "step": 19},
                        "length": 16384, "snap": true, "limits": [{"quantity": "response", "at_least": -0.01}]})");
    WriteFile(table, "20,-90\n20000,-90\n");
    MeasureProgram program({"sweep", file, "--rate", "48000", "--output", "card", "--input", "card.monitor",
                            "--limit", "thdn:" + table},
                           {{"PULSE_SERVER", server.Address()}});
    const Outcome outcome = program.End(60s);
    EXPECT_EQ(outcome.status, 0) << outcome.errors;
    const std::vector<ordered_json> points = outcome.Json();
    ASSERT_EQ(points.size(), 2U);
    EXPECT_EQ(points[0]["stimulus_dbfs"], -20.0);
    EXPECT_NEAR(points[0]["level_dbfs"].get<double>(), -20.0, 1e-3);
    EXPECT_NEAR(points[1]["level_dbfs"].get<double>(), -1.0, 1e-3);
    EXPECT_EQ(points[1]["requested_hz"], 997.0);
    EXPECT_EQ(points[1]["played_hz"], 341 * 48000.0 / 16384);
    EXPECT_EQ(points[1]["bits"], 24);
    EXPECT_THAT(LastLine(outcome.errors), StartsWith("PASS: 2 of 2 points measured."));
}

TEST(SweepProgram, GoesOnWhenItsLinesCannotBeWritten) {
    const PrivateFolder folder;
    const std::string csv = folder.Path() / "run.csv";
    MeasureProgram program(ShortSweep({"--csv", csv}), kSimulated, {"/dev/full", {}});
    const Outcome outcome = program.End(60s);
    ASSERT_TRUE(outcome.ended);
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.errors, HasSubstr("Nothing more is printed; the run continues.\n"));
    EXPECT_THAT(outcome.errors, HasSubstr("3 of 3 points, 0 s left"));
    EXPECT_THAT(FileText(csv), HasSubstr("\n4000,4000,"));
}

TEST(SweepProgram, ASignalEndsItWithWhatWasMeasured) {
    MeasureProgram program({"sweep", "--rate", "48000", "--length", "4096", "--over", "frequency", "--from",
                            "1000", "--to", "4000", "--points", "500", "--limit", "thdn:-60"},
                           kSimulated);
    ASSERT_TRUE(program.Prints("\"point\":1", 20s));
    program.Send(SIGTERM);
    const Outcome outcome = program.End(5s);
    ASSERT_TRUE(outcome.ended);
    EXPECT_EQ(outcome.status, 2);
    EXPECT_GE(outcome.Json().size(), 1U);
    EXPECT_LT(outcome.Json().size(), 100U);
    EXPECT_THAT(LastLine(outcome.errors), StartsWith("NOT COMPLETE: "));
}

TEST(SweepProgram, WaitsForALostServerAndMarksTheLaterPoints) {
    PulseServer server({{"card", 48000, "Card", "s24le"}});
    MeasureProgram program(
        {"sweep", "--rate", "48000", "--length", "4096", "--over", "frequency", "--from", "1000", "--to",
         "4000", "--points", "500", "--output", "card", "--input", "card.monitor"},
        {{"PULSE_SERVER", server.Address()}});
    ASSERT_TRUE(program.Prints("\"point\":1", 20s));
    server.Kill();
    EXPECT_FALSE(program.End(3s).ended);
    server.Restart();
    EXPECT_TRUE(program.Prints("\"after_loss\":true,\"valid\":true", 30s));
    server.Kill();
    EXPECT_FALSE(program.End(2s).ended);
    program.Send(SIGTERM);
    const Outcome outcome = program.End(10s);
    ASSERT_TRUE(outcome.ended);
    EXPECT_EQ(outcome.status, 2);
    EXPECT_FALSE(outcome.Json().front()["after_loss"]);
    EXPECT_THAT(outcome.errors, HasSubstr(", paused: no sound device\n"));
    EXPECT_THAT(LastLine(outcome.errors), StartsWith("NOT COMPLETE: "));
}

// The lines of a run of five points that is killed after its second one.
std::string LinesOfKilledRun() {
    MeasureProgram program({"sweep", "--rate", "48000", "--length", "4096", "--over", "frequency", "--list",
                            "1000,1500,2000,3000,4000", "--dbfs", "-3", "--limit", "thdn:-60"},
                           kSimulated);
    EXPECT_TRUE(program.Prints("\"point\":2", 20s));
    program.Send(SIGKILL);
    const std::string output = program.End(5s).output;
    return output.substr(0, output.rfind('\n') + 1);
}

TEST(SweepProgram, ContinuesARunWithItsMissingPoints) {
    const PrivateFolder folder;
    const std::string file = folder.Path() / "run.jsonl";
    const std::string csv = folder.Path() / "run.csv";
    const std::string measured = LinesOfKilledRun();
    const auto before = static_cast<std::size_t>(std::count(measured.begin(), measured.end(), '\n'));
    WriteFile(file, measured + "{\"point\":");
    MeasureProgram program({"sweep", "--continue", file, "--csv", csv}, kSimulated);
    const Outcome outcome = program.End(60s);
    ASSERT_TRUE(outcome.ended);
    EXPECT_EQ(outcome.status, 0) << outcome.errors;
    EXPECT_THAT(outcome.errors, StartsWith("1 line of '" + file + "' skipped: "));
    EXPECT_THAT(LastLine(outcome.errors), StartsWith("PASS: 5 of 5 points measured. Worst: thdn "));
    const std::vector<ordered_json> points = outcome.Json();
    ASSERT_EQ(points.size(), 5 - before);
    for (std::size_t i = 0; i < points.size(); ++i) {
        EXPECT_EQ(points[i]["point"], before + i + 1);
        EXPECT_EQ(points[i]["valid"], true);
        EXPECT_EQ(points[i]["after_loss"], true);
        EXPECT_NEAR(points[i]["level_dbfs"].get<double>(), -3.0, 1e-3);
        EXPECT_EQ(points[i]["length"], 4096);
    }
    const std::string table = FileText(csv);
    EXPECT_THAT(table, HasSubstr("\n1000,1000,-3,1,\"\",1,0,"));
    EXPECT_THAT(table, HasSubstr("\n4000,4000,-3,1,\"\",1,1,"));
}

// Also behind an incomplete line; then the run is complete, and nothing is measured.
TEST(SweepProgram, AppendsToTheFileThatItContinues) {
    const PrivateFolder folder;
    const std::string file = folder.Path() / "run.jsonl";
    WriteFile(file, LinesOfKilledRun() + "{\"point\":");
    const Environment environment{{"SONAVEX_SOUND", "simulated"}, {"XDG_CONFIG_HOME", folder.Path()}};
    const Arguments command{"/bin/sh", "-c", "exec \"$0\" sweep --continue \"$1\" >>\"$1\"", SONAVEX_MEASURE,
                            file};
    RunProgram(command, environment, 60s);
    const std::string complete = FileText(file);
    EXPECT_EQ(std::count(complete.begin(), complete.end(), '\n'), 6);
    RunProgram(command, environment, 60s);
    EXPECT_EQ(FileText(file), complete);
    const Outcome outcome = MeasureSimulated({"sweep", "--continue", file});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.output, "");
    EXPECT_THAT(LastLine(outcome.errors), StartsWith("PASS: 5 of 5 points measured."));
}

TEST(SweepProgram, RefusesToContinueAnotherRun) {
    const PrivateFolder folder;
    const std::string file = folder.Path() / "run.jsonl";
    const auto refused = [&](const Arguments& more, const std::string& text) {
        Arguments arguments{"sweep", "--continue", file};
        arguments.insert(arguments.end(), more.begin(), more.end());
        ExpectRefusal(MeasureSimulated(arguments), text);
    };
    refused({}, "The run '" + file + "' cannot be read.");
    WriteFile(file, "{}\n");
    refused({}, "cannot be continued: It holds no line with a run.");
    const std::string lines = LinesOfKilledRun();
    WriteFile(file, lines);
    refused({"--rate", "44100"}, "measured at 48000 Hz and cannot be continued at 44100 Hz");
    refused({"--over", "frequency"}, "--continue");
    refused({"--dbfs", "-6"}, "--continue");
    std::string other = lines;
    for (std::size_t at = 0; (at = other.find("\"input\":\"", at)) != std::string::npos; ++at)
        other.insert(at + 9, "Another ");
    WriteFile(file, other);
    refused({}, "The input of the run is 'Another ");
}

TEST(SweepProgram, RefusesWhatIsNoRunBeforeItPlays) {
    const PrivateFolder folder;
    const auto refused = [](const Arguments& more, const std::string& text) {
        Arguments arguments{"sweep", "--rate", "48000"};
        arguments.insert(arguments.end(), more.begin(), more.end());
        ExpectRefusal(MeasureSimulated(arguments), text);
    };
    const auto file = [&](const char* name, const std::string& text) {
        WriteFile(folder.Path() / name, text);
        return std::string(folder.Path() / name);
    };
    refused({}, "A run needs --over frequency or --over level, or a file.");
    refused({"--over", "time"}, "--over takes frequency or level, not 'time'.");
    refused({"--over", "frequency", "--to", "22000"}, "above 21600 Hz, 0.45 of the rate");
    refused({"--over", "frequency", "--from", "5"}, "8 bins of a record");
    refused({"--over", "frequency", "--list", "100,x"}, "--list takes");
    refused({"--over", "frequency", "--list", "100", "--from", "20"}, "--list takes the place of");
    refused({"--over", "frequency", "--points", "3", "--step", "3"}, "Only one of");
    refused({"--over", "frequency", "--frequency", "3"}, "--frequency is for runs over level.");
    refused({"--over", "level"}, "A run over level needs --from and --to, or --list.");
    refused({"--over", "level", "--from", "-60", "--to", "-1", "--dbfs", "-1"},
            "--dbfs is for runs over frequency");
    refused({"--over", "level", "--from", "-60", "--to", "3"}, "outside -200 to 0 dBFS");
    refused({"--over", "level", "--list", "-60,0"}, "The level 0 dBFS is outside");
    refused({"--over", "frequency", "--dbfs", "-1", "--max-dbfs", "-6"},
            "above -6 dBFS, the highest of the run");
    refused({"--over", "frequency", "--limit", "thd"}, "--limit takes QUANTITY:[LOW:]HIGH");
    refused({"--over", "frequency", "--limit", "h10:-90"}, "--limit takes QUANTITY:[LOW:]HIGH");
    refused({"--over", "frequency", "--limit", "thd:absent.csv"}, "The limit 'absent.csv' cannot be read.");
    refused({"--over", "frequency", "--limit", "thd:" + file("unsorted.csv", "100,-80\n50,-80\n")},
            "not sorted");
    refused({"--over", "frequency", "--limit", "thd:" + file("short.csv", "100,-80\n500,-80\n")},
            "incomplete");
    refused({"absent.json"}, "The run 'absent.json' cannot be read.");
    refused({file("damaged.json", "{\"over\": \"frequency\",")}, "The run file: it is not JSON");
    refused({file("unknown.json", R"({"over": "frequency", "levels": 3})")},
            "'levels' is not known in the run");
    refused({file("run.json", R"({"over": "frequency"})"), "--over", "level"}, "--over");
    refused({"--over", "frequency", "--input", "absent"}, "There is no input device 'absent'");
}

}  // namespace
}  // namespace sonavex
