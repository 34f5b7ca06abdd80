#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "core/support/WholeNumbers.h"

// Conversions between numbers and text. They use the "C" locale (decimal point), independent of the
// desktop's language. Texts of up to 15 characters are made without allocation.
namespace sonavex {

// Leading number of a text: optional blanks, sign, digits with an optional point, optional exponent. 0 if the
// text does not begin with a number. Error 6 if the number exceeds a double.
double Val(std::string_view text);

// Number to text, with a leading blank in place of a plus sign: " 1000", "-.49", " .8399", " 1E-05". At most
// 15 significant digits, no zero before the decimal point. Error 6 for a value that is not finite.
std::string Str(double value);

// Number to plain text: like Str, but without the leading blank and with a zero before the point: "1000",
// "-0.49".
std::string CStr(double value);
std::string CStr(std::int32_t value);
// "True" or "False".
std::string CStr(bool value);

// Whole-text conversions. Blanks around the number are ignored. Error 13 if anything else remains, error 6 if
// the value does not fit. Fractions are rounded, halves to even.
double CDbl(std::string_view text);
std::int32_t CLng(std::string_view text);
std::int16_t CInt(std::string_view text);
// "True" and "False" in any letter case, or a number (0 is false). Error 13 otherwise.
bool CBool(std::string_view text);
// Whether CDbl would convert the text.
bool IsNumeric(std::string_view text) noexcept;

// The display patterns. The value's 15-digit decimal is rounded, halves away from zero.
enum class Pattern {
    kWhole,       // "##"      whole number, empty for 0
    kPercent,     // "#0.0000" four decimals
    kTwoByTwo,    // "00.00"   at least two digits before the point, two decimals
    kTwoDecimals  // "#0.00"   two decimals
};
// A negative value keeps its sign even if all shown digits are 0 ("-00.00"); kWhole returns an empty text in
// this case. Error 6 for a value that is not finite.
std::string Format(double value, Pattern pattern);

// A number >= 0 with leading zeros up to `digits` digits. A longer number is not shortened.
std::string Padded(std::int32_t value, std::size_t digits);

// Uppercase hexadecimal without leading zeros; a negative number as 32-bit two's complement.
std::string Hex(std::int32_t number);

// Text without leading and trailing blanks.
std::string_view Trim(std::string_view text) noexcept;

}  // namespace sonavex
