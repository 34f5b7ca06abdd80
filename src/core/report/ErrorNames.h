#pragma once

#include <cstdint>
#include <string>

namespace sonavex {

// Symbolic name of a sound device error; "DSERR_UNKNOWN" for any other number. 7 and 430 are in the table
// because out-of-memory and no-interface arrive under those run-time error numbers.
const char* SoundErrorName(std::int32_t number) noexcept;

// Uppercase hexadecimal without leading zeros; a negative number as 32-bit two's complement.
std::string Hex(std::int32_t number);

}  // namespace sonavex
