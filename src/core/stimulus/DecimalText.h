#pragma once

#include <array>
#include <charconv>
#include <string>

namespace sonavex {

// A number in the sentences of a StimulusError: the shortest text that means the same number.
inline std::string DecimalText(double number) {
    std::array<char, 32> text{};
    const auto end = std::to_chars(text.data(), text.data() + text.size(), number).ptr;
    return {text.data(), end};
}

// |number| < 1e9, decimals <= 9.
inline std::string DecimalText(double number, int decimals) {
    std::array<char, 32> text{};
    const auto end =
        std::to_chars(text.data(), text.data() + text.size(), number, std::chars_format::fixed, decimals).ptr;
    return {text.data(), end};
}

}  // namespace sonavex
