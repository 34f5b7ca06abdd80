#include "core/audio/ExtendedRates.h"

#include <algorithm>

#include "core/text/Numbers.h"

namespace sonavex {

RateList CommonExtendedRates(SoundSystem& sound, const std::string& input, const std::string& output) {
    try {
        RateList rates = sound.ExtendedPlaybackRates(output);
        if (rates.empty()) return rates;
        const RateList inputRates = sound.ExtendedCaptureRates(input);
        std::erase_if(rates, [&](std::int32_t rateHz) {
            return std::find(inputRates.begin(), inputRates.end(), rateHz) == inputRates.end();
        });
        return rates;
    } catch (const RuntimeError&) {
        return {};
    }
}

std::optional<std::int32_t> ExtendedRateOf(std::string_view text) {
    for (const std::int32_t rateHz : kExtendedRates)
        if (CStr(rateHz) == text) return rateHz;
    return std::nullopt;
}

}  // namespace sonavex
