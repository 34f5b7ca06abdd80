#pragma once

#include <cstdint>

// Conversions of numbers to whole numbers. Halves round to even.
namespace sonavex {

double RoundHalfEven(double value) noexcept;

// Error 6 if the rounded number does not fit, or if the value is not a number.
std::int32_t CLng(double value);
std::int16_t CInt(double value);

}  // namespace sonavex
