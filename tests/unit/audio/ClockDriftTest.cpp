#include <gtest/gtest.h>

#include <random>

#include "core/audio/ClockDrift.h"
#include "platform/ring/ClockMeter.h"

namespace sonavex {
namespace {

using namespace std::chrono_literals;

std::chrono::nanoseconds Microseconds(double us) {
    return std::chrono::nanoseconds(static_cast<std::int64_t>(us * 1e3));
}

// Observations every 40 ms of a clock that drifts by `ppm`, each with an error of up to `jitterUs`.
void Observe(ClockDrift& drift, double ppm, double jitterUs, double seconds) {
    std::mt19937 random(1);
    std::uniform_real_distribution<double> jitter(-jitterUs, jitterUs);
    for (double t = 0; t < seconds; t += 0.04)
        drift.Add(Microseconds(1e6 * t), Microseconds(ppm * t + jitter(random)));
}

TEST(ClockDrift, IsNotKnownAtFirst) {
    ClockDrift drift;
    EXPECT_FALSE(drift.Ppm());
    Observe(drift, 50.0, 0.0, 59.0);
    EXPECT_FALSE(drift.Ppm());
}

TEST(ClockDrift, IsTheSlopeOfTheLead) {
    for (const double ppm : {-120.0, -7.5, 0.0, 23.0, 300.0}) {
        ClockDrift drift;
        Observe(drift, ppm, 2000.0, 300.0);
        ASSERT_TRUE(drift.Ppm()) << ppm;
        EXPECT_NEAR(*drift.Ppm(), ppm, 3.0);
    }
}

TEST(ClockDrift, IsNotClaimedFromObservationsThatScatterTooMuch) {
    ClockDrift drift;
    Observe(drift, 20.0, 100'000.0, 300.0);
    EXPECT_FALSE(drift.Ppm());
}

TEST(ClockDrift, FollowsAClockThatChanges) {
    ClockDrift drift;
    Observe(drift, 20.0, 100.0, 700.0);
    drift.Restart();
    ASSERT_TRUE(drift.Ppm());
    EXPECT_NEAR(*drift.Ppm(), 20.0, 3.0);
    Observe(drift, 40.0, 100.0, 100.0);
    EXPECT_NEAR(*drift.Ppm(), 40.0, 3.0);
}

TEST(ClockDrift, OfAnotherStreamIsNotKnown) {
    ClockDrift drift;
    Observe(drift, 20.0, 100.0, 100.0);
    drift.Forget();
    EXPECT_FALSE(drift.Ppm());
}

TEST(ClockNote, SaysNothingOfOneClock) {
    EXPECT_EQ(ClockNote("", "", std::nullopt), "");
    EXPECT_EQ(ClockNote("card 0", "card 0", 1.0), "");
    EXPECT_EQ(ClockNote("card 0", "", std::nullopt), "");
    EXPECT_EQ(ClockNote("", "card 0", 2.9), "");
}

TEST(ClockNote, DistinguishesTwoClocksByNameAndByDrift) {
    EXPECT_EQ(ClockNote("card 0", "card 1", std::nullopt), "input and output run on different clocks");
    EXPECT_EQ(ClockNote("card 0", "card 1", -0.4),
              "input and output run on different clocks, less than 3 ppm apart");
    EXPECT_EQ(ClockNote("", "", 23.4),
              "input and output run on different clocks, the input's is 23 ppm faster");
    EXPECT_EQ(ClockNote("card 1", "card 0", -100.6),
              "input and output run on different clocks, the input's is 101 ppm slower");
}

TEST(ClockMeter, KnowsNothingBeforeTheFirstFrames) {
    EXPECT_FALSE(ClockMeter(48000).Lead());
}

TEST(ClockMeter, ComparesFramesWithTheTime) {
    ClockMeter meter(48000);
    const ClockMeter::Clock::time_point start{};
    meter.Moved(480, 480, start);
    EXPECT_EQ(meter.Lead(), 0ns);
    meter.Moved(48000, 480, start + 1s);
    EXPECT_EQ(meter.Lead(), 0ns);
    // The device has moved 48 extra frames.
    meter.Moved(48048, 480, start + 2s);
    EXPECT_EQ(meter.Lead(), 1ms);
    // It reports more than was ever moved, as a server may at its start.
    ClockMeter other(48000);
    other.Moved(48, 96, start);
    EXPECT_EQ(other.Lead(), -1ms);
}

TEST(ClockMeter, CountsForYears) {
    ClockMeter meter(48000);
    const ClockMeter::Clock::time_point start{};
    constexpr std::size_t kTenYearsFrames = std::size_t{48000} * 86400 * 3650;
    meter.Moved(0, 0, start);
    meter.Moved(kTenYearsFrames, 0, start + std::chrono::hours(24 * 3650));
    EXPECT_EQ(meter.Lead(), 0ns);
}

}  // namespace
}  // namespace sonavex
