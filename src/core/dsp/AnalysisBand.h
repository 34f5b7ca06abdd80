#pragma once

#include <cstdint>

namespace sonavex {

// The frequencies that the analysis passes, Hz.
struct Band {
    std::int32_t lowHz = 0;
    std::int32_t highHz = 0;
};

// At this sampling rate in Hz. The upper edge keeps 100 Hz below half the rate.
constexpr Band AnalysisBand(std::int32_t rateHz, std::int32_t lowHz = 25) noexcept {
    return {lowHz, rateHz / 2 - 100};
}

}  // namespace sonavex
