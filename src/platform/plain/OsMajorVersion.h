#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace sonavex {

// The operating system's generation on this platform.
inline constexpr std::int32_t kOsMajorVersion = 10;

// What SONAVEX_OS_MAJOR holds; empty when it is not set.
std::string_view OsMajorVersionText();

// The generation that the text asks for: kOsMajorVersion for an empty text, a whole number of 1 to 1000
// in plain digits, nothing for any other text.
std::optional<std::int32_t> ParseOsMajorVersion(std::string_view text);

}  // namespace sonavex
