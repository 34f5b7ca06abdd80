#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace sonavex {

// The first `characters` characters of a UTF-8 text, or the whole text if it is shorter. An invalid byte
// counts as one character.
std::string_view Left(std::string_view text, std::size_t characters) noexcept;

// Converts the letters a to z only, whatever the desktop's language.
std::string UpperCase(std::string_view text);

inline bool Contains(std::string_view text, std::string_view part) noexcept {
    return text.find(part) != std::string_view::npos;
}

}  // namespace sonavex
