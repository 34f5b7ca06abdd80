#include <gtest/gtest.h>

#include <vector>

#include "core/analyzer/SpectrumMean.h"

namespace sonavex {
namespace {

constexpr std::size_t kMeanLength = 4096;

// Alternates between a level and its negative: all power is at half the rate.
std::vector<double> Alternating(double level) {
    std::vector<double> samples(kMeanLength, level);
    for (std::size_t n = 1; n < samples.size(); n += 2) samples[n] = -level;
    return samples;
}

// The mean relative to that of level 1.
double RelativePower(const SpectrumMean& mean, const RecordPlan& plan) {
    return mean.Mean().power.back() / plan.AcPowerSpectrum(Alternating(1)).back();
}

TEST(SpectrumMean, ContainsAllRecords) {
    const RecordPlan plan(kMeanLength, 48000);
    SpectrumMean mean(plan);
    for (const double level : {1.0, 2.0, 3.0}) mean.Add(Alternating(level));
    EXPECT_EQ(mean.Mean().records, 3U);
    EXPECT_NEAR(RelativePower(mean, plan), (1.0 + 4.0 + 9.0) / 3.0, 1e-12);
}

TEST(SpectrumMean, BeginsAgainWithTheFirstRecordOfAnAverage) {
    const RecordPlan plan(kMeanLength, 48000);
    SpectrumMean mean(plan);
    mean.Add(Alternating(1), 1);
    mean.Add(Alternating(2), 2);
    mean.Add(Alternating(3), 1);
    EXPECT_EQ(mean.Mean().records, 1U);
    EXPECT_NEAR(RelativePower(mean, plan), 9.0, 1e-12);
}

TEST(SpectrumMean, OldRecordsDropOutOfARollingMean) {
    const RecordPlan plan(kMeanLength, 48000);
    SpectrumMean mean(plan, true);
    for (const double level : {1e6, 2.0, 3.0}) mean.Add(Alternating(level), 2);
    EXPECT_EQ(mean.Mean().records, 2U);
    EXPECT_NEAR(RelativePower(mean, plan), (4.0 + 9.0) / 2.0, 1e-6);
    mean.Add(Alternating(4), 1);
    EXPECT_EQ(mean.Mean().records, 1U);
    EXPECT_NEAR(RelativePower(mean, plan), 16.0, 1e-5);
}

}  // namespace
}  // namespace sonavex
