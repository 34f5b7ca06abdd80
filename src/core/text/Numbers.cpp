#include "core/text/Numbers.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <optional>

#include "core/support/RuntimeError.h"
#include "core/text/Characters.h"

namespace sonavex {
namespace {

constexpr int kSignificantDigits = 15;
// The largest number that can be written: one above it would round to a text that overflows when it is read
// back.
constexpr double kLargestWritten = 1.79769313486231e308;

bool IsBlank(char c) {
    return c == ' ' || c == '\t' || c == '\r' || c == '\n';
}
bool IsDigit(char c) {
    return c >= '0' && c <= '9';
}

std::size_t CountDigits(std::string_view text, std::size_t from) {
    std::size_t end = from;
    while (end < text.size() && IsDigit(text[end])) ++end;
    return end - from;
}

// Length of the exponent ("e5", "E-05") that starts at `from`; 0 if there is none.
std::size_t ExponentLength(std::string_view text, std::size_t from) {
    if (from >= text.size() || (text[from] != 'e' && text[from] != 'E')) return 0;
    std::size_t digitsAt = from + 1;
    if (digitsAt < text.size() && (text[digitsAt] == '+' || text[digitsAt] == '-')) ++digitsAt;
    const std::size_t digits = CountDigits(text, digitsAt);
    return digits == 0 ? 0 : digitsAt + digits - from;
}

// Length of the unsigned number at the start of the text; 0 if there is none.
std::size_t UnsignedNumberLength(std::string_view text) {
    const std::size_t whole = CountDigits(text, 0);
    std::size_t end = whole;
    std::size_t fraction = 0;
    if (end < text.size() && text[end] == '.') {
        fraction = CountDigits(text, end + 1);
        if (whole + fraction > 0) end += 1 + fraction;
    }
    if (whole + fraction == 0) return 0;
    return end + ExponentLength(text, end);
}

// A number at the start of a text, and its length in characters.
struct LeadingNumber {
    double value = 0.0;
    std::size_t length = 0;
    bool overflow = false;
};

// The exponent of a decimal text ("e-05" is -5), 0 without one. Clamped to kBeyondAnyText, so that the
// position of a digit can be added without overflow.
std::int64_t GivenExponent(std::string_view digits) {
    constexpr std::int64_t kBeyondAnyText = std::int64_t{1} << 60;
    std::size_t at = digits.find_first_of("eE");
    if (at == std::string_view::npos) return 0;
    at += digits[at + 1] == '+' ? 2 : 1;
    std::int64_t exponent = 0;
    const auto status = std::from_chars(digits.data() + at, digits.data() + digits.size(), exponent).ec;
    if (status == std::errc::result_out_of_range) return digits[at] == '-' ? -kBeyondAnyText : kBeyondAnyText;
    return std::clamp(exponent, -kBeyondAnyText, kBeyondAnyText);
}

// Whether a number outside the range of a double is too small rather than too large. The number must not be
// 0.
bool IsBelowOne(std::string_view digits) {
    const std::size_t mantissaEnd = std::min(digits.find_first_of("eE"), digits.size());
    const std::size_t pointAt = std::min(digits.find('.'), mantissaEnd);
    const std::size_t leadingAt = digits.find_first_not_of("0.");
    // Position of the leading digit: 0 for tenths, 1 for units.
    const auto place = static_cast<std::int64_t>(pointAt) - static_cast<std::int64_t>(leadingAt) +
                       (leadingAt > pointAt ? 1 : 0);
    return place + GivenExponent(digits) <= 0;
}

// A number below the range of a double reads as 0; one above it sets `overflow`.
LeadingNumber Convert(std::string_view digits, bool negative) {
    LeadingNumber number;
    const auto status = std::from_chars(digits.data(), digits.data() + digits.size(), number.value).ec;
    if (status == std::errc::result_out_of_range) {
        number.value = 0.0;
        number.overflow = !IsBelowOne(digits);
    }
    if (negative) number.value = -number.value;
    return number;
}

LeadingNumber ReadLeadingNumber(std::string_view text) {
    std::size_t start = 0;
    while (start < text.size() && IsBlank(text[start])) ++start;
    const bool negative = start < text.size() && text[start] == '-';
    if (start < text.size() && (text[start] == '-' || text[start] == '+')) ++start;
    const std::size_t length = UnsignedNumberLength(text.substr(start));
    if (length == 0) return {};
    LeadingNumber number = Convert(text.substr(start, length), negative);
    number.length = start + length;
    return number;
}

// The number that makes up the whole text; nothing if the text is not a number.
std::optional<LeadingNumber> ReadWholeText(std::string_view text) {
    const LeadingNumber number = ReadLeadingNumber(text);
    if (number.length == 0) return std::nullopt;
    const std::string_view rest = text.substr(number.length);
    if (!std::all_of(rest.begin(), rest.end(), IsBlank)) return std::nullopt;
    return number;
}

// Limits a finite number to what can be read back from its text. Error 6 if the number is not finite.
double Writable(double value) {
    if (!std::isfinite(value)) throw RuntimeError(error_number::kOverflow);
    return std::clamp(value, -kLargestWritten, kLargestWritten);
}

// Decimal digits of |value|, rounded to 15 significant ones: 0.digits x 10^exponent.
struct Decimal {
    std::array<char, kSignificantDigits> digits;
    int exponent;
};

Decimal ToDecimal(double value) {
    std::array<char, 40> text{};
    const auto result = std::to_chars(text.data(), text.data() + text.size(), std::fabs(value),
                                      std::chars_format::scientific, kSignificantDigits - 1);
    Decimal decimal{};
    decimal.digits[0] = text[0];
    std::copy_n(text.data() + 2, kSignificantDigits - 1, decimal.digits.data() + 1);
    const char* exponentAt = text.data() + 2 + kSignificantDigits - 1 + 1;
    if (*exponentAt == '+') ++exponentAt;
    std::from_chars(exponentAt, result.ptr, decimal.exponent);
    decimal.exponent += 1;
    if (value == 0.0) decimal.exponent = 1;
    return decimal;
}

// The decimal's digit at a position; position 0 is the last one before the point.
int DigitAt(const Decimal& decimal, int position) {
    const int index = decimal.exponent - 1 - position;
    return index < 0 || index >= kSignificantDigits ? 0
                                                    : decimal.digits[static_cast<std::size_t>(index)] - '0';
}

// The digits from position `highest` (units = 0) to -decimals, rounded half up, without a point.
std::string RoundedDigits(const Decimal& decimal, int highest, int decimals) {
    std::string digits;
    for (int position = highest; position >= -decimals; --position)
        digits.push_back(static_cast<char>('0' + DigitAt(decimal, position)));
    bool carry = DigitAt(decimal, -decimals - 1) >= 5;
    for (std::size_t i = digits.size(); carry && i-- > 0;) {
        carry = digits[i] == '9';
        digits[i] = carry ? '0' : static_cast<char>(digits[i] + 1);
    }
    return digits;
}

struct PatternShape {
    int wholeDigits;
    int decimals;
};

PatternShape ShapeOf(Pattern pattern) {
    switch (pattern) {
        case Pattern::kWhole:
            return {0, 0};
        case Pattern::kPercent:
            return {1, 4};
        case Pattern::kTwoByTwo:
            return {2, 2};
        case Pattern::kTwoDecimals:
            break;
    }
    return {1, 2};
}

}  // namespace

double Val(std::string_view text) {
    const LeadingNumber number = ReadLeadingNumber(text);
    if (number.overflow) throw RuntimeError(error_number::kOverflow);
    return number.value;
}

std::string CStr(double value) {
    if (value == 0.0) return "0";
    std::array<char, 40> text{};
    const auto result = std::to_chars(text.data(), text.data() + text.size(), Writable(value),
                                      std::chars_format::general, kSignificantDigits);
    std::replace(text.data(), result.ptr, 'e', 'E');
    return std::string(text.data(), result.ptr);
}

std::string CStr(std::int32_t value) {
    std::array<char, 12> text{};
    const auto result = std::to_chars(text.data(), text.data() + text.size(), value);
    return std::string(text.data(), result.ptr);
}

std::string CStr(bool value) {
    return value ? "True" : "False";
}

std::string Str(double value) {
    std::string text = CStr(value);
    const std::size_t digitsAt = text.front() == '-' ? 1 : 0;
    if (text.size() > digitsAt + 1 && text[digitsAt] == '0' && text[digitsAt + 1] == '.')
        text.erase(digitsAt, 1);
    if (text.front() != '-') text.insert(text.begin(), ' ');
    return text;
}

double CDbl(std::string_view text) {
    const auto number = ReadWholeText(text);
    if (!number) throw RuntimeError(error_number::kTypeMismatch);
    if (number->overflow) throw RuntimeError(error_number::kOverflow);
    return number->value;
}

std::int32_t CLng(std::string_view text) {
    return CLng(CDbl(text));
}

std::int16_t CInt(std::string_view text) {
    return CInt(CDbl(text));
}

bool CBool(std::string_view text) {
    const auto equalsWord = [trimmed = Trim(text)](std::string_view word) {
        return std::equal(trimmed.begin(), trimmed.end(), word.begin(), word.end(), [](char a, char b) {
            return (a >= 'A' && a <= 'Z' ? static_cast<char>(a - 'A' + 'a') : a) == b;
        });
    };
    if (equalsWord("true")) return true;
    if (equalsWord("false")) return false;
    return CDbl(text) != 0.0;
}

bool IsNumeric(std::string_view text) noexcept {
    const auto number = ReadWholeText(text);
    return number && !number->overflow;
}

std::string Format(double value, Pattern pattern) {
    const PatternShape shape = ShapeOf(pattern);
    const Decimal decimal = ToDecimal(Writable(value));
    // One extra position for the carry of 9.99...
    const int highest = std::max(decimal.exponent, shape.wholeDigits);
    std::string text = RoundedDigits(decimal, highest, shape.decimals);
    const auto decimals = static_cast<std::size_t>(shape.decimals);
    const std::size_t removable = text.size() - decimals - static_cast<std::size_t>(shape.wholeDigits);
    text.erase(0, std::min(text.find_first_not_of('0'), removable));
    if (decimals > 0) text.insert(text.size() - decimals, 1, '.');
    if (value < 0.0 && !text.empty()) text.insert(text.begin(), '-');
    return text;
}

std::string Padded(std::int32_t value, std::size_t digits) {
    std::string text = CStr(value);
    if (text.size() < digits) text.insert(std::size_t{0}, digits - text.size(), '0');
    return text;
}

std::string Hex(std::int32_t number) {
    std::array<char, 8> digits{};
    char* const end =
        std::to_chars(digits.data(), digits.data() + digits.size(), static_cast<std::uint32_t>(number), 16)
            .ptr;
    return UpperCase({digits.data(), end});
}

std::string_view Trim(std::string_view text) noexcept {
    const std::size_t first = text.find_first_not_of(' ');
    if (first == std::string_view::npos) return {};
    return text.substr(first, text.find_last_not_of(' ') - first + 1);
}

}  // namespace sonavex
