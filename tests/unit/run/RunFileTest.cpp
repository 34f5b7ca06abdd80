#include <gtest/gtest.h>

#include "core/run/RunFile.h"

namespace sonavex {
namespace {

std::string RunFileRefusal(const std::string& text) {
    try {
        ParseRunFile(text);
    } catch (const RunError& error) {
        return error.what();
    }
    return "accepted";
}

TEST(RunFile, TheAxisAloneIsARun) {
    const RunFile file = ParseRunFile(R"({"over": "frequency"})");
    EXPECT_EQ(file.plan.over, RunAxis::kFrequency);
    EXPECT_EQ(PointsOf(file.plan, 48000).size(), 61U);
    EXPECT_TRUE(file.limits.empty());
    EXPECT_FALSE(file.plan.snap);
    EXPECT_TRUE(file.plan.dither);
}

TEST(RunFile, ReadsEverySetting) {
    const RunFile file = ParseRunFile(R"({
        "over": "level", "frequency_hz": 997, "level_dbfs": {"from": -60, "to": -1, "step": 1},
        "highest_level_dbfs": -1, "side": "right", "dither": 16, "snap": true, "length": 32768,
        "channel": "right", "band": [10, 22000], "harmonics": 5,
        "settling": {"level_db": 0.02, "thdn_db": 0.5, "records": 20},
        "limits": [{"quantity": "thd", "at_most": -90},
                   {"quantity": "h3", "at_most": [[20, -80], [20000, -70]]},
                   {"quantity": "response", "at_least": -1, "at_most": 1}]})");
    const RunPlan& plan = file.plan;
    EXPECT_EQ(plan.over, RunAxis::kLevel);
    EXPECT_EQ(std::get<std::vector<double>>(plan.frequenciesHz), std::vector<double>{997});
    EXPECT_EQ(std::get<RunRange>(plan.levelsDbfs), (RunRange{-60, -1, RunRange::Spacing::kStep, 1}));
    EXPECT_EQ(plan.highestLevelDbfs, -1);
    EXPECT_EQ(plan.side, StimulusSide::kRight);
    EXPECT_TRUE(plan.dither);
    EXPECT_EQ(plan.ditherBits, 16);
    EXPECT_TRUE(plan.snap);
    EXPECT_EQ(plan.length, 32768U);
    EXPECT_EQ(plan.channel, 1U);
    EXPECT_EQ(plan.band.lowHz, 10);
    EXPECT_EQ(plan.band.highHz, 22000);
    EXPECT_EQ(plan.highestOrder, 5);
    EXPECT_EQ(plan.settling.levelDb, 0.02);
    EXPECT_EQ(plan.settling.thdnDb, 0.5);
    EXPECT_EQ(plan.settling.records, 20);
    ASSERT_EQ(file.limits.size(), 3U);
    EXPECT_EQ(file.limits[0].atMost->At(1000), -90);
    EXPECT_EQ(NameOf(file.limits[1].quantity), "h3");
    EXPECT_EQ(file.limits[1].atMost->At(20000), -70);
    EXPECT_EQ(file.limits[2].atLeast->At(1000), -1);
    EXPECT_EQ(file.limits[2].atMost->At(1000), 1);
}

TEST(RunFile, ReadsItsOwnText) {
    for (
        const char* text :
        {R"({"over": "frequency"})",
         R"({"over": "frequency", "frequency_hz": [20, 1000.5], "dither": false})",
         R"({"over": "frequency", "frequency_hz": {"from": 20, "to": 200, "points": 7, "spacing": "linear"}})",
         R"({"over": "frequency", "frequency_hz": {"from": 20, "to": 200, "points": 7}, "dither": 20})",
         R"({"over": "level", "level_dbfs": {"from": -60, "to": -1, "points": 60}, "length": 4096,
              "limits": [{"quantity": "h9", "at_least": [[1, -0.1], [30, 2e-3]]}]})"}) {
        const std::string written = RunFileText(ParseRunFile(text));
        EXPECT_EQ(RunFileText(ParseRunFile(written)), written);
        EXPECT_EQ(written.find('\n'), std::string::npos);
    }
}

