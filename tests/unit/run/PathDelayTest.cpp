#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <numbers>
#include <random>
#include <vector>

#include "core/run/PathDelay.h"

namespace sonavex {
namespace {

constexpr double kTopHz = 21600;

// From 20 Hz, six per octave.
std::vector<double> SixthOctaves() {
    std::vector<double> frequencies;
    for (int i = 0; i < 60; ++i) frequencies.push_back(20.0 * std::exp2(i / 6.0));
    return frequencies;
}

double DelayOf(const std::vector<double>& frequencies, const std::function<double(double)>& turnsAt) {
    PathDelay delay(kTopHz);
    for (const double hertz : frequencies) delay.Add(hertz, turnsAt(hertz));
    return delay.BeyondBurstSeconds();
}

TEST(PathDelay, IsThatOfAPureDelayWhateverItsSign) {
    for (const double seconds : {-1.3e-3, -2.1e-5, 0.0, 1e-7, 3.3e-4, 1.45e-3})
        EXPECT_NEAR(DelayOf(SixthOctaves(), [&](double hertz) { return -hertz * seconds; }), seconds, 1e-12);
}

TEST(PathDelay, TakesNoPartOfAnInversionOrOfWholeTurns) {
    EXPECT_NEAR(DelayOf(SixthOctaves(), [](double hertz) { return 0.5 + std::floor(hertz) - hertz * 4e-4; }),
                4e-4, 1e-12);
}

// 0.05 turns are 18 degrees.
TEST(PathDelay, IsExactWithinTheNoiseOfThePhases) {
    std::mt19937 random(7);
    std::normal_distribution<double> noise(0.0, 0.05);
    const double seconds =
        DelayOf(SixthOctaves(), [&](double hertz) { return noise(random) - hertz * 7e-4; });
    EXPECT_NEAR(seconds, 7e-4, 3e-6);
}

// A first-order high pass at 20 Hz advances the phase by 45 degrees there and delays nothing in the band.
TEST(PathDelay, IsNotThatOfAHighPassAtTheLowEnd) {
    const double seconds = DelayOf(SixthOctaves(), [](double hertz) {
        return std::atan(20.0 / hertz) / (2.0 * std::numbers::pi) - hertz * 2e-4;
    });
    EXPECT_NEAR(seconds, 2e-4, 2e-7);
}

TEST(PathDelay, OfASingleFrequencyAndOfLowOnesIsThatOfTheBurst) {
    EXPECT_EQ(DelayOf({}, [](double) { return 0.0; }), 0.0);
    EXPECT_EQ(DelayOf({20, 100, 400}, [](double hertz) { return 0.1 - hertz * 1e-3; }), 0.0);
    EXPECT_EQ(DelayOf({997, 997, 997}, [](double) { return 0.3; }), 0.0);
}

// 1000 Hz apart, delays that differ by 1 ms give the same phases.
TEST(PathDelay, IsTheShortestOfSeveral) {
    EXPECT_NEAR(DelayOf({1000, 2000}, [](double hertz) { return -hertz * 0.8e-3; }), -0.2e-3, 1e-9);
}

}  // namespace
}  // namespace sonavex
