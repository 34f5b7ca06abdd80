#pragma once

#include <string>

namespace sonavex {

// A finite number with this many decimals, 0 to 9, in the "C" locale: "-140.6". A negative number that rounds
// to zero has no sign: "0.0".
std::string WithDecimals(double value, int decimals);

// The same, rounded away from minus infinity: an upper limit must not become lower. A value that has at most
// these decimals but for the error of its computation stays as it is.
std::string RoundedUp(double value, int decimals);

// With at most this many decimals: "1", "1.05".
std::string WithoutTrailingZeros(double value, int mostDecimals);

// A finite number with at most this many significant digits, 1 to 17, in the "C" locale, without trailing
// zeros: "999.756", "1e-05".
std::string WithDigits(double value, int digits);

}  // namespace sonavex
