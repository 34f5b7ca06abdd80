#include <gtest/gtest.h>

#include <limits>
#include <string>

#include "core/support/RuntimeError.h"
#include "core/text/Numbers.h"
#include "support/Errors.h"

namespace sonavex {
namespace {

TEST(Str, PutsABlankInThePlaceOfAPlus) {
    EXPECT_EQ(Str(0.0), " 0");
    EXPECT_EQ(Str(-0.0), " 0");
    EXPECT_EQ(Str(1000.0), " 1000");
    EXPECT_EQ(Str(-50.0), "-50");
}

TEST(Str, WritesNoZeroBeforeThePoint) {
    EXPECT_EQ(Str(0.8399), " .8399");
    EXPECT_EQ(Str(-0.49), "-.49");
    EXPECT_EQ(Str(10.25), " 10.25");
    EXPECT_EQ(Str(0.0001), " .0001");
}

TEST(Str, WritesAtMostFifteenDigits) {
    EXPECT_EQ(Str(1.0 / 3.0), " .333333333333333");
    EXPECT_EQ(Str(2.0 / 3.0), " .666666666666667");
    EXPECT_EQ(Str(0.1 + 0.2), " .3");
    EXPECT_EQ(Str(123456789012345.0), " 123456789012345");
    EXPECT_EQ(Str(999999999999999.0), " 999999999999999");
}

TEST(Str, WritesTheExponentWithTwoDigitsAndSign) {
    EXPECT_EQ(Str(0.00001), " 1E-05");
    EXPECT_EQ(Str(-0.000012), "-1.2E-05");
    EXPECT_EQ(Str(1e15), " 1E+15");
    EXPECT_EQ(Str(999999999999999.5), " 1E+15");
    EXPECT_EQ(Str(1e300), " 1E+300");
}

TEST(CStr, IsPlain) {
    EXPECT_EQ(CStr(1000.0), "1000");
    EXPECT_EQ(CStr(-0.49), "-0.49");
    EXPECT_EQ(CStr(0.5), "0.5");
    EXPECT_EQ(CStr(-0.0), "0");
    EXPECT_EQ(CStr(1e-5), "1E-05");
    EXPECT_EQ(CStr(std::int32_t{-50}), "-50");
    EXPECT_EQ(CStr(std::numeric_limits<std::int32_t>::min()), "-2147483648");
    EXPECT_EQ(CStr(true), "True");
    EXPECT_EQ(CStr(false), "False");
}

TEST(Format, WholeNumbersAreEmptyForZero) {
    EXPECT_EQ(Format(0.0, Pattern::kWhole), "");
    EXPECT_EQ(Format(0.4, Pattern::kWhole), "");
    EXPECT_EQ(Format(-0.4, Pattern::kWhole), "");
    EXPECT_EQ(Format(0.5, Pattern::kWhole), "1");
    EXPECT_EQ(Format(-0.5, Pattern::kWhole), "-1");
    EXPECT_EQ(Format(2.5, Pattern::kWhole), "3");
    EXPECT_EQ(Format(99.5, Pattern::kWhole), "100");
    EXPECT_EQ(Format(1000.0, Pattern::kWhole), "1000");
    EXPECT_EQ(Format(10.0, Pattern::kWhole), "10");
}

TEST(Format, RoundsTheFifteenDigitDecimal) {
    EXPECT_EQ(Format(18837.0 / 32760.0 * 100.0, Pattern::kWhole), "58");
    EXPECT_EQ(Format(1.005, Pattern::kTwoDecimals), "1.01");
    EXPECT_EQ(Format(0.285, Pattern::kTwoDecimals), "0.29");
    EXPECT_EQ(Format(57.499999999999993, Pattern::kWhole), "58");
    EXPECT_EQ(Format(57.49999999999, Pattern::kWhole), "57");
}

TEST(Format, FourDecimals) {
    EXPECT_EQ(Format(0.0, Pattern::kPercent), "0.0000");
    EXPECT_EQ(Format(0.00005, Pattern::kPercent), "0.0001");
    EXPECT_EQ(Format(0.00004999, Pattern::kPercent), "0.0000");
    EXPECT_EQ(Format(9.99995, Pattern::kPercent), "10.0000");
    EXPECT_EQ(Format(-9.99995, Pattern::kPercent), "-10.0000");
    EXPECT_EQ(Format(100.0, Pattern::kPercent), "100.0000");
    EXPECT_EQ(Format(1e-300, Pattern::kPercent), "0.0000");
}

TEST(Format, AtLeastTwoDigitsBeforeThePoint) {
    EXPECT_EQ(Format(0.0, Pattern::kTwoByTwo), "00.00");
    EXPECT_EQ(Format(-0.0, Pattern::kTwoByTwo), "00.00");
    EXPECT_EQ(Format(-0.001, Pattern::kTwoByTwo), "-00.00");
    EXPECT_EQ(Format(7.125, Pattern::kTwoByTwo), "07.13");
    EXPECT_EQ(Format(9.995, Pattern::kTwoByTwo), "10.00");
    EXPECT_EQ(Format(99.995, Pattern::kTwoByTwo), "100.00");
    EXPECT_EQ(Format(-80.5, Pattern::kTwoByTwo), "-80.50");
}

TEST(Format, TwoDecimals) {
    EXPECT_EQ(Format(0.0, Pattern::kTwoDecimals), "0.00");
    EXPECT_EQ(Format(0.005, Pattern::kTwoDecimals), "0.01");
    EXPECT_EQ(Format(-0.005, Pattern::kTwoDecimals), "-0.01");
    EXPECT_EQ(Format(-0.001, Pattern::kTwoDecimals), "-0.00");
    EXPECT_EQ(Format(99.995, Pattern::kTwoDecimals), "100.00");
    EXPECT_EQ(Format(12345.678, Pattern::kTwoDecimals), "12345.68");
}

TEST(Format, WritesLargeValuesOut) {
    const std::string digits = "1" + std::string(20, '0');
    EXPECT_EQ(Format(1e20, Pattern::kWhole), digits);
    EXPECT_EQ(Format(1e20, Pattern::kPercent), digits + ".0000");
    EXPECT_EQ(Format(1e20, Pattern::kTwoByTwo), digits + ".00");
    EXPECT_EQ(Format(1e20, Pattern::kTwoDecimals), digits + ".00");
    EXPECT_EQ(Format(-1e300, Pattern::kWhole), "-1" + std::string(300, '0'));
    EXPECT_EQ(Format(std::numeric_limits<double>::max(), Pattern::kWhole).size(), 309U);
}

TEST(NumbersToText, RejectWhatIsNotFinite) {
    const double infinity = std::numeric_limits<double>::infinity();
    for (const double value : {infinity, -infinity, std::numeric_limits<double>::quiet_NaN()}) {
        EXPECT_EQ(ErrorOf([&] { return Str(value); }), error_number::kOverflow);
        EXPECT_EQ(ErrorOf([&] { return CStr(value); }), error_number::kOverflow);
        for (const Pattern pattern :
             {Pattern::kWhole, Pattern::kPercent, Pattern::kTwoByTwo, Pattern::kTwoDecimals})
            EXPECT_EQ(ErrorOf([&] { return Format(value, pattern); }), error_number::kOverflow);
    }
}

TEST(Padded, PutsZerosInFront) {
    EXPECT_EQ(Padded(7, 2), "07");
    EXPECT_EQ(Padded(0, 4), "0000");
    EXPECT_EQ(Padded(12, 2), "12");
    EXPECT_EQ(Padded(12345, 4), "12345");
}

}  // namespace
}  // namespace sonavex
