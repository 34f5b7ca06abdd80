#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "core/ports/SoundSystem.h"

namespace sonavex {

// Those of kExtendedRates at which both devices run without resampling. A device that cannot be asked has
// none. Empty identifiers select the primary devices.
RateList CommonExtendedRates(SoundSystem& sound, const std::string& input, const std::string& output);

// The rate of kExtendedRates with this decimal text; nothing for any other text.
std::optional<std::int32_t> ExtendedRateOf(std::string_view text);

}  // namespace sonavex
