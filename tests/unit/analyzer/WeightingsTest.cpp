#include <gtest/gtest.h>

#include <cmath>
#include <initializer_list>

#include "core/analyzer/Weightings.h"

namespace sonavex {
namespace {

struct TablePoint {
    double hertz;
    double decibels;
};

double GainDb(double gain) {
    return 20.0 * std::log10(gain);
}

TEST(Weightings, AFollowsTheRoundedTableOfTheStandard) {
    for (const TablePoint point : {TablePoint{10, -70.4},
                                   {20, -50.5},
                                   {31.5, -39.4},
                                   {63, -26.2},
                                   {100, -19.1},
                                   {200, -10.9},
                                   {500, -3.2},
                                   {1000, 0},
                                   {2000, 1.2},
                                   {4000, 1.0},
                                   {8000, -1.1},
                                   {16000, -6.6},
                                   {20000, -9.3}}) {
        // Nominal frequencies stand for powers of 10^0.1.
        const double exact = std::pow(10.0, std::round(10.0 * std::log10(point.hertz)) / 10.0);
        EXPECT_NEAR(GainDb(AWeighting(exact)), point.decibels, 0.051) << point.hertz;
    }
}

TEST(Weightings, A468FollowsTheTableOfTheRecommendation) {
    for (const TablePoint point : {TablePoint{31.5, -29.9},
                                   {63, -23.9},
                                   {100, -19.8},
                                   {200, -13.8},
                                   {400, -7.8},
                                   {800, -1.9},
                                   {1000, 0},
                                   {2000, 5.6},
                                   {3150, 9.0},
                                   {4000, 10.5},
                                   {5000, 11.7},
                                   {6300, 12.2},
                                   {7100, 12.0},
                                   {8000, 11.4},
                                   {9000, 10.1},
                                   {10000, 8.1},
                                   {12500, 0},
                                   {14000, -5.3},
                                   {16000, -11.7},
                                   {20000, -22.2},
                                   {31500, -42.7}})
        EXPECT_NEAR(GainDb(Weighting468(point.hertz)), point.decibels, 0.051) << point.hertz;
}

TEST(Weightings, CcirRmsIs468LoweredTo2Kilohertz) {
    EXPECT_NEAR(GainDb(CcirRmsWeighting(1000.0)), -5.63, 1e-12);
    EXPECT_NEAR(GainDb(CcirRmsWeighting(2000.0)), 0.0, 0.051);
}

TEST(Weightings, TheNotchRemovesTheFundamentalAndAttenuatesItsHarmonics) {
    EXPECT_EQ(NotchPowerGain(997.0, 997.0), 0.0);
    EXPECT_NEAR(10.0 * std::log10(NotchPowerGain(2000.0, 1000.0)), -0.458, 0.001);
    EXPECT_NEAR(10.0 * std::log10(NotchPowerGain(3000.0, 1000.0)), -0.150, 0.001);
    EXPECT_EQ(NotchPowerGain(0.0, 1000.0), 1.0);
}

}  // namespace
}  // namespace sonavex
