#include <gtest/gtest.h>

#include "core/text/Decimals.h"

namespace sonavex {
namespace {

TEST(Decimals, HasTheRequestedNumberOfDecimals) {
    EXPECT_EQ(WithDecimals(-140.58, 1), "-140.6");
    EXPECT_EQ(WithDecimals(150.1465, 2), "150.15");
    EXPECT_EQ(WithDecimals(20, 0), "20");
    EXPECT_EQ(WithDecimals(1e300, 0).size(), 301U);
}

TEST(Decimals, AZeroHasNoSign) {
    EXPECT_EQ(WithDecimals(-0.04, 1), "0.0");
    EXPECT_EQ(WithDecimals(-0.0, 0), "0");
    EXPECT_EQ(WithDecimals(-0.05000001, 1), "-0.1");
}

TEST(Decimals, RoundUpwards) {
    EXPECT_EQ(RoundedUp(-140.66, 1), "-140.6");
    EXPECT_EQ(RoundedUp(-140.7, 1), "-140.7");
    EXPECT_EQ(RoundedUp(0.1 + 0.2, 1), "0.3");
    EXPECT_EQ(RoundedUp(0.31, 1), "0.4");
    EXPECT_EQ(RoundedUp(-0.04, 1), "0.0");
}

TEST(Decimals, DropsTrailingZeros) {
    EXPECT_EQ(WithoutTrailingZeros(1, 4), "1");
    EXPECT_EQ(WithoutTrailingZeros(1.05, 4), "1.05");
    EXPECT_EQ(WithoutTrailingZeros(-20, 2), "-20");
    EXPECT_EQ(WithoutTrailingZeros(100, 0), "100");
}

TEST(Digits, AreSignificantWithoutTrailingZeros) {
    EXPECT_EQ(WithDigits(999.755859375, 9), "999.755859");
    EXPECT_EQ(WithDigits(48000.0, 9), "48000");
    EXPECT_EQ(WithDigits(0.00001234, 2), "1.2e-05");
    EXPECT_EQ(WithDigits(-0.5, 6), "-0.5");
}

}  // namespace
}  // namespace sonavex
