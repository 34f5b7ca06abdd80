#pragma once

#include <cstdint>
#include <string>

namespace sonavex {

// Symbolic name of a sound device's error; "DSERR_UNKNOWN" for any other number. Two of the numbers are
// run-time errors, as which these results arrive.
const char* SoundErrorName(std::int32_t number) noexcept;

// Hexadecimal text in capitals, without leading zeros; a negative number as 32-bit two's complement.
std::string Hex(std::int32_t number);

}  // namespace sonavex
