#include <gtest/gtest.h>

#include <cmath>
#include <numbers>
#include <vector>

#include "core/dsp/modSPL2VB.h"
#include "support/Errors.h"
#include "support/ReferenceMath.h"

namespace sonavex::modSPL2VB {
namespace {

std::vector<double> Design(double low, double high, std::int32_t length, std::int32_t normalize = 1) {
    std::vector<double> taps(static_cast<std::size_t>(length));
    nspdFirBandpass(low, high, taps, length, kBlackman, normalize);
    return taps;
}

double GainDb(const std::vector<double>& taps, double fraction) {
    return 20.0 * std::log10(static_cast<double>(std::abs(reference::DftAt(taps, fraction))));
}

TEST(FirBandpass, MatchesTheWindowedSinc) {
    const struct {
        double low;
        double high;
        std::int32_t length;
    } designs[] = {{25.0 / 32000, 15900.0 / 32000, 2048},
                   {20.0 / 4000, 1900.0 / 4000, 2048},
                   {0.1, 0.2, 101},
                   {0.0, 0.5, 64}};
    for (const auto& design : designs) {
        const auto taps = Design(design.low, design.high, design.length);
        const auto expected = reference::Bandpass(design.low, design.high, design.length);
        for (std::size_t n = 0; n < taps.size(); ++n) ASSERT_NEAR(taps[n], expected[n], 1e-13) << n;
    }
}

TEST(FirBandpass, IsSymmetric) {
    const auto taps = Design(0.01, 0.4, 2048);
    for (std::size_t n = 0; n < 1024; ++n) ASSERT_NEAR(taps[n], taps[2047 - n], 1e-15) << n;
}

TEST(FirBandpass, HasUnitGainInMidBand) {
    for (const double rate : {48000.0, 44100.0, 32000.0, 22050.0, 16000.0, 8000.0, 4000.0}) {
        const double low = 25.0 / rate;
        const double high = (rate / 2.0 - 100.0) / rate;
        EXPECT_NEAR(GainDb(Design(low, high, 2048), (low + high) / 2.0), 0.0, 1e-12) << rate;
    }
}

TEST(FirBandpass, PassesTheBandAndStopsTheRest) {
    const auto taps = Design(0.1, 0.2, 2048);
    for (double fraction = 0.1015; fraction < 0.1985; fraction += 0.0007)
        ASSERT_NEAR(GainDb(taps, fraction), 0.0, 0.002) << fraction;
    for (double fraction = 0.0; fraction < 0.0985; fraction += 0.0007)
        ASSERT_LT(GainDb(taps, fraction), -74.0) << fraction;
    for (double fraction = 0.2015; fraction < 0.5; fraction += 0.0007)
        ASSERT_LT(GainDb(taps, fraction), -74.0) << fraction;
    // Half the amplitude at the edges.
    EXPECT_NEAR(GainDb(taps, 0.1), -6.02, 0.02);
    EXPECT_NEAR(GainDb(taps, 0.2), -6.02, 0.02);
}

TEST(FirBandpass, UsesTheSymmetricBlackmanWindow) {
    const std::int32_t length = 11;
    const auto taps = Design(0.2, 0.3, length, 0);
    for (std::int32_t n = 0; n < length; ++n) {
        const double t = n - 5.0;
        const double ideal =
            t == 0.0 ? 0.2
                     : (std::sin(0.6 * std::numbers::pi * t) - std::sin(0.4 * std::numbers::pi * t)) /
                           (std::numbers::pi * t);
        const double x = std::numbers::pi * n / 5.0;
        const double window = 0.42 - 0.5 * std::cos(x) + 0.08 * std::cos(2.0 * x);
        EXPECT_NEAR(taps[static_cast<std::size_t>(n)], ideal * window, 1e-16) << n;
    }
    EXPECT_NEAR(taps[0], 0.0, 1e-16);
    EXPECT_NEAR(taps[5], 0.2, 1e-16);
}

TEST(FirBandpass, NormalizeScalesAllTapsAlike) {
    const auto plain = Design(0.1, 0.2, 31, 0);
    const auto scaled = Design(0.1, 0.2, 31, 1);
    const double gain = static_cast<double>(std::abs(reference::DftAt(plain, 0.15L)));
    EXPECT_GT(std::fabs(gain - 1.0), 0.01);
    for (std::size_t n = 0; n < 31; ++n) EXPECT_NEAR(scaled[n], plain[n] / gain, 1e-15) << n;
}

TEST(FirBandpass, TouchesOnlyItsTaps) {
    std::vector<double> taps(40, 7.0);
    nspdFirBandpass(0.1, 0.2, taps, 31, kBlackman, 1);
    for (std::size_t n = 31; n < 40; ++n) EXPECT_EQ(taps[n], 7.0) << n;
    EXPECT_NEAR(taps[0], 0.0, 1e-16);
    EXPECT_NEAR(taps[30], 0.0, 1e-16);
}

// A band without width passes nothing and has no gain to divide by.
TEST(FirBandpass, OfABandWithoutWidthIsNothing) {
    for (const double tap : Design(0.2, 0.2, 31, 0)) EXPECT_EQ(tap, 0.0);
    EXPECT_EQ(ErrorOf([] { return Design(0.2, 0.2, 31).size(); }), 11);
}

// The window is zero at its ends, so two taps pass nothing.
TEST(FirBandpass, DesignsTwoTapsAtLeast) {
    EXPECT_EQ(ErrorOf([] { return Design(0.1, 0.2, 2, 0).size(); }), 0);
    for (const double tap : Design(0.1, 0.2, 2, 0)) EXPECT_NEAR(tap, 0.0, 1e-16);
}

TEST(FirBandpass, RefusesWhatItCannotDesign) {
    std::vector<double> taps(31);
    const auto errorOf = [&](double low, double high, std::int32_t length, std::int32_t window) {
        return ErrorOf([&] { return nspdFirBandpass(low, high, taps, length, window, 1), 0; });
    };
    EXPECT_EQ(errorOf(0.1, 0.2, 31, kBlackman), 0);
    EXPECT_EQ(errorOf(0.1, 0.2, 31, 2), 0) << "the window's number";
    EXPECT_EQ(errorOf(0.1, 0.2, 32, kBlackman), 9);
    EXPECT_EQ(errorOf(0.1, 0.2, 31, 0), 5);
    EXPECT_EQ(errorOf(0.1, 0.2, 31, 3), 5);
    EXPECT_EQ(errorOf(0.1, 0.2, 1, kBlackman), 5);
    EXPECT_EQ(errorOf(0.3, 0.2, 31, kBlackman), 5);
    EXPECT_EQ(errorOf(std::nan(""), 0.2, 31, kBlackman), 5);
}

}  // namespace
}  // namespace sonavex::modSPL2VB
