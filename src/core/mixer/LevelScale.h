#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "core/ports/MixerHardware.h"

// Conversions between the hardware's steps and the scales of the instrument.
namespace sonavex {

// Position of a raw value in its range, 0 to full, rounded. A value outside the range counts as the
// nearest limit.
std::int32_t ToScale(std::int32_t raw, const RawRange& range, std::int32_t full) noexcept;
// The raw value nearest to a position; clamped to the range.
std::int32_t FromScale(std::int32_t value, const RawRange& range, std::int32_t full) noexcept;

// Level of a control in whole percent: that of its loudest channel.
std::int32_t PercentOf(const std::vector<std::int32_t>& values, const RawRange& range) noexcept;
// Scales the channels so that the loudest has this level and the balance is kept. When all channels are
// silent they get the same value.
std::vector<std::int32_t> AtPercent(const std::vector<std::int32_t>& values, const RawRange& range,
                                    std::int32_t percent);

// The smallest whole percentage that always reaches another raw value: ceil(100 / steps of the range).
std::int32_t StepPercent(const RawRange& range) noexcept;

// A level as the mixer dialogs show it: "58 %", or a dash if the device lacks it.
std::string PercentCaption(std::int32_t percent, bool available);

// Gain of a raw value in decibels.
double ToGain(std::int32_t raw, const RawRange& range, const GainRange& gains) noexcept;
// The raw value nearest to a gain; clamped to the range.
std::int32_t FromGain(double gainDb, const RawRange& range, const GainRange& gains) noexcept;

}  // namespace sonavex
