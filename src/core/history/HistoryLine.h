#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace sonavex {

// A line of the history is one JSON object whose last member "sum" is a checksum of everything before it, so
// that a damaged line never yields a reading. The checksum is 64-bit FNV-1a, in 16 hexadecimal digits.
std::uint64_t Fnv1a(std::string_view bytes) noexcept;

// In 16 lowercase hexadecimal digits.
std::string SixteenDigits(std::uint64_t number);

// object: the text of a JSON object with at least one member. The line has no line end.
std::string SealedLine(std::string_view object);

// The object without its checksum and without its closing brace: "{"id":"...". Empty for a damaged line.
std::optional<std::string_view> UnsealedLine(std::string_view line);

}  // namespace sonavex
