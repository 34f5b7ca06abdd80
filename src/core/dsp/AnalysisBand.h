#pragma once

#include <cstdint>

namespace sonavex {

// Pass band of the analysis in Hz.
struct BandEdges {
    std::int32_t lowHz = 0;
    std::int32_t highHz = 0;
};

// The band at a sampling rate in Hz. The upper edge stays 100 Hz below half the rate.
constexpr BandEdges AnalysisBand(std::int32_t rateHz, std::int32_t lowHz = 25) noexcept {
    return {lowHz, rateHz / 2 - 100};
}

}  // namespace sonavex
