#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <random>
#include <string>

#include "core/text/Numbers.h"

namespace sonavex {
namespace {

constexpr int kRounds = 50000;

std::string Printed(const char* format, double value) {
    char text[400];
    std::snprintf(text, sizeof text, format, value);
    return text;
}

// Any finite double: random bits, so that all magnitudes are equally likely.
double AnyDouble(std::mt19937_64& random) {
    for (;;) {
        const double value = std::bit_cast<double>(random());
        if (std::isfinite(value)) return value;
    }
}

// A typical value of the meter, often with few decimals so that halves occur.
double MeterValue(std::mt19937_64& random) {
    const auto whole = static_cast<double>(static_cast<std::int64_t>(random() % 2000001) - 1000000);
    constexpr double kDivisors[] = {1.0, 8.0, 1000.0, 200000.0, 3276.7, 1e9};
    return whole / kDivisors[random() % 6];
}

// The 15-digit decimal of the value as a whole number times 10^exponent.
struct Scaled {
    std::int64_t digits;
    int exponent;
};
Scaled FifteenDigits(double value) {
    std::string text = Printed("%.14e", std::fabs(value));
    const std::size_t exponentAt = text.find('e');
    const int exponent = std::atoi(text.c_str() + exponentAt + 1);
    text.erase(exponentAt);
    text.erase(1, 1);
    return {std::atoll(text.c_str()), exponent - 14};
}

// |value| x 10^decimals to the nearest whole number, halves up, as digits. For |value| below 1e15.
std::string RoundedDigits(double value, int decimals) {
    const Scaled scaled = FifteenDigits(value);
    int power = scaled.exponent + decimals;
    if (power < -17) return "0";
    __extension__ unsigned __int128 number = static_cast<std::uint64_t>(scaled.digits);
    __extension__ unsigned __int128 divisor = 1;
    for (; power > 0; --power) number *= 10;
    for (; power < 0; ++power) divisor *= 10;
    number = (2 * number + divisor) / (2 * divisor);
    std::string text;
    for (; number > 0; number /= 10)
        text.insert(text.begin(), static_cast<char>('0' + static_cast<int>(number % 10)));
    return text.empty() ? "0" : text;
}

std::string Reference(double value, int wholeDigits, int decimals) {
    std::string text = RoundedDigits(value, decimals);
    if (wholeDigits == 0 && text == "0") return "";
    const auto width = static_cast<std::size_t>(wholeDigits + decimals);
    if (text.size() < width) text.insert(0, width - text.size(), '0');
    if (decimals > 0) text.insert(text.size() - static_cast<std::size_t>(decimals), ".");
    return value < 0.0 ? "-" + text : text;
}

TEST(NumbersProperty, PlainTextReadsBackAsTheValueRoundedToFifteenDigits) {
    std::mt19937_64 random(20240501);
    for (int i = 0; i < kRounds; ++i) {
        const double value = i % 2 == 0 ? AnyDouble(random) : MeterValue(random);
        const double rounded = std::strtod(Printed("%.15g", value).c_str(), nullptr);
        if (!std::isfinite(rounded)) continue;
        ASSERT_EQ(CDbl(CStr(value)), rounded) << Printed("%.17g", value);
        ASSERT_EQ(Val(Str(value)), rounded) << Printed("%.17g", value);
    }
}

TEST(NumbersProperty, FormatAgreesWithWholeNumberArithmetic) {
    std::mt19937_64 random(7);
    for (int i = 0; i < kRounds; ++i) {
        const double value = MeterValue(random);
        ASSERT_EQ(Format(value, Pattern::kWhole), Reference(value, 0, 0)) << Printed("%.17g", value);
        ASSERT_EQ(Format(value, Pattern::kPercent), Reference(value, 1, 4)) << Printed("%.17g", value);
        ASSERT_EQ(Format(value, Pattern::kTwoByTwo), Reference(value, 2, 2)) << Printed("%.17g", value);
        ASSERT_EQ(Format(value, Pattern::kTwoDecimals), Reference(value, 1, 2)) << Printed("%.17g", value);
    }
}

TEST(NumbersProperty, FormatOfAnyDoubleReadsBackWithinHalfAStep) {
    std::mt19937_64 random(99);
    for (int i = 0; i < kRounds; ++i) {
        const double value = AnyDouble(random);
        const double shown = Val(Format(value, Pattern::kPercent));
        ASSERT_NEAR(shown, value, 0.00005000001 + std::fabs(value) * 1e-14) << Printed("%.17g", value);
    }
}

// Rounded to fifteen digits, the largest double would overflow.
TEST(NumbersProperty, TheLargestNumbersReadBack) {
    for (double value = std::numeric_limits<double>::max(); value > 1.7976931348623e308;
         value = std::nextafter(value, 0.0) - 1e294) {
        for (const double number : {value, -value}) {
            EXPECT_NEAR(CDbl(CStr(number)) / number, 1.0, 1e-14);
            EXPECT_NEAR(Val(Str(number)) / number, 1.0, 1e-14);
            EXPECT_NEAR(Val(Format(number, Pattern::kPercent)) / number, 1.0, 1e-14);
        }
    }
    EXPECT_EQ(CStr(std::numeric_limits<double>::max()), "1.79769313486231E+308");
}

TEST(NumbersProperty, WholeNumbersSurviveTextAndBack) {
    std::mt19937_64 random(3);
    for (int i = 0; i < kRounds; ++i) {
        const auto value = static_cast<std::int32_t>(random());
        ASSERT_EQ(CLng(CStr(value)), value);
        ASSERT_EQ(CLng(Str(value)), value);
    }
}

}  // namespace
}  // namespace sonavex
