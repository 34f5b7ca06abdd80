#pragma once

#include <cstdint>

// Numbers to whole numbers. Halves go to the even neighbour.
namespace sonavex {

double RoundHalfEven(double value) noexcept;

// Error 6 when the rounded number does not fit, or is not a number.
std::int32_t CLng(double value);
std::int16_t CInt(double value);

}  // namespace sonavex
