#include <gmock/gmock.h>

#include <algorithm>
#include <cmath>

#include "core/run/display/RunPlot.h"
#include "core/run/display/RunTexts.h"

namespace sonavex {
namespace {

using testing::ElementsAre;
using testing::SizeIs;

RunPointResult PlottedPoint(double hertz, double levelDbfs, double thdDb) {
    RunPointResult result;
    result.point = {hertz, hertz, levelDbfs};
    result.reading.frequencyHz = {hertz, 1e-4};
    result.reading.thdDb = {thdDb, 0.1};
    result.reading.thdnDb = {thdDb + 4, 0.1};
    result.reading.levelDbfs = {levelDbfs - 0.5, 0.001};
    result.reading.harmonics = {{2, {thdDb - 1, 0.1}, {}}, {3, {thdDb - 6, {}, true}, {}}};
    return result;
}

RunPointResult VoidPoint(double hertz, double levelDbfs) {
    RunPointResult result;
    result.point = {hertz, hertz, levelDbfs};
    result.fault = {"not settled", "The point did not settle."};
    result.attempts = 2;
    return result;
}

RunLimit ThdAtMost(LimitCurve curve) {
    return {{RunQuantity::Kind::kThd}, std::nullopt, std::move(curve)};
}

// 20, 200, 2000 and 20000 Hz; the second is void.
struct PlottedRun {
    std::vector<RunPointResult> results{PlottedPoint(20, -1, -95), VoidPoint(200, -1),
                                        PlottedPoint(2000, -1, -102), PlottedPoint(20000, -1, -98)};
    std::vector<RunPoint> points;
    std::vector<RunLimit> limits;
    std::vector<RunPlot::Beside> kept;
    std::vector<PreviewPoint> preview;
    RunPlot plot;

