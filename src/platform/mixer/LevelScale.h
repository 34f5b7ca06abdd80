#pragma once

#include <cstdint>
#include <vector>

#include "platform/mixer/MixerHardware.h"

// Raw values and the scales in which the instrument shows them.
namespace sonavex {

// Place of a raw value in its range, 0 to full, rounded; a raw value outside counts as the nearest
// limit.
std::int32_t ToScale(std::int32_t raw, const RawRange& range, std::int32_t full) noexcept;
// The raw value nearest to that place; clamped.
std::int32_t FromScale(std::int32_t value, const RawRange& range, std::int32_t full) noexcept;

// Level of a control of several channels in whole percent: the loudest channel's.
std::int32_t PercentOf(const std::vector<std::int32_t>& values, const RawRange& range) noexcept;
// The values with the loudest channel at this level and the balance as it was. From silence all
// channels come alike.
std::vector<std::int32_t> AtPercent(const std::vector<std::int32_t>& values, const RawRange& range,
                                    std::int32_t percent);

// Gain of a raw value in decibels, and the raw value nearest to a gain.
double ToGain(std::int32_t raw, const RawRange& range, const GainRange& gains) noexcept;
std::int32_t FromGain(double gainDb, const RawRange& range, const GainRange& gains) noexcept;

}  // namespace sonavex
