#pragma once

#include <cstdint>

namespace sonavex {

// Symbolic name of a sound device error; "DSERR_UNKNOWN" for any other number. 7 and 430 are in the table
// because out-of-memory and no-interface arrive under those run-time error numbers.
const char* SoundErrorName(std::int32_t number) noexcept;

}  // namespace sonavex