    PlottedRun() {
        for (const RunPointResult& result : results) points.push_back(result.point);
    }
    void Show(std::size_t measured = 4, bool running = false) {
        const auto point = running ? std::optional(measured) : std::nullopt;
        plot.Show({RunAxis::kFrequency, points, std::span(results).first(measured), limits, 20000, point,
                   kept, preview});
    }
};

TEST(RunPlot, DrawsNoValueAtAVoidPoint) {
    PlottedRun run;
    run.Show();
    const auto& curves = run.plot.Curves(RunSeries::kThd);
    ASSERT_THAT(curves, SizeIs(2));
    ASSERT_THAT(curves[0], SizeIs(1));
    ASSERT_THAT(curves[1], SizeIs(2));
    EXPECT_EQ(curves[0][0].value, -95);
    EXPECT_NEAR(curves[1][0].position, std::log10(2000.0), 1e-12);
    EXPECT_EQ(curves[1][1].value, -98);
    EXPECT_THAT(run.plot.VoidPositions(), ElementsAre(std::log10(200.0)));
    EXPECT_EQ(run.plot.Description(), "4 points measured, 1 of them void.");
}

// The noise of the preview hides the third harmonic at 2 kHz.
TEST(RunPlot, ReplacesThePreviewPointByPoint) {
    PlottedRun run;
    run.preview = {{200, -0.5, -80, {{-50, -90}, {-60, -90}}},
                   {2000, -0.7, -80, {{-51, -90}, {-106, -90}}},
                   {20000, -3, -80, {}}};
    run.Show(1, true);
    EXPECT_TRUE(run.plot.HasPreview());
    ASSERT_THAT(run.plot.Preview(RunSeries::kSecond), SizeIs(1));
    const RunCurve& second = run.plot.Preview(RunSeries::kSecond)[0];
    ASSERT_THAT(second, SizeIs(2));
    EXPECT_NEAR(second[0].position, std::log10(200.0), 1e-12);
    EXPECT_EQ(second[1].value, -51);
    EXPECT_THAT(run.plot.Preview(RunSeries::kThird)[0], SizeIs(1));
    EXPECT_THAT(run.plot.Preview(RunSeries::kLevel)[0], SizeIs(3));
    EXPECT_NEAR(run.plot.Preview(RunSeries::kLevel)[0][2].value, -4, 1e-12);
    EXPECT_THAT(run.plot.Preview(RunSeries::kThd), SizeIs(0));
    EXPECT_THAT(run.plot.Preview(RunSeries::kThdn), SizeIs(0));
    EXPECT_GE(run.plot.Shown().ratios.high, -50);
    EXPECT_EQ(run.plot.Description(), "1 point measured. A preview is shown where no point is measured.");
    // A void point takes the place of its preview, too.
    run.Show(2, true);
    EXPECT_THAT(run.plot.Preview(RunSeries::kLevel)[0], SizeIs(2));
    run.Show(4);
    EXPECT_FALSE(run.plot.HasPreview());
}

TEST(RunPlot, ShowsKeptRunsBesideThePresentOne) {
    const std::vector<RunPointResult> others{PlottedPoint(10, -1, -60), PlottedPoint(20000, -1, -70)};
    const std::vector<RunPoint> points{others[0].point, others[1].point};
    PlottedRun run;
    run.kept = {{'C', points, others}};
    run.Show();
    ASSERT_THAT(run.plot.Kept(), SizeIs(1));
    EXPECT_EQ(run.plot.Kept()[0].letter, 'C');
    EXPECT_EQ(run.plot.Kept()[0].curves[0][0][0].value, -60);
    EXPECT_GE(run.plot.Shown().ratios.high, -60);
    EXPECT_LE(run.plot.Shown().across.low, 1.0);
    EXPECT_THAT(run.plot.VoidPositions(), SizeIs(1));
}

TEST(RunPlot, MarksBounds) {
    PlottedRun run;
    run.Show();
    EXPECT_TRUE(run.plot.Curves(RunSeries::kThird)[0][0].bound);
    EXPECT_FALSE(run.plot.Curves(RunSeries::kSecond)[0][0].bound);
}

TEST(RunPlot, EndsAHarmonicWhereItsOrderLeavesTheBand) {
    PlottedRun run;
    run.Show();
    EXPECT_THAT(run.plot.Curves(RunSeries::kSecond)[1], SizeIs(1));
    EXPECT_THAT(run.plot.Curves(RunSeries::kThd)[1], SizeIs(2));
    ASSERT_TRUE(run.plot.WithoutHarmonics());
    EXPECT_NEAR(*run.plot.WithoutHarmonics(), 4.0, 1e-12);
}

TEST(RunPlot, BeginsANewCurveForEachTone) {
    const std::vector<RunPointResult> results{PlottedPoint(20, -1, -95), PlottedPoint(200, -1, -96),
                                              PlottedPoint(20, -10, -97), PlottedPoint(200, -10, -98)};
    EXPECT_THAT(CurvesOf(results, RunAxis::kFrequency, RunSeries::kThd), SizeIs(2));
    const std::vector<RunPointResult> overLevel{PlottedPoint(1000, -20, -80), PlottedPoint(1000, -10, -90)};
    const auto curves = CurvesOf(overLevel, RunAxis::kLevel, RunSeries::kLevel);
    ASSERT_THAT(curves, SizeIs(1));
    EXPECT_EQ(curves[0][0].position, -20);
    EXPECT_EQ(curves[0][1].value, -10.5);
}

TEST(RunPlot, ShowsEveryPointOfTheRunFromTheStart) {
    PlottedRun run;
    run.Show(0, true);
    const RunPlot::Axes& axes = run.plot.Shown();
    EXPECT_LT(axes.across.low, std::log10(20.0));
    EXPECT_GT(axes.across.high, std::log10(20000.0));
    EXPECT_EQ(run.plot.RunningPosition(), std::log10(20.0));
    const PlotRange across = axes.across;
    run.Show(4, true);
    EXPECT_EQ(run.plot.Shown().across, across);
    EXPECT_FALSE(run.plot.RunningPosition());
}

TEST(RunPlot, FitsBothAxesToTheSameGrid) {
    PlottedRun run;
    run.limits = {ThdAtMost(LimitCurve(-85.0))};
    run.Show();
    const RunPlot::Axes& axes = run.plot.Shown();
    EXPECT_EQ(axes.ratios.high, -80);
    EXPECT_EQ(axes.ratios.low, -120);
    EXPECT_EQ(axes.rows, 8);
    EXPECT_EQ(axes.levels, (PlotRange{-9, -1}));
    const auto ticks = run.plot.RowTicks(axes.ratios);
    ASSERT_THAT(ticks, SizeIs(9));
    EXPECT_EQ(ticks[0].label, "-120");
    EXPECT_EQ(ticks[8].label, "-80");
}

TEST(RunPlot, CoversWideRanges) {
    PlottedRun run;
    run.results[2] = PlottedPoint(2000, -1, -3);
    run.results[3] = PlottedPoint(20000, -70, -160);
    run.Show();
    const RunPlot::Axes& axes = run.plot.Shown();
    EXPECT_GE(axes.ratios.high, -3 + 4 + 2);
    EXPECT_LE(axes.ratios.low, -166 - 2);
    EXPECT_LE(axes.rows, 10);
    EXPECT_LE(axes.levels.low, -70.5);
    EXPECT_GE(axes.levels.high, -1.5);
}

TEST(RunPlot, StaysFiniteWithAnyLimit) {
    PlottedRun run;
    run.limits.push_back(ThdAtMost(LimitCurve(1e300)));
    run.Show();
    EXPECT_LT(run.plot.Shown().rows, 100);
    EXPECT_EQ(run.plot.RowTicks(run.plot.Shown().ratios).back().label, "1020");
}

TEST(RunPlot, LeavesHiddenSeriesOutOfTheAxes) {
    PlottedRun run;
    run.results[0].reading.harmonics[0].levelDbc = {-150, 0.1};
    run.Show();
    EXPECT_LE(run.plot.Shown().ratios.low, -150);
    run.plot.SetVisible(RunSeries::kSecond, false);
    EXPECT_GE(run.plot.Shown().ratios.low, -125);
    EXPECT_FALSE(run.plot.Visible(RunSeries::kSecond));
}

TEST(RunPlot, DrawsLimitsOverTheRunOnly) {
    PlottedRun run;
    run.limits = {
        ThdAtMost(LimitCurve(-90.0)),
        {{RunQuantity::Kind::kThdn}, std::nullopt, LimitCurve({{10, -80}, {1000, -95}, {40000, -80}})}};
    run.Show();
    ASSERT_THAT(run.plot.Limits(), SizeIs(2));
    EXPECT_EQ(run.plot.Limits()[0].flag, "-90");
    EXPECT_THAT(run.plot.Limits()[0].curve, SizeIs(4));
    const RunLimitLine& table = run.plot.Limits()[1];
    EXPECT_EQ(table.flag, "");
    ASSERT_THAT(table.curve, SizeIs(5));
    EXPECT_NEAR(table.curve[2].position, 3.0, 1e-12);
    EXPECT_NEAR(table.curve[2].value, -95, 1e-12);
}

TEST(RunPlot, DrawsLimitsOfTheResponseAtTheLevelAxis) {
    PlottedRun run;
    run.limits = {{{RunQuantity::Kind::kResponse}, LimitCurve(-3.0), LimitCurve(0.5)}};
    run.Show();
    ASSERT_THAT(run.plot.Limits(), SizeIs(2));
    EXPECT_TRUE(run.plot.Limits()[0].atLevelAxis);
    EXPECT_NEAR(run.plot.Limits()[0].curve[0].value, -4.0, 1e-12);
    EXPECT_NEAR(run.plot.Limits()[1].curve[0].value, -0.5, 1e-12);
    EXPECT_EQ(run.plot.Limits()[1].flag, "");
}

TEST(RunPlot, DrawsEqualLimitsOfSeveralTonesOnce) {
    const std::vector<RunPoint> points{{20, 20, -1}, {200, 200, -1}, {20, 20, -10}, {200, 200, -10}};
    const std::vector<RunLimit> limits{ThdAtMost(LimitCurve(-90.0))};
    EXPECT_THAT(LimitLinesOf(limits, points, RunAxis::kFrequency), SizeIs(1));
}

TEST(RunPlot, ItsCursorSnapsToMeasuredPoints) {
    PlottedRun run;
    run.Show(3, true);
    int moves = 0;
    run.plot.CursorMoved.Handle([&moves] { ++moves; });
    run.plot.UserPlacesCursor(1.0);
    EXPECT_EQ(run.plot.Cursor(), 2U);
    run.plot.UserPlacesCursor(0.3);
    EXPECT_EQ(run.plot.Cursor(), 1U);
    EXPECT_NEAR(run.plot.CursorPosition().value(), std::log10(200.0), 1e-12);
    EXPECT_EQ(moves, 2);
    run.plot.UserRemovesCursor();
    EXPECT_FALSE(run.plot.CursorPosition());
}

TEST(RunPlot, ItsCursorStepsAlongTheAxis) {
    PlottedRun run;
    std::reverse(run.results.begin(), run.results.end());
    std::reverse(run.points.begin(), run.points.end());
    run.plot.UserStepsCursor(1);
    EXPECT_FALSE(run.plot.Cursor());
    run.Show();
    run.plot.UserStepsCursor(1);
    EXPECT_EQ(run.plot.Cursor(), 3U);
    run.plot.UserStepsCursor(1);
    EXPECT_EQ(run.plot.Cursor(), 2U);
    run.plot.UserStepsCursor(-5);
    EXPECT_EQ(run.plot.Cursor(), 3U);
    run.Show(1);
    EXPECT_FALSE(run.plot.Cursor());
}

TEST(RunTexts, StateTheVerdict) {
    PlottedRun run;
    const auto chip = [&run](std::size_t measured, bool running) {
        return VerdictChipOf(run.limits, std::span(run.results).first(measured), 4, running);
    };
    using Kind = RunVerdictChip::Kind;
    EXPECT_EQ(chip(1, true), RunVerdictChip{});
    EXPECT_EQ(chip(4, false), (RunVerdictChip{Kind::kNotComplete, "NOT COMPLETE"}));
    run.limits = {ThdAtMost(LimitCurve(-90.0))};
    EXPECT_EQ(chip(0, true), RunVerdictChip{});
    EXPECT_EQ(chip(1, true), (RunVerdictChip{Kind::kPass, "PASS so far"}));
    EXPECT_EQ(chip(4, false), (RunVerdictChip{Kind::kNotComplete, "NOT COMPLETE"}));
    run.results[1] = PlottedPoint(200, -1, -91);
    EXPECT_EQ(chip(4, false), (RunVerdictChip{Kind::kPass, "PASS"}));
    EXPECT_EQ(chip(3, false), (RunVerdictChip{Kind::kNotComplete, "NOT COMPLETE"}));
    run.limits = {ThdAtMost(LimitCurve(-100.0))};
    EXPECT_EQ(chip(1, true), (RunVerdictChip{Kind::kFail, "FAIL"}));
    EXPECT_EQ(VerdictChipOf(run.limits, {}, 0, false), RunVerdictChip{});
}

TEST(RunTexts, StateTheLimits) {
    PlottedRun run;
    EXPECT_EQ(LimitsText(run.limits, run.points, run.results), "");
    run.limits = {ThdAtMost(LimitCurve(-90.0))};
    EXPECT_EQ(LimitsText(run.limits, run.points, run.results), "THD at most -90 dB, 20 Hz to 20 kHz");
    run.limits = {ThdAtMost(LimitCurve(-99.5))};
    EXPECT_EQ(LimitsText(run.limits, run.points, run.results),
              "THD at most -99.5 dB, 20 Hz to 20 kHz: 2 points over, worst 4.50 dB at 20 Hz");
    run.limits = {{{RunQuantity::Kind::kResponse}, LimitCurve(-3.0), LimitCurve({{20, 1}, {30000, 2}})}};
    EXPECT_EQ(LimitsText(run.limits, run.points, {}),
              "Response at least -3 dB and at most a line, 20 Hz to 20 kHz");
}

TEST(RunTexts, StateTheProgress) {
    PlottedRun run;
    EXPECT_EQ(RunningPointText(run.points, 2, RunAxis::kFrequency), "Point 3 of 4: 2000 Hz");
    EXPECT_EQ(RunningPointText(run.points, 4, RunAxis::kFrequency), "Point 4 of 4: 20000 Hz");
    EXPECT_EQ(RunningPointText(run.points, 0, RunAxis::kLevel), "Point 1 of 4: -1 dBFS");
    EXPECT_EQ(RunningPointText({}, 0, RunAxis::kLevel), "");
    EXPECT_EQ(FinishedText(run.results, 4, 182), "4 points in 3 min 2 s; 1 invalid, 1 repeated");
    EXPECT_EQ(FinishedText(std::span(run.results).first(1), 4, 5), "1 of 4 points in 5 s");
    EXPECT_EQ(DurationText(0), "0 s");
    EXPECT_EQ(DurationText(68.2), "1 min 9 s");
    EXPECT_EQ(DurationText(3900), "1 h 5 min");
    EXPECT_EQ(HertzText(1612.7), "1612.7 Hz");
    EXPECT_EQ(HertzText(20000), "20 kHz");
}

}  // namespace
}  // namespace sonavex
