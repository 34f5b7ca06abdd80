#pragma once

#include <algorithm>
#include <array>
#include <cstdint>
#include <optional>

#include "core/ports/ExtendedRates.h"
#include "core/settings/SharedState.h"

namespace sonavex {

// The seven sampling rates in Hz. The settings store the index.
inline constexpr std::array<std::int32_t, 7> SampleRateTable{48000, 44100, 32000, 22050, 16000, 8000, 4000};

// Index of the sampling rate if none is stored.
constexpr std::int32_t DefaultSampleRateIndex(std::int32_t osMajorVersion) noexcept {
    return IsNewerGeneration(osMajorVersion) ? 2 : 1;
}

// Index of a rate in SampleRateTable; nothing for any other rate.
constexpr std::optional<std::int32_t> SampleRateIndex(std::int32_t rateHz) noexcept {
    const auto* found = std::find(SampleRateTable.begin(), SampleRateTable.end(), rateHz);
    if (found == SampleRateTable.end()) return std::nullopt;
    return static_cast<std::int32_t>(found - SampleRateTable.begin());
}

// Whether the instrument runs at this rate in Hz: one of the seven or of kExtendedRates.
constexpr bool IsSampleRate(std::int32_t rateHz) noexcept {
    return SampleRateIndex(rateHz) ||
           std::find(kExtendedRates.begin(), kExtendedRates.end(), rateHz) != kExtendedRates.end();
}

}  // namespace sonavex
