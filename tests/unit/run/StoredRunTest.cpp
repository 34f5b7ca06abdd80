#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "core/run/StoredRun.h"

namespace sonavex {
namespace {

using testing::HasSubstr;

constexpr double kStoredRateHz = 48000;

RunPointResult StoredValidPoint(const RunPoint& point) {
    RunPointResult result;
    result.point = point;
    Reading& reading = result.reading;
    reading.frequencyHz = {point.playedHz + 1e-7, 1e-5};
    reading.levelDbfs = {-1.0625, 1e-4};
    reading.thdDb = {-101.123456789, 0.1};
    reading.thdPercent = {0.00088, 1e-6};
    reading.thdFloorDb = -139.5;
    reading.thdnDb = {-98.5, {}, true};
    reading.harmonics = {{2, {-104, 0.2}, {12.5, 1}}, {3, {-140, {}, true}, {}}};
    reading.spurs = {{50.5, -120}};
    reading.warnings = {{WarningCode::kLimitedBy16Bit, "Only 16 bits move."}};
    reading.lines = 9;
    reading.length = 65536;
    reading.blocks = 2;
    reading.bits = 24;
    reading.highestOrder = 9;
    reading.band = {20, 20000};
    result.gainDb = {-0.0625, 1e-4};
    result.phaseDegrees = {-12.25, 0.01};
    result.delaySeconds = 0.0625;
    result.attempts = 2;
    result.afterLoss = true;
    return result;
}

RunPointResult StoredVoidPoint(const RunPoint& point) {
    RunPointResult result;
    result.point = point;
    result.reading.voids = {{VoidCode::kDisturbed, "It never settled."}};
    result.reading.length = 65536;
    result.fault = {"not settled", "It never settled."};
    result.attempts = 2;
    return result;
}

// Two of three points, the second of which is void.
MeasuredRun RunToStore() {
    MeasuredRun run;
    run.file.plan.frequenciesHz = std::vector<double>{100, 1000, 5000};
    run.file.plan.length = 65536;
    run.file.limits = {{{RunQuantity::Kind::kThd}, std::nullopt, LimitCurve(-90)}};
    run.points = PointsOf(run.file.plan, kStoredRateHz);
    run.results = {StoredValidPoint(run.points[0]), StoredVoidPoint(run.points[1])};
    StreamDetails stream;
    stream.input = "Line \"In\"";
    stream.output = "Line Out";
    stream.rateHz = 48000;
    stream.inputBits = 24;
    stream.outputBits = 16;
    stream.notes = {"output volume -3.0 dB"};
    run.conditions = {kStoredRateHz, 3, stream};
    run.time = "2026-11-23 10:42:07";
    run.seconds = 12.5;
    return run;
}

std::string RefusalOf(const std::string& text) {
    try {
        ParseStoredRun(text);
    } catch (const RunError& error) {
        return error.what();
    }
    return "accepted";
}

std::string WithChange(const std::string& from, const std::string& to) {
    std::string text = StoredRunText(RunToStore());
    const std::size_t at = text.find(from);
    EXPECT_NE(at, std::string::npos) << from;
    return text.replace(at, from.size(), to);
}

TEST(StoredRun, IsReadAsItWasWritten) {
    const MeasuredRun run = RunToStore();
    const std::string text = StoredRunText(run);
    EXPECT_EQ(text.find('\n'), std::string::npos);
    const MeasuredRun read = ParseStoredRun(text);
    EXPECT_EQ(StoredRunText(read), text);
    EXPECT_EQ(RunCsv(read.file, read.results, read.conditions),
              RunCsv(run.file, run.results, run.conditions));
    EXPECT_EQ(read.time, run.time);
    EXPECT_EQ(read.seconds, 12.5);
    ASSERT_EQ(read.results.size(), 2U);
    EXPECT_EQ(read.points.size(), 3U);
    EXPECT_TRUE(read.results[0].Valid());
    EXPECT_TRUE(read.results[0].reading.thdnDb.atMost);
    EXPECT_EQ(read.results[1].fault.code, "not settled");
    EXPECT_EQ(read.results[1].fault.sentence, "It never settled.");
    ASSERT_TRUE(read.conditions.stream);
    EXPECT_EQ(read.conditions.stream->notes, run.conditions.stream->notes);
}

TEST(StoredRun, APointIsReadFromItsLine) {
    const MeasuredRun run = RunToStore();
    const std::string line = RunPointJson(run.results[0], 1, run.conditions);
    const StoredPoint point = ParseStoredPoint(line);
    EXPECT_EQ(RunPointJson(point.result, 1, point.conditions), line);
    EXPECT_THROW(ParseStoredPoint(line.substr(0, line.size() / 2)), RunError);
}

TEST(StoredRun, RefusesWhatIsNoRun) {
    EXPECT_EQ(RefusalOf("[1"), "The stored run: it is not JSON of a run.");
    EXPECT_EQ(RefusalOf("[]"), "The stored run: it is not an object.");
    EXPECT_EQ(RefusalOf("{}"), "The stored run: run is missing.");
    EXPECT_THAT(RefusalOf(WithChange("\"over\":\"frequency\"", "\"over\":1")), HasSubstr("over"));
    EXPECT_EQ(RefusalOf(WithChange("\"points\":3", "\"points\":4")),
              "The stored run: it has other points than its plan.");
    EXPECT_EQ(RefusalOf(WithChange("\"requested_hz\":100.0", "\"requested_hz\":101")),
              "The stored run: it has other points than its plan.");
    EXPECT_EQ(RefusalOf(WithChange("\"mode\":\"thd\"", "\"mode\":\"imd\"")),
              "The stored run: a point has no reading.");
    EXPECT_EQ(RefusalOf(WithChange("\"attempts\":2", "\"attempts\":-2")),
              "The stored run: attempts is not a count.");
    EXPECT_EQ(RefusalOf(WithChange("\"after_loss\":true", "\"after_loss\":1")),
              "The stored run: after_loss is neither true nor false.");
}

}  // namespace
}  // namespace sonavex
