#include "core/text/Decimals.h"

#include <array>
#include <charconv>
#include <cmath>

namespace sonavex {

std::string WithDecimals(double value, int decimals) {
    std::array<char, 330> text;
    const auto end =
        std::to_chars(text.data(), text.data() + text.size(), value, std::chars_format::fixed, decimals).ptr;
    const std::string number(text.data(), end);
    const bool zero = number.find_first_not_of("-0.") == std::string::npos;
    return zero && number.front() == '-' ? number.substr(1) : number;
}

std::string RoundedUp(double value, int decimals) {
    constexpr double kMargin = 1e-9;  // of the error of a computation, as a part of the value
    const double steps = std::pow(10.0, decimals);
    return WithDecimals(std::ceil(value * steps * (1.0 - std::copysign(kMargin, value))) / steps, decimals);
}

std::string WithoutTrailingZeros(double value, int mostDecimals) {
    std::string text = WithDecimals(value, mostDecimals);
    if (mostDecimals == 0) return text;
    text.erase(text.find_last_not_of('0') + 1);
    if (text.back() == '.') text.pop_back();
    return text;
}

std::string WithDigits(double value, int digits) {
    std::array<char, 40> text{};
    const auto end =
        std::to_chars(text.data(), text.data() + text.size(), value, std::chars_format::general, digits).ptr;
    return {text.data(), end};
}

}  // namespace sonavex