TEST(RunFile, PointsAreLogarithmicOverFrequencyAndLinearOverLevel) {
    const auto spacing = [](const RunValues& values) { return std::get<RunRange>(values).spacing; };
    const RunFile file = ParseRunFile(R"({"over": "level", "frequency_hz": {"from": 1, "to": 9, "points": 3},
                                          "level_dbfs": {"from": -9, "to": -1, "points": 3}})");
    EXPECT_EQ(spacing(file.plan.frequenciesHz), RunRange::Spacing::kLogarithmicPoints);
    EXPECT_EQ(spacing(file.plan.levelsDbfs), RunRange::Spacing::kLinearPoints);
}

TEST(RunFile, RefusesWhatIsNoRun) {
    EXPECT_EQ(RunFileRefusal(""), "The run file: it is not JSON at character 1.");
    EXPECT_EQ(RunFileRefusal(R"({"over": )"), "The run file: it is not JSON at character 10.");
    EXPECT_EQ(RunFileRefusal("[]"), "The run file: the run is not an object.");
    EXPECT_EQ(RunFileRefusal("{}"), "The run file: over is missing; it is frequency or level.");
    EXPECT_EQ(RunFileRefusal(R"({"over": "time"})"), "The run file: over is not one of frequency, level.");
    EXPECT_EQ(RunFileRefusal(R"({"over": "level", "per_octve": 3})"),
              "The run file: 'per_octve' is not known in the run.");
    EXPECT_EQ(RunFileRefusal("{\"over\": \"level\", \"a\\n\u00e4\": 3}"),
              "The run file: 'a\?\?\?' is not known in the run.");
    EXPECT_EQ(RunFileRefusal(std::string(5'000'000, ' ')),
              "The run file: it is longer than 4000000 characters.");
}

TEST(RunFile, RefusesValuesOfAnotherKind) {
    const auto refused = [](const std::string& member, const std::string& fault) {
        EXPECT_EQ(RunFileRefusal(R"({"over": "frequency", )" + member + "}"), "The run file: " + fault + ".");
    };
    refused(R"("frequency_hz": "1k")", "frequency_hz is not an object");
    refused(R"("frequency_hz": [20, "x"])", "frequency_hz is not a number");
    refused(R"("frequency_hz": 1e999)", "a number is too large");
    refused(R"("frequency_hz": {"from": 20})", "frequency_hz has no from or no to");
    refused(R"("frequency_hz": {"from": 20, "to": 30})",
            "frequency_hz needs one of per_octave, step and points");
    refused(R"("frequency_hz": {"from": 20, "to": 30, "step": 1, "points": 3})",
            "frequency_hz needs one of per_octave, step and points");
    refused(R"("frequency_hz": {"from": 20, "to": 30, "step": 1, "x": 3})",
            "'x' is not known in frequency_hz");
    refused(R"("level_dbfs": null)", "level_dbfs is not an object");
    refused(R"("side": "top")", "side is not one of left, right, both");
    refused(R"("side": 1)", "side is not one of left, right, both");
    refused(R"("dither": "on")", "dither is not a number");
    refused(R"("snap": 1)", "snap is neither true nor false");
    refused(R"("length": 4096.5)", "length is not a whole number");
    refused(R"("length": -4096)", "length is not a length of records");
    refused(R"("harmonics": 1e300)", "harmonics is not a whole number");
    refused(R"("band": [20])", "band is not a list of two frequencies");
    refused(R"("settling": 3)", "settling is not an object");
    refused(R"("settling": {"level": 3})", "'level' is not known in settling");
    refused(R"("limits": {})", "limits is not a list");
    refused(R"("limits": [{"quantity": "h10", "at_most": 1}])",
            "the quantity of a limit is not one of thd, thdn, h2 to h9, response");
    refused(R"("limits": [{"quantity": "thd"}])", "a limit needs at_least or at_most");
    refused(R"("limits": [{"quantity": "thd", "at_most": [1, 2]}])",
            "at_most has a row that is not a frequency and a value");
}

}  // namespace
}  // namespace sonavex
