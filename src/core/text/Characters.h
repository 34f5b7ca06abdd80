#pragma once

#include <cstddef>
#include <string_view>

namespace sonavex {

// The first `characters` characters of a UTF-8 text, or the whole text if it is shorter. An invalid byte
// counts as one character.
std::string_view Left(std::string_view text, std::size_t characters) noexcept;

}  // namespace sonavex
