#include "core/support/WholeNumbers.h"

#include <cmath>
#include <limits>

#include "core/support/RuntimeError.h"

namespace sonavex {
namespace {

template <class Whole>
Whole ToWhole(double value) {
    const double rounded = RoundHalfEven(value);
    if (!(rounded >= static_cast<double>(std::numeric_limits<Whole>::min()) &&
          rounded <= static_cast<double>(std::numeric_limits<Whole>::max())))
        throw RuntimeError(error_number::kOverflow);
    return static_cast<Whole>(rounded);
}

}  // namespace

double RoundHalfEven(double value) noexcept {
    return std::nearbyint(value);
}

std::int32_t CLng(double value) {
    return ToWhole<std::int32_t>(value);
}

std::int16_t CInt(double value) {
    return ToWhole<std::int16_t>(value);
}

}  // namespace sonavex
