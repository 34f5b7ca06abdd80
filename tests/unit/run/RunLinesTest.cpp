#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "core/run/RunLines.h"

namespace sonavex {
namespace {

using testing::HasSubstr;

RunFile ReadRun() {
    RunFile run;
    run.plan.frequenciesHz = std::vector<double>{100.1, 200.2, 400.4};
    run.plan.length = 4096;
    run.plan.ditherBits = 20;
    run.limits.push_back({{RunQuantity::Kind::kThd}, std::nullopt, LimitCurve(-80.0)});
    return run;
}

RunConditions ReadConditions() {
    StreamDetails details;
    details.input = "Line in";
    details.output = "Line out";
    details.inputBits = 24;
    return {48000, 3, details};
}

RunPointResult ReadPoint(std::size_t number) {
    RunPointResult result;
    result.point = PointsOf(ReadRun().plan, 48000)[number - 1];
    result.reading.frequencyHz = {result.point.playedHz, 1e-5};
    result.reading.levelDbfs = {-1.5, 1e-4};
    result.reading.thdDb = {-90.123456789, 0.25};
    result.reading.thdnDb = {-85, 0.5};
    result.reading.noiseDbfs = {-88, 0.75};
    result.reading.harmonics = {{2, {-101, {}, true}, {}}, {3, {-99, 0.5}, {12, 1}}};
    result.reading.blocks = 2;
    result.reading.length = 4096;
    result.gainDb = {-0.5, 1e-4};
    result.phaseDegrees = {-12.5, 1e-3};
    result.delaySeconds = 0.0625;
    result.afterLoss = number == 2;
    return result;
}

RunPointResult ReadVoidPoint(std::size_t number) {
    RunPointResult result;
    result.point = PointsOf(ReadRun().plan, 48000)[number - 1];
    result.fault = {"not settled", "It never settled."};
    result.reading.voids.push_back({VoidCode::kDisturbed, result.fault.sentence});
    result.attempts = 2;
    return result;
}

std::string FirstLine() {
    const RunFile run = ReadRun();
    return RunPointJson(ReadPoint(1), 1, ReadConditions(), &run) + '\n';
}

std::string PreviewLine() {
    return PreviewJson({{{100.1, -0.5, -60, {{-50, -90}, {-70, -85}}}, {4000, -3, -60, {}}}}) + '\n';
}

std::string LaterLine(const RunPointResult& result, std::size_t number) {
    return RunPointJson(result, number, ReadConditions()) + '\n';
}

std::string RefusalOfLines(const std::string& text) {
    try {
        ReadRunLines(text);
    } catch (const RunError& error) {
        return error.what();
    }
    return "read";
}

// The table and the verdict depend on the results alone.
TEST(RunLines, APreviewIsOneLineAndNoPoint) {
    const auto json = nlohmann::json::parse(PreviewLine());
    ASSERT_EQ(json["preview"].size(), 2U);
    EXPECT_EQ(json["preview"][0]["requested_hz"], 100.1);
    EXPECT_EQ(json["preview"][0]["gain_db"], -0.5);
    EXPECT_EQ(json["preview"][0]["gain_noise_db"], -60);
    EXPECT_EQ(json["preview"][0]["harmonics"][1]["order"], 3);
    EXPECT_EQ(json["preview"][0]["harmonics"][1]["dbc"], -70);
    EXPECT_EQ(json["preview"][0]["harmonics"][1]["noise_dbc"], -85);
    EXPECT_TRUE(json["preview"][1]["harmonics"].empty());
    const RunLines lines = ReadRunLines(PreviewLine() + FirstLine());
    EXPECT_EQ(lines.run.results.size(), 1U);
    EXPECT_EQ(lines.skipped, 0U);
}

TEST(RunLines, GiveTheSameTableAsTheRun) {
    const std::vector<RunPointResult> results{ReadPoint(1), ReadPoint(2), ReadVoidPoint(3)};
    const RunLines read = ReadRunLines(FirstLine() + LaterLine(results[1], 2) + LaterLine(results[2], 3));
    EXPECT_EQ(read.skipped, 0U);
    EXPECT_EQ(read.run.points.size(), 3U);
    RunConditions conditions = ReadConditions();
    EXPECT_EQ(RunCsv(read.run.file, read.run.results, read.run.conditions),
              RunCsv(ReadRun(), results, conditions));
    EXPECT_EQ(read.run.conditions.points, 3U);
    EXPECT_EQ(read.run.results[2].fault.sentence, "It never settled.");
    EXPECT_FALSE(read.run.results[2].Valid());
}

TEST(RunLines, HoldAsManyResultsAsAreMeasured) {
    const RunLines read = ReadRunLines(FirstLine() + LaterLine(ReadPoint(2), 2));
    EXPECT_EQ(read.run.results.size(), 2U);
    EXPECT_EQ(read.run.points.size(), 3U);
}

// The program was ended while it wrote.
TEST(RunLines, SkipAnIncompleteLastLine) {
    const std::string second = LaterLine(ReadPoint(2), 2);
    const RunLines read = ReadRunLines(FirstLine() + second.substr(0, second.size() / 2));
    EXPECT_EQ(read.skipped, 1U);
    EXPECT_EQ(read.run.results.size(), 1U);
}

TEST(RunLines, APointThatNoLineHoldsIsVoid) {
    const RunLines read = ReadRunLines(FirstLine() + "\n{\"damaged\n" + LaterLine(ReadPoint(3), 3));
    EXPECT_EQ(read.skipped, 1U);
    ASSERT_EQ(read.run.results.size(), 3U);
    EXPECT_EQ(read.run.results[1].fault.code, "not measured");
    EXPECT_TRUE(read.run.results[2].Valid());
}

TEST(RunLines, TheLastLineOfAPointCounts) {
    const RunLines read =
        ReadRunLines(FirstLine() + LaterLine(ReadVoidPoint(2), 2) + LaterLine(ReadPoint(2), 2));
    EXPECT_EQ(read.skipped, 0U);
    ASSERT_EQ(read.run.results.size(), 2U);
    EXPECT_TRUE(read.run.results[1].Valid());
}

TEST(RunLines, PointsOfAnotherRunAreSkipped) {
    RunPointResult other = ReadPoint(2);
    other.point.requestedHz += 1.0;
    RunConditions otherRate = ReadConditions();
    otherRate.rateHz = 44100;
    const RunLines read = ReadRunLines(FirstLine() + LaterLine(other, 2) + LaterLine(ReadPoint(2), 4) +
                                       RunPointJson(ReadPoint(2), 2, otherRate) + '\n');
    EXPECT_EQ(read.skipped, 3U);
    EXPECT_EQ(read.run.results.size(), 1U);
}

TEST(RunLines, AreRefusedWithoutARunOrAPoint) {
    EXPECT_EQ(RefusalOfLines(""), "It holds no line with a run.");
    EXPECT_EQ(RefusalOfLines(LaterLine(ReadPoint(2), 2)), "It holds no line with a run.");
    EXPECT_EQ(RefusalOfLines("{\"run\": {\"over\": \"frequency\"}}"), "It holds no line with a run.");
    const auto changed = [](const std::string& from, const std::string& to) {
        std::string text = FirstLine();
        return text.replace(text.find(from), from.size(), to);
    };
    EXPECT_THAT(RefusalOfLines(changed("\"over\":\"frequency\"", "\"over\":\"time\"")), HasSubstr("over"));
    EXPECT_EQ(RefusalOfLines(changed("\"point\":1", "\"point\":2")), "It holds no point of its run.");
    EXPECT_EQ(RefusalOfLines(changed("\"run\":{", "\"former\":{")), "It holds no line with a run.");
}

}  // namespace
}  // namespace sonavex
