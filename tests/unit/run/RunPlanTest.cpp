#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>

#include "core/run/RunPlan.h"

namespace sonavex {
namespace {

constexpr double kPlanRateHz = 48000;
constexpr double kPlanBinHz = 48000.0 / 65536;

std::vector<double> RequestedHz(const RunPlan& plan) {
    std::vector<double> hertz;
    for (const RunPoint& point : PointsOf(plan, kPlanRateHz)) hertz.push_back(point.requestedHz);
    return hertz;
}

void ExpectRefused(const RunPlan& plan, const std::string& sentence, double rateHz = kPlanRateHz) {
    try {
        PointsOf(plan, rateHz);
        ADD_FAILURE() << "accepted; expected: " << sentence;
    } catch (const RunError& error) {
        EXPECT_EQ(error.what(), sentence);
    }
}

RunPlan OverFrequencies(RunValues frequencies) {
    RunPlan plan;
    plan.frequenciesHz = std::move(frequencies);
    return plan;
}

RunPlan OverLevels(RunValues levels) {
    RunPlan plan;
    plan.over = RunAxis::kLevel;
    plan.frequenciesHz = std::vector<double>{997};
    plan.levelsDbfs = std::move(levels);
    return plan;
}

TEST(RunPlan, SixPointsPerOctaveAre60PointsAndTheEnd) {
    const std::vector<double> hertz = RequestedHz(RunPlan());
    ASSERT_EQ(hertz.size(), 61U);
    for (std::size_t i = 0; i < 60; ++i)
        EXPECT_NEAR(hertz[i], 20.0 * std::exp2(static_cast<double>(i) / 6.0), 1e-9) << i;
    EXPECT_EQ(hertz.back(), 20000.0);
}

TEST(RunPlan, AnEndOnTheGridIsOnePoint) {
    using Spacing = RunRange::Spacing;
    EXPECT_THAT(RequestedHz(OverFrequencies(RunRange{100, 400, Spacing::kPerOctave, 1})),
                testing::Pointwise(testing::DoubleEq(), std::vector<double>{100, 200, 400}));
    EXPECT_EQ(RequestedHz(OverFrequencies(RunRange{100, 1000, Spacing::kPerOctave, 3})).size(), 11U);
    EXPECT_THAT(RequestedHz(OverFrequencies(RunRange{100, 10000, Spacing::kLogarithmicPoints, 3})),
                testing::Pointwise(testing::DoubleEq(), std::vector<double>{100, 1000, 10000}));
    EXPECT_EQ(RequestedHz(OverFrequencies(RunRange{100, 400, Spacing::kLinearPoints, 4})),
              (std::vector<double>{100, 200, 300, 400}));
    EXPECT_EQ(RequestedHz(OverFrequencies(RunRange{100, 350, Spacing::kStep, 100})),
              (std::vector<double>{100, 200, 300, 350}));
    EXPECT_EQ(RequestedHz(OverFrequencies(RunRange{500, 500, Spacing::kStep, 100})),
              std::vector<double>{500});
}

TEST(RunPlan, LevelsGoInStepsInEitherDirection) {
    const std::vector<RunPoint> points =
        PointsOf(OverLevels(RunRange{-1, -10, RunRange::Spacing::kStep, 3}), kPlanRateHz);
    ASSERT_EQ(points.size(), 4U);
    for (std::size_t i = 0; i < points.size(); ++i) {
        EXPECT_EQ(points[i].levelDbfs, -1.0 - 3.0 * static_cast<double>(i));
        EXPECT_EQ(points[i].requestedHz, 997.0);
        EXPECT_EQ(points[i].playedHz, 997.0);
    }
    // 0.1 is no binary fraction.
    EXPECT_EQ(PointsOf(OverLevels(RunRange{-1, 0, RunRange::Spacing::kStep, 0.1}), kPlanRateHz).size(), 11U);
}

TEST(RunPlan, TheAxisIsMeasuredForEachValueOfTheOtherList) {
    RunPlan plan = OverFrequencies(std::vector<double>{100, 1000});
    plan.levelsDbfs = std::vector<double>{-1, -20};
    std::vector<RunPoint> points = PointsOf(plan, kPlanRateHz);
    ASSERT_EQ(points.size(), 4U);
    EXPECT_EQ(points[1].requestedHz, 1000.0);
    EXPECT_EQ(points[1].levelDbfs, -1.0);
    EXPECT_EQ(points[2].requestedHz, 100.0);
    EXPECT_EQ(points[2].levelDbfs, -20.0);
    plan.over = RunAxis::kLevel;
    points = PointsOf(plan, kPlanRateHz);
    EXPECT_EQ(points[1].requestedHz, 100.0);
    EXPECT_EQ(points[1].levelDbfs, -20.0);
}

TEST(RunPlan, SnapsToTheNearestOddBinAndAtTheEndsInward) {
    RunPlan plan = OverFrequencies(std::vector<double>{1000, 20, 20000, 999.9, kPlanBinHz * 1365});
    plan.snap = true;
    const std::vector<RunPoint> points = PointsOf(plan, kPlanRateHz);
    EXPECT_EQ(points[0].requestedHz, 1000.0);
    EXPECT_EQ(points[0].playedHz, 1365 * kPlanBinHz);
    // Bin 27.3: the nearest odd one is 27, below the range.
    EXPECT_EQ(points[1].playedHz, 29 * kPlanBinHz);
    // Bin 27306.7: the nearest odd one is 27307, above the range.
    EXPECT_EQ(points[2].playedHz, 27305 * kPlanBinHz);
    EXPECT_EQ(points[3].playedHz, 1365 * kPlanBinHz);
    EXPECT_EQ(points[4].playedHz, 1365 * kPlanBinHz);
}

TEST(RunPlan, SnapsASingleFrequencyAndEndsOnABin) {
    RunPlan plan = OverFrequencies(std::vector<double>{20});
    plan.snap = true;
    EXPECT_EQ(PointsOf(plan, kPlanRateHz)[0].playedHz, 27 * kPlanBinHz);
    plan.frequenciesHz = std::vector<double>{0.45 * kPlanRateHz};
    EXPECT_EQ(PointsOf(plan, kPlanRateHz)[0].playedHz, 29491 * kPlanBinHz);
    plan.frequenciesHz = std::vector<double>{101 * kPlanBinHz, 201 * kPlanBinHz};
    EXPECT_EQ(PointsOf(plan, kPlanRateHz)[0].playedHz, 101 * kPlanBinHz);
    EXPECT_EQ(PointsOf(plan, kPlanRateHz)[1].playedHz, 201 * kPlanBinHz);
}

TEST(RunPlan, RefusesFrequenciesThatARecordCannotMeasure) {
    ExpectRefused(OverFrequencies(std::vector<double>{21600.5}),
                  "The frequency 21600.5 Hz is above 21600 Hz, 0.45 of the rate of 48000 Hz.");
    ExpectRefused(OverFrequencies(std::vector<double>{1000, 5.8}),
                  "The frequency 5.8 Hz is below 5.859375 Hz, 8 bins of a record.");
    EXPECT_NO_THROW(PointsOf(OverFrequencies(std::vector<double>{21600, 5.859375}), kPlanRateHz));
    RunPlan shortRecords;
    shortRecords.length = 4096;
    ExpectRefused(shortRecords, "The frequency 20 Hz is below 93.75 Hz, 8 bins of a record.");
    ExpectRefused(RunPlan(), "The frequency 14481.5469 Hz is above 14400 Hz, 0.45 of the rate of 32000 Hz.",
                  32000);
}

TEST(RunPlan, RefusesEmptyAndAbsurdRanges) {
    using Spacing = RunRange::Spacing;
    ExpectRefused(OverFrequencies(std::vector<double>{}), "The list of frequencies is empty.");
    ExpectRefused(OverLevels(std::vector<double>{}), "The list of levels is empty.");
    ExpectRefused(OverFrequencies(std::vector<double>{1000, std::nan("")}),
                  "The list of frequencies has a value that is not a number.");
    ExpectRefused(OverFrequencies(RunRange{0, 1000, Spacing::kPerOctave, 6}),
                  "The range of frequencies is logarithmic and must begin and end above 0.");
    ExpectRefused(OverFrequencies(RunRange{20, 20000, Spacing::kPerOctave, 0}),
                  "The range of frequencies needs steps greater than 0.");
    ExpectRefused(OverFrequencies(RunRange{20, INFINITY, Spacing::kPerOctave, 6}),
                  "The range of frequencies has no end.");
    ExpectRefused(OverFrequencies(RunRange{20, 20000, Spacing::kStep, 1}),
                  "The range of frequencies has more than 2000 points.");
    ExpectRefused(OverFrequencies(RunRange{20, 20000, Spacing::kLinearPoints, 2.5}),
                  "The range of frequencies has a whole number of points, at least 2.");
    ExpectRefused(OverLevels(RunRange{-60, -1, Spacing::kStep, NAN}),
                  "The range of levels needs steps greater than 0.");
    RunPlan many = OverFrequencies(RunRange{20, 20000, Spacing::kLinearPoints, 1000});
    many.levelsDbfs = std::vector<double>{-1, -2, -3};
    ExpectRefused(many, "The run has 3000 points; at most 2000 are possible.");
}

TEST(RunPlan, NoPointIsLouderThanTheRunAllows) {
    RunPlan plan = OverLevels(RunRange{-20, 0, RunRange::Spacing::kStep, 5});
    EXPECT_EQ(PointsOf(plan, kPlanRateHz).size(), 5U);
    plan.highestLevelDbfs = -6;
    ExpectRefused(plan, "The level -5 dBFS is above -6 dBFS, the highest of the run.");
    ExpectRefused(OverLevels(std::vector<double>{0.1}), "The level 0.1 dBFS is outside -200 to 0 dBFS.");
    ExpectRefused(OverLevels(std::vector<double>{-201}), "The level -201 dBFS is outside -200 to 0 dBFS.");
}

TEST(RunPlan, RefusesSettingsOutOfRange) {
    const auto refused = [](auto change, const std::string& sentence) {
        RunPlan plan;
        change(plan);
        ExpectRefused(plan, sentence);
    };
    refused([](RunPlan& plan) { plan.length = 5000; },
            "The length of a record is a power of two from 4096 to 1048576, not 5000.");
    refused([](RunPlan& plan) { plan.length = 2048; },
            "The length of a record is a power of two from 4096 to 1048576, not 2048.");
    refused([](RunPlan& plan) { plan.channel = 2; }, "The channel is left or right.");
    refused([](RunPlan& plan) { plan.highestOrder = 1; }, "The highest harmonic is 2 to 1000, not 1.");
    refused([](RunPlan& plan) { plan.band = {2000, 2000}; }, "The band 2000 to 2000 Hz is empty.");
    refused([](RunPlan& plan) { plan.ditherBits = 7; }, "The dither has 8 to 32 bits.");
    refused([](RunPlan& plan) { plan.settling.levelDb = -1; }, "The limits of settling are 0 to 100 dB.");
    refused([](RunPlan& plan) { plan.settling.thdnDb = NAN; }, "The limits of settling are 0 to 100 dB.");
    refused([](RunPlan& plan) { plan.settling.records = 1; },
            "A point settles within 2 to 1000 records, not 1.");
}

}  // namespace
}  // namespace sonavex
