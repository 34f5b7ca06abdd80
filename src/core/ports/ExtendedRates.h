#pragma once

#include <array>
#include <cstdint>
#include <vector>

namespace sonavex {

// Sampling rates in Hz that are offered for devices that run at them.
inline constexpr std::array<std::int32_t, 4> kExtendedRates{88200, 96000, 176400, 192000};

using RateList = std::vector<std::int32_t>;

}  // namespace sonavex
