#pragma once

#include <cstddef>
#include <string_view>

namespace sonavex {

// The first characters of a UTF-8 text; all of a shorter one. A byte that begins no character counts as
// one.
std::string_view Left(std::string_view text, std::size_t characters) noexcept;

}  // namespace sonavex
