#include <gtest/gtest.h>

#include <cmath>

#include "core/audio/ClockDrift.h"

namespace sonavex {
namespace {

using namespace std::chrono_literals;

std::chrono::nanoseconds Nanoseconds(double ns) {
    return std::chrono::nanoseconds(std::llround(ns));
}

// `count` observations of a clock that drifts by `ppm`. The first is at 5 s with a lead of 1 ms, the last one
// `span` later.
void ObserveLine(ClockDrift& drift, double ppm, int count, std::chrono::seconds span) {
    for (int i = 0; i < count; ++i) {
        const std::chrono::nanoseconds after = i * std::chrono::nanoseconds(span) / (count - 1);
        drift.Add(5s + after, 1ms + Nanoseconds(ppm * 1e-6 * static_cast<double>(after.count())));
    }
}

TEST(ClockDriftLimits, AreAMinuteAndThirtyObservations) {
    ClockDrift shortOfAMinute;
    ObserveLine(shortOfAMinute, 50.0, 31, 59s);
    EXPECT_FALSE(shortOfAMinute.Ppm());
    shortOfAMinute.Add(5s + 60s, 1ms + 3ms);
    EXPECT_TRUE(shortOfAMinute.Ppm());

    ClockDrift tooFew;
    ObserveLine(tooFew, 50.0, 29, 90s);
    EXPECT_FALSE(tooFew.Ppm());
    ClockDrift enough;
    ObserveLine(enough, 50.0, 30, 60s);
    EXPECT_TRUE(enough.Ppm());
}

TEST(ClockDriftLimits, OfTheReadingItselfAreThoseOfTheNumbers) {
    ClockDrift drift;
    ObserveLine(drift, 50.0, 31, 60s);
    ASSERT_TRUE(drift.Ppm());
    EXPECT_NEAR(*drift.Ppm(), 50.0, 1e-9);
    drift.Forget();
    ObserveLine(drift, -20.0, 31, 60s);
    ASSERT_TRUE(drift.Ppm());
    EXPECT_NEAR(*drift.Ppm(), -20.0, 1e-9);
}

// The clock changes its rate when ten minutes are full: the next observation starts a new line, which gives
// the new rate a minute later and not before.
TEST(ClockDriftLimits, AfterTenMinutesANewLineBegins) {
    ClockDrift drift;
    ObserveLine(drift, 50.0, 301, 600s);
    for (int s = 602; s <= 660; s += 2) drift.Add(5s + std::chrono::seconds(s), s * 200us);
    ASSERT_TRUE(drift.Ppm());
    EXPECT_NEAR(*drift.Ppm(), 50.0, 1e-9);
    drift.Add(5s + 662s, 662 * 200us);
    EXPECT_NEAR(*drift.Ppm(), 200.0, 1e-3);
}

// Residues of equal size with alternating signs give the textbook standard error of the slope. Six times that
// must be within 3 ppm.
TEST(ClockDriftLimits, AreThreePpmAtSixStandardErrors) {
    constexpr int kCount = 31;
    const double squaresOfTime = 4.0 * kCount * (kCount * kCount - 1.0) / 12.0;  // every 2 s
    const double squaresOfResidues = kCount - 1.0 / kCount;                      // of size 1
    for (const auto& [errorPpm, known] : {std::pair{2.9995, true}, std::pair{3.0005, false}}) {
        const double residueUs = errorPpm / 6.0 * std::sqrt(squaresOfTime * (kCount - 2) / squaresOfResidues);
        ClockDrift drift;
        for (int i = 0; i < kCount; ++i)
            drift.Add(i * 2s, Nanoseconds((i % 2 == 0 ? 1e3 : -1e3) * residueUs));
        EXPECT_EQ(drift.Ppm().has_value(), known) << errorPpm;
    }
}

TEST(ClockNoteLimits, ThreePpmAreNotYetApart) {
    EXPECT_EQ(ClockNote("", "", 3.0), "");
    EXPECT_EQ(ClockNote("", "", -3.0), "");
    EXPECT_EQ(ClockNote("", "", 3.1),
              "input and output run on different clocks, the input's is 3 ppm faster");
}

TEST(ClockNoteLimits, NoClockIsSaidToBeMoreThanTwiceAsFast) {
    EXPECT_EQ(ClockNote("", "", 2e6),
              "input and output run on different clocks, the input's is 1000000 ppm faster");
}

}  // namespace
}  // namespace sonavex
