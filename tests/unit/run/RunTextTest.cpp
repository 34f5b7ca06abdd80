#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "core/run/RunText.h"

namespace sonavex {
namespace {

using nlohmann::ordered_json;
using testing::HasSubstr;
using testing::StartsWith;

RunPointResult WrittenPoint(double thdDb) {
    RunPointResult result;
    result.point = {1000, 999.755859375, -20};
    result.reading.frequencyHz = {999.75, 1e-5};
    result.reading.levelDbfs = {-20.5, 1e-4};
    result.reading.thdDb = {thdDb, 0.25};
    result.reading.harmonics = {{2, {-101, {}, true}, {}}, {3, {-99, 0.5}, {12, 1}}};
    result.gainDb = {-0.5, 1e-4};
    result.phaseDegrees = {-12.5, 1e-3};
    result.delaySeconds = 0.0625;
    return result;
}

RunPointResult WrittenVoidPoint() {
    RunPointResult result;
    result.point = {2000, 2000, -20};
    result.reading.voids.push_back({VoidCode::kDisturbed, "It never settled."});
    result.fault = {"not settled", "It never settled."};
    result.attempts = 2;
    result.afterLoss = true;
    return result;
}

ordered_json WrittenJson(const RunPointResult& result) {
    StreamDetails details;
    details.input = "Card";
    const std::string line = RunPointJson(result, 3, {48000, 61, details});
    EXPECT_EQ(line.find('\n'), std::string::npos);
    return ordered_json::parse(line);
}

std::string WrittenVerdict(const std::vector<RunLimit>& limits, const std::vector<RunPointResult>& results,
                           std::size_t points) {
    return VerdictSentence(JudgeRun(limits, results, points), results, points);
}

TEST(RunText, APointIsALineWithTheReading) {
    const ordered_json json = WrittenJson(WrittenPoint(-90));
    EXPECT_EQ(json["point"], 3);
    EXPECT_EQ(json["points"], 61);
    EXPECT_EQ(json["requested_hz"], 1000);
    EXPECT_EQ(json["played_hz"], 999.755859375);
    EXPECT_EQ(json["stimulus_dbfs"], -20);
    EXPECT_EQ(json["gain_db"], -0.5);
    EXPECT_EQ(json["phase_deg"], -12.5);
    EXPECT_EQ(json["path_delay_ms"], 62.5);
    EXPECT_EQ(json["uncertainty"]["phase_deg"], 1e-3);
    EXPECT_EQ(json["attempts"], 1);
    EXPECT_EQ(json["after_loss"], false);
    EXPECT_EQ(json["valid"], true);
    EXPECT_EQ(json["void"], ordered_json::array());
    EXPECT_EQ(json["thd_db"], -90);
    EXPECT_EQ(json["rate_hz"], 48000);
    EXPECT_EQ(json["input"], "Card");
    EXPECT_EQ(json["stimulus"], "sine:999.755859375");
    EXPECT_EQ(json["harmonic"].size(), 2U);
    EXPECT_EQ(json["uncertainty"]["gain_db"], 1e-4);
    EXPECT_EQ(json["at_most"], ordered_json({"harmonic.2"}));
}

TEST(RunText, AVoidPointHasItsReasonAndNoValue) {
    const ordered_json json = WrittenJson(WrittenVoidPoint());
    EXPECT_EQ(json["valid"], false);
    EXPECT_EQ(json["void"], ordered_json({"not settled"}));
    EXPECT_EQ(json["sentences"], ordered_json({"It never settled."}));
    EXPECT_EQ(json["attempts"], 2);
    EXPECT_EQ(json["after_loss"], true);
    for (const char* name :
         {"gain_db", "phase_deg", "path_delay_ms", "thd_db", "thdn_db", "level_dbfs", "frequency_hz"})
        EXPECT_TRUE(json[name].is_null()) << name;
}

TEST(RunText, TheTableHasTheRunTheVerdictAndEveryPoint) {
    RunFile run;
    run.limits.push_back({{RunQuantity::Kind::kThd}, std::nullopt, LimitCurve(-80.0)});
    const std::vector<RunPointResult> results{WrittenPoint(-90), WrittenVoidPoint()};
    const std::string csv = RunCsv(run, results, {48000, 2, std::nullopt});
    EXPECT_THAT(csv, StartsWith("# run {\"over\":\"frequency\""));
    EXPECT_THAT(csv, HasSubstr("\n# rate 48000 Hz\n# NOT COMPLETE: 1 of 2 points void, not measured"));
    EXPECT_THAT(csv, HasSubstr("\nrequested_hz,played_hz,stimulus_dbfs,valid,reason,attempts,after_loss,"
                               "frequency_hz,frequency_hz_uncertainty,frequency_hz_bound,level_dbfs,"));
    EXPECT_THAT(csv,
                HasSubstr("\n1000,999.755859375,-20,1,\"\",1,0,999.750000,1e-05,0,-20.500000,0.0001,0,"
                          "-0.500000,0.0001,0,-90.000000,0.25,0,,,,,,,-101.000000,,1,-99.000000,0.5,0,"));
    EXPECT_THAT(csv, HasSubstr(",phase_deg,phase_deg_uncertainty,phase_deg_bound,path_delay_ms,"));
    EXPECT_THAT(csv, HasSubstr(",-12.500000,0.001,0,62.500000,,0\n"));
    EXPECT_THAT(csv, HasSubstr("\n2000,2000,-20,0,\"not settled\",2,1,,,,,"));
}

TEST(RunText, StatesTheVerdict) {
    const RunLimit limit{{RunQuantity::Kind::kThd}, std::nullopt, LimitCurve(-80.0)};
    EXPECT_EQ(WrittenVerdict({limit}, {WrittenPoint(-90)}, 1),
              "PASS: 1 of 1 point measured. Worst: thd -90.00 dB at 1000 Hz, limit -80.00 dB.");
    EXPECT_EQ(WrittenVerdict({limit}, {WrittenPoint(-90), WrittenPoint(-70)}, 3),
              "FAIL: 1 of 3 points beyond a limit. Worst: thd -70.00 dB at 1000 Hz, limit -80.00 dB.");
    EXPECT_EQ(WrittenVerdict({}, {WrittenPoint(-90)}, 2),
              "NOT COMPLETE: 1 of 2 points void, not measured or hidden by noise.");
    EXPECT_EQ(WrittenVerdict({{{RunQuantity::Kind::kHarmonic, 9}, std::nullopt, LimitCurve(-80.0)}},
                             {WrittenPoint(-90)}, 1),
              "NOT COMPLETE: a limit was compared with no value.");
    EXPECT_EQ(WrittenVerdict({}, {WrittenPoint(-90)}, 1), "COMPLETE: 1 of 1 point measured.");
}

TEST(RunText, NamesAPointByWhatDiffers) {
    const auto place = [](std::vector<RunPoint> points) {
        std::vector<RunPointResult> results(points.size());
        for (std::size_t i = 0; i < points.size(); ++i) results[i].point = points[i];
        return PlaceText(results, 0, "1 kHz");
    };
    EXPECT_EQ(place({{1000, 1000, -20}}), "1 kHz");
    EXPECT_EQ(place({{1000, 1000, -20}, {2000, 2000, -20}}), "1 kHz");
    EXPECT_EQ(place({{1000, 1000, -20}, {1000, 1000, -10}}), "-20 dBFS");
    EXPECT_EQ(place({{1000, 1000, -20}, {2000, 2000, -10}}), "1 kHz, -20 dBFS");
}

}  // namespace
}  // namespace sonavex
