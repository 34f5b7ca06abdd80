#include <gtest/gtest.h>

#include <cmath>

#include "core/run/RunLimits.h"

namespace sonavex {
namespace {

constexpr RunQuantity kThd{RunQuantity::Kind::kThd};

RunPointResult JudgedPoint(double hertz, double thdDb) {
    RunPointResult result;
    result.point = {hertz, hertz, -1};
    result.reading.frequencyHz = {hertz, {}};
    result.reading.thdDb = {thdDb, 0.01};
    result.reading.thdnDb = {thdDb + 5, 0.01};
    for (int order = 2; order <= 20; ++order)
        result.reading.harmonics.push_back({order, {thdDb - order, 0.01}, {}});
    result.gainDb = {-0.5, 0.001};
    return result;
}

RunPointResult FaultyPoint(double hertz) {
    RunPointResult result;
    result.point = {hertz, hertz, -1};
    result.fault = {"not settled", ""};
    return result;
}

RunLimit AtMost(const RunQuantity& quantity, double decibels) {
    return {quantity, std::nullopt, LimitCurve(decibels)};
}

RunVerdict JudgeAll(const std::vector<RunLimit>& limits, const std::vector<RunPointResult>& results) {
    return JudgeRun(limits, results, results.size());
}

std::string Refusal(const std::string& table) {
    try {
        ParseLimitTable(table);
    } catch (const RunError& error) {
        return error.what();
    }
    return "accepted";
}

TEST(LimitCurve, IsConstantOrLinearOverTheLogarithmBetweenRows) {
    EXPECT_EQ(LimitCurve(-90.0).At(5), -90.0);
    EXPECT_TRUE(LimitCurve(-90.0).Covers(1e9));
    const LimitCurve curve({{100, -80}, {10000, -60}, {20000, -50}});
    EXPECT_NEAR(curve.At(1000), -70.0, 1e-12);
    EXPECT_NEAR(curve.At(100 * std::sqrt(10.0)), -75.0, 1e-12);
    EXPECT_NEAR(curve.At(10000 * std::sqrt(2.0)), -55.0, 1e-12);
    EXPECT_EQ(curve.At(100), -80.0);
    EXPECT_EQ(curve.At(20000), -50.0);
    EXPECT_TRUE(curve.Covers(100));
    EXPECT_TRUE(curve.Covers(20000));
    EXPECT_FALSE(curve.Covers(99.9));
    EXPECT_FALSE(curve.Covers(20001));
}

TEST(LimitTable, ReadsOneOrTwoValuesPerFrequency) {
    const LimitTable one = ParseLimitTable("# mask\nfrequency,limit\n\n20, -80\r\n20000,-60\n");
    ASSERT_TRUE(one.atMost);
    EXPECT_FALSE(one.atLeast);
    EXPECT_EQ(one.atMost->Rows().size(), 2U);
    EXPECT_EQ(one.atMost->At(20), -80.0);
    const LimitTable two = ParseLimitTable("20,-3,1\n100,-1,0.5");
    EXPECT_EQ(two.atLeast->At(20), -3.0);
    EXPECT_EQ(two.atMost->At(100), 0.5);
}

TEST(LimitTable, RefusesWhatIsUnsortedOrIncomplete) {
    EXPECT_EQ(Refusal("100,-80\n50,-60\n"), "The limit table is not sorted: 50 Hz follows 100 Hz.");
    EXPECT_EQ(Refusal("100,-80\n100,-60\n"), "The limit table is not sorted: 100 Hz follows 100 Hz.");
    EXPECT_EQ(Refusal(""), "A limit table needs at least two rows.");
    EXPECT_EQ(Refusal("20,-80\n"), "A limit table needs at least two rows.");
    EXPECT_EQ(Refusal("20,-80\n100\n"), "Line 2 of the limit table has 1 values, not 2.");
    EXPECT_EQ(Refusal("20,-80\n100,\n"), "Line 2 of the limit table has a value that is not a number.");
    EXPECT_EQ(Refusal("20,-80,-70\n100,-80\n"), "Line 2 of the limit table has 2 values, not 3.");
    EXPECT_EQ(Refusal("20\n30\n"), "Line 1 of the limit table takes a frequency and one or two values.");
    EXPECT_EQ(Refusal("20,-80\nhigh,low\n"), "Line 2 of the limit table has a value that is not a number.");
    EXPECT_EQ(Refusal("0,-80\n100,-60\n"),
              "A limit table needs frequencies of 0.001 to 1000000000 Hz and finite values.");
}

TEST(RunLimits, ATableMustCoverAllPoints) {
    const std::vector<RunPoint> points{{20, 20, -1}, {20000, 20000, -1}};
    const std::vector<RunLimit> covered{{kThd, std::nullopt, LimitCurve({{20, -80}, {20000, -80}})}};
    EXPECT_NO_THROW(RequireCoverage(covered, points));
    const std::vector<RunLimit> incomplete{{kThd, std::nullopt, LimitCurve({{50, -80}, {20000, -80}})}};
    try {
        RequireCoverage(incomplete, points);
        ADD_FAILURE();
    } catch (const RunError& error) {
        EXPECT_STREQ(
            error.what(),
            "The limit table of thd is incomplete: it ends at 50 and 20000 Hz, and a point is at 20 Hz.");
    }
}

TEST(RunLimits, NamesTheQuantities) {
    for (const char* name : {"thd", "thdn", "h2", "h9", "response"})
        EXPECT_EQ(NameOf(QuantityNamed(name).value()), name);
    for (const char* name : {"", "h", "h1", "h10", "THD", "thd "}) EXPECT_FALSE(QuantityNamed(name)) << name;
}

TEST(RunLimits, PassesWithTheWorstMargin) {
    const RunVerdict verdict = JudgeAll(
        {AtMost(kThd, -90)}, {JudgedPoint(100, -100), JudgedPoint(1000, -93), JudgedPoint(5000, -99)});
    EXPECT_EQ(verdict.outcome, RunOutcome::kPass);
    EXPECT_EQ(verdict.pointsBeyond, 0U);
    ASSERT_TRUE(verdict.worst);
    EXPECT_EQ(verdict.worst->point, 1U);
    EXPECT_EQ(verdict.worst->quantity, kThd);
    EXPECT_NEAR(verdict.worst->marginDb, 3.0, 1e-12);
}

TEST(RunLimits, FailsWithTheNumberOfPoints) {
    const RunVerdict verdict =
        JudgeAll({AtMost(kThd, -90), AtMost({RunQuantity::Kind::kThdn}, -80)},
                 {JudgedPoint(100, -89), JudgedPoint(1000, -100), JudgedPoint(5000, -60)});
    EXPECT_EQ(verdict.outcome, RunOutcome::kFail);
    EXPECT_EQ(verdict.pointsBeyond, 2U);
    EXPECT_EQ(verdict.worst->point, 2U);
    EXPECT_NEAR(verdict.worst->marginDb, -30.0, 1e-12);
    EXPECT_EQ(verdict.worst->limitDb, -90.0);
    EXPECT_EQ(verdict.worst->valueDb, -60.0);
}

TEST(RunLimits, AValueAtTheLimitPasses) {
    EXPECT_EQ(JudgeAll({AtMost(kThd, -90)}, {JudgedPoint(100, -90)}).outcome, RunOutcome::kPass);
}

TEST(RunLimits, AVoidPointIsNeverJudgedAndNeverPasses) {
    const std::vector<RunLimit> limits{AtMost(kThd, -90)};
    const RunVerdict open = JudgeAll(limits, {JudgedPoint(100, -100), FaultyPoint(1000)});
    EXPECT_EQ(open.outcome, RunOutcome::kNotComplete);
    EXPECT_EQ(open.pointsOpen, 1U);
    EXPECT_EQ(JudgeAll(limits, {JudgedPoint(100, -80), FaultyPoint(1000)}).outcome, RunOutcome::kFail);
    EXPECT_EQ(JudgeAll({}, {FaultyPoint(1000)}).outcome, RunOutcome::kNotComplete);
    // Values that a void point might still hold do not count.
    RunPointResult faulty = JudgedPoint(100, -50);
    faulty.fault = {"unsteady tone", ""};
    EXPECT_EQ(JudgeAll(limits, {faulty}).outcome, RunOutcome::kNotComplete);
    EXPECT_FALSE(ValueOf(faulty, {RunQuantity::Kind::kResponse}).value);
}

TEST(RunLimits, PointsThatWereNotMeasuredAreOpen) {
    const std::vector<RunPointResult> one{JudgedPoint(100, -100)};
    const std::vector<RunLimit> limits{AtMost(kThd, -90)};
    EXPECT_EQ(JudgeRun(limits, one, 3).outcome, RunOutcome::kNotComplete);
    EXPECT_EQ(JudgeRun(limits, one, 3).pointsOpen, 2U);
    EXPECT_EQ(JudgeRun({}, one, 3).outcome, RunOutcome::kNotComplete);
    EXPECT_EQ(JudgeRun({}, one, 1).outcome, RunOutcome::kUnjudged);
    EXPECT_EQ(JudgeRun({}, {}, 0).outcome, RunOutcome::kNotComplete);
}

TEST(RunLimits, ABoundProvesOnlyThatAValueIsBelowIt) {
    RunPointResult hidden = JudgedPoint(100, -100);
    hidden.reading.thdDb = {-100, {}, true};
    EXPECT_EQ(JudgeAll({AtMost(kThd, -90)}, {hidden}).outcome, RunOutcome::kPass);
    EXPECT_EQ(JudgeAll({AtMost(kThd, -110)}, {hidden}).outcome, RunOutcome::kNotComplete);
    EXPECT_EQ(JudgeAll({{kThd, LimitCurve(-110.0), std::nullopt}}, {hidden}).outcome,
              RunOutcome::kNotComplete);
    EXPECT_EQ(JudgeAll({{kThd, LimitCurve(-90.0), std::nullopt}}, {hidden}).outcome, RunOutcome::kFail);
}

TEST(RunLimits, AHarmonicIsJudgedInsideTheBand) {
    const RunLimit second = AtMost({RunQuantity::Kind::kHarmonic, 2}, -90);
    EXPECT_EQ(JudgeAll({second}, {JudgedPoint(9000, -50)}).outcome, RunOutcome::kFail);
    // The second harmonic of 11 kHz is above the band.
    EXPECT_EQ(JudgeAll({second}, {JudgedPoint(1000, -100), JudgedPoint(11000, -50)}).outcome,
              RunOutcome::kPass);
    EXPECT_EQ(JudgeAll({second}, {JudgedPoint(11000, -50)}).outcome, RunOutcome::kNotComplete);
}

TEST(RunLimits, TheResponseHasTwoSides) {
    const RunQuantity response{RunQuantity::Kind::kResponse};
    const auto judged = [&](double low, double high) {
        return JudgeAll({{response, LimitCurve(low), LimitCurve(high)}}, {JudgedPoint(1000, -100)});
    };
    EXPECT_EQ(judged(-1, 1).outcome, RunOutcome::kPass);
    EXPECT_NEAR(judged(-1, 1).worst->marginDb, 0.5, 1e-12);
    EXPECT_EQ(judged(-0.4, 1).outcome, RunOutcome::kFail);
    EXPECT_EQ(judged(-1, -0.6).outcome, RunOutcome::kFail);
}

// The played frequency is not the one of the limit.
TEST(RunLimits, JudgesWithTheRequestedFrequency) {
    RunPointResult result = JudgedPoint(1000, -75);
    result.point = {100, 1000, -1};
    const std::vector<RunLimit> limits{{kThd, std::nullopt, LimitCurve({{100, -80}, {1000, -70}})}};
    EXPECT_EQ(JudgeAll(limits, {result}).outcome, RunOutcome::kFail);
}

}  // namespace
}  // namespace sonavex
