#include <gtest/gtest.h>

#include <cmath>
#include <numbers>
#include <vector>

#include "core/dsp/modSPL2VB.h"

namespace sonavex::modSPL2VB {
namespace {

constexpr double kPi = std::numbers::pi;

struct Polar {
    double mag;
    double phase;
};

// The same pair at 19 positions, so that the vector loop and its remainder both convert it.
Polar Convert(double re, double im) {
    const std::vector<double> res(19, re);
    const std::vector<double> ims(19, im);
    std::vector<double> mag(19, -1.0);
    std::vector<double> phase(19, -9.0);
    nspdbrCartToPolar(res, ims, mag, phase, 19);
    for (std::size_t i = 1; i < 19; ++i) {
        EXPECT_NEAR(mag[i], mag[0], 1e-15 * mag[0]) << i;
        EXPECT_NEAR(phase[i], phase[0], 1e-15) << i;
        EXPECT_EQ(std::signbit(phase[i]), std::signbit(phase[0])) << i;
    }
    return {mag[18], phase[18]};
}

TEST(Polar, PhaseLiesInTheRightQuadrant) {
    EXPECT_NEAR(Convert(3.0, 4.0).phase, 0.92729521800161223, 1e-15);
    EXPECT_NEAR(Convert(-3.0, 4.0).phase, kPi - 0.92729521800161223, 1e-15);
    EXPECT_NEAR(Convert(-3.0, -4.0).phase, -kPi + 0.92729521800161223, 1e-15);
    EXPECT_NEAR(Convert(3.0, -4.0).phase, -0.92729521800161223, 1e-15);
    EXPECT_EQ(Convert(-3.0, 4.0).mag, 5.0);
}

TEST(Polar, PhaseOnTheAxes) {
    EXPECT_EQ(Convert(2.0, 0.0).phase, 0.0);
    EXPECT_NEAR(Convert(0.0, 2.0).phase, kPi / 2.0, 1e-15);
    EXPECT_NEAR(Convert(-2.0, 0.0).phase, kPi, 1e-15);
    EXPECT_NEAR(Convert(0.0, -2.0).phase, -kPi / 2.0, 1e-15);
}

TEST(Polar, NegativeZeroTakesTheOtherSide) {
    EXPECT_NEAR(Convert(-2.0, -0.0).phase, -kPi, 1e-15);
    EXPECT_EQ(Convert(2.0, -0.0).phase, 0.0);
    EXPECT_TRUE(std::signbit(Convert(2.0, -0.0).phase));
    EXPECT_NEAR(Convert(-0.0, 2.0).phase, kPi / 2.0, 1e-15);
}

TEST(Polar, ZeroHasMagnitudeAndPhaseZero) {
    const Polar zero = Convert(0.0, 0.0);
    EXPECT_EQ(zero.mag, 0.0);
    EXPECT_EQ(zero.phase, 0.0);
    EXPECT_EQ(Convert(-0.0, 0.0).mag, 0.0);
}

TEST(Polar, ConversionsAreInversesOfEachOther) {
    constexpr std::int32_t kCount = 4096;
    std::vector<double> re;
    std::vector<double> im;
    for (int i = 0; i < kCount; ++i) {
        const double radius = std::pow(10.0, -6.0 + 15.0 * i / kCount);
        re.push_back(radius * std::cos(0.37 * i));
        im.push_back(radius * std::sin(0.37 * i));
    }
    std::vector<double> mag(kCount);
    std::vector<double> phase(kCount);
    std::vector<double> backRe(kCount);
    std::vector<double> backIm(kCount);
    nspdbrCartToPolar(re, im, mag, phase, kCount);
    nspdbrPolarToCart(mag, phase, backRe, backIm, kCount);
    for (std::size_t i = 0; i < kCount; ++i) {
        ASSERT_NEAR(mag[i], std::hypot(re[i], im[i]), 1e-15 * mag[i]) << i;
        ASSERT_NEAR(phase[i], std::atan2(im[i], re[i]), 2e-15) << i;
        ASSERT_NEAR(backRe[i], re[i], 3e-15 * mag[i]) << i;
        ASSERT_NEAR(backIm[i], im[i], 3e-15 * mag[i]) << i;
    }
}

TEST(Polar, PolarToCartesianMatchesTheFormula) {
    constexpr std::int32_t kCount = 1001;
    std::vector<double> mag;
    std::vector<double> phase;
    for (int i = 0; i < kCount; ++i) {
        mag.push_back(0.5 + i);
        phase.push_back(-4.0 * kPi + 8.0 * kPi * i / kCount);
    }
    std::vector<double> re(kCount + 1, 7.0);
    std::vector<double> im(kCount + 1, 7.0);
    nspdbrPolarToCart(mag, phase, re, im, kCount);
    for (std::size_t i = 0; i < kCount; ++i) {
        ASSERT_NEAR(re[i], mag[i] * std::cos(phase[i]), 1e-15 * mag[i]) << i;
        ASSERT_NEAR(im[i], mag[i] * std::sin(phase[i]), 1e-15 * mag[i]) << i;
    }
    EXPECT_EQ(re[kCount], 7.0);
    EXPECT_EQ(im[kCount], 7.0);
}

TEST(Polar, MagnitudesAloneAreTheSame) {
    std::vector<double> re;
    std::vector<double> im;
    for (int i = 0; i < 2049; ++i) {
        re.push_back(1e6 * std::sin(1.0 * i));
        im.push_back(1e6 * std::cos(2.0 * i));
    }
    std::vector<double> mag(2049);
    std::vector<double> phase(2049);
    std::vector<double> alone(2049);
    nspdbrCartToPolar(re, im, mag, phase, 2049);
    Magnitudes(re, im, alone, 2049);
    EXPECT_EQ(alone, mag);
}

}  // namespace
}  // namespace sonavex::modSPL2VB
