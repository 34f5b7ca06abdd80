#include <gtest/gtest.h>

#include <algorithm>
#include <random>

#include "core/plot/PlotTicks.h"

namespace sonavex {
namespace {

double SevenPerLetter(const std::string& label) {
    return 7.0 * static_cast<double>(label.size());
}

std::string LabelsOf(const std::vector<PlotTick>& ticks) {
    std::string labels;
    for (const PlotTick& tick : ticks)
        if (!tick.label.empty()) labels += (labels.empty() ? "" : " ") + tick.label;
    return labels;
}

std::string FrequencyLabels(double lowHz, double highHz, double width) {
    return LabelsOf(FrequencyTicks({std::log10(lowHz), std::log10(highHz)}, width, SevenPerLetter));
}

TEST(PlotTicks, TheWholeAudioBand) {
    EXPECT_EQ(FrequencyLabels(10, 24000, 520), "10 20 50 100 200 500 1k 2k 5k 10k 20k");
    EXPECT_EQ(FrequencyLabels(10, 96000, 520), "10 20 50 100 200 500 1k 2k 5k 10k 20k 50k");
    const auto ticks = FrequencyTicks({1.0, std::log10(24000.0)}, 520, SevenPerLetter);
    EXPECT_EQ(ticks.size(), 29U);
    EXPECT_EQ(std::count_if(ticks.begin(), ticks.end(), [](const PlotTick& t) { return !t.minor; }), 4);
}

TEST(PlotTicks, LabelsAreLeftOutBeforeTheyTouch) {
    EXPECT_EQ(FrequencyLabels(10, 24000, 280), "10 20 50 100 200 500 1k 2k 5k 10k 20k");
    EXPECT_EQ(FrequencyLabels(10, 24000, 220), "10 20 100 1k 2k 10k");
    EXPECT_EQ(FrequencyLabels(10, 24000, 60), "10 1k 20k");
}

TEST(PlotTicks, AMagnifiedRangeHasEqualSteps) {
    EXPECT_EQ(FrequencyLabels(980, 1021, 520), "980 985 990 995 1k 1.005k 1.01k 1.015k 1.02k");
    EXPECT_EQ(FrequencyLabels(900, 2400, 520), "1k 1.2k 1.4k 1.6k 1.8k 2k 2.2k 2.4k");
    EXPECT_EQ(FrequencyLabels(19990, 20010, 520), "19.99k 19.995k 20k 20.005k 20.01k");
}

TEST(PlotTicks, NoLabelsTouchInAnyView) {
    std::mt19937 random(7);
    std::uniform_real_distribution<double> unit(0, 1);
    for (int i = 0; i < 2000; ++i) {
        const double low = 1.0 + 3.9 * unit(random);
        const PlotRange decades{low, low + 0.0005 + (4.98 - low) * unit(random)};
        const double width = 60.0 + 900.0 * unit(random);
        double end = -1e9;
        int labels = 0;
        for (const PlotTick& tick : FrequencyTicks(decades, width, SevenPerLetter)) {
            if (tick.label.empty()) continue;
            const double centre = width * decades.FractionOf(std::log10(tick.value));
            const double half = 0.5 * SevenPerLetter(tick.label);
            ASSERT_GT(centre - half, end) << decades.low << " " << decades.high << " " << width;
            end = centre + half;
            ++labels;
        }
        if (width > 250) {
            ASSERT_GE(labels, 2) << decades.low << " " << decades.high << " " << width;
        }
    }
}

TEST(PlotTicks, Levels) {
    EXPECT_EQ(LabelsOf(LevelTicks({-180, 0}, 346, 13)), "-180 -160 -140 -120 -100 -80 -60 -40 -20 0");
    EXPECT_EQ(LabelsOf(LevelTicks({-130, -120}, 346, 13)),
              "-130 -129 -128 -127 -126 -125 -124 -123 -122 -121 -120");
    EXPECT_EQ(LabelsOf(LevelTicks({-127.5, -82.5}, 346, 13)), "-125 -120 -115 -110 -105 -100 -95 -90 -85");
}

TEST(PlotTicks, AFlagReplacesTheLabelThatItCovers) {
    const auto ticks = LevelTicks({-180, 0}, 346, 13, -140.6);
    EXPECT_EQ(LabelsOf(ticks), "-180 -160 -120 -100 -80 -60 -40 -20 0");
    EXPECT_EQ(ticks.size(), 10U);
    EXPECT_EQ(LabelsOf(LevelTicks({-180, 0}, 346, 13, -150)), "-180 -160 -140 -120 -100 -80 -60 -40 -20 0");
}

TEST(PlotTicks, Times) {
    EXPECT_EQ(LabelsOf(TimeTicks(0.002)), "0 1 2 ms");
    EXPECT_EQ(LabelsOf(TimeTicks(0.0020005)), "0 1 2 ms");
    EXPECT_EQ(TimeTicks(0.0020005).size(), 5U);
    EXPECT_EQ(LabelsOf(TimeTicks(5.0 / 6.1)), "0 400 800 ms");
    EXPECT_EQ(LabelsOf(TimeTicks(1.0 / 20000)), "0 40 µs");
    for (double seconds = 4e-5; seconds < 2; seconds *= 1.07) {
        const std::string labels = LabelsOf(TimeTicks(seconds));
        EXPECT_EQ(labels.substr(labels.size() - 1), "s") << seconds;
        EXPECT_LT(labels.size(), 18U) << labels;
    }
}

}  // namespace
}  // namespace sonavex
