#include "core/mixer/LevelScale.h"

#include <algorithm>
#include <cmath>

#include "core/text/Numbers.h"

namespace sonavex {
namespace {

constexpr std::int32_t kWholeScalePercent = 100;

double Span(const RawRange& range) noexcept {
    return static_cast<double>(range.maximum) - range.minimum;
}

// Position in the range, 0 to 1; 0 when the range is a single value.
double PartOf(std::int32_t raw, const RawRange& range) noexcept {
    if (range.maximum <= range.minimum) return 0.0;
    return (static_cast<double>(std::clamp(raw, range.minimum, range.maximum)) - range.minimum) / Span(range);
}

std::int32_t AtPart(double part, const RawRange& range) noexcept {
    const double raw = range.minimum + std::clamp(part, 0.0, 1.0) * Span(range);
    return static_cast<std::int32_t>(std::lround(raw));
}

}  // namespace

std::int32_t ToScale(std::int32_t raw, const RawRange& range, std::int32_t full) noexcept {
    return static_cast<std::int32_t>(std::lround(PartOf(raw, range) * full));
}

std::int32_t FromScale(std::int32_t value, const RawRange& range, std::int32_t full) noexcept {
    return AtPart(static_cast<double>(value) / full, range);
}

std::int32_t PercentOf(const std::vector<std::int32_t>& values, const RawRange& range) noexcept {
    return ToScale(*std::max_element(values.begin(), values.end()), range, kWholeScalePercent);
}

std::vector<std::int32_t> AtPercent(const std::vector<std::int32_t>& values, const RawRange& range,
                                    std::int32_t percent) {
    const std::int32_t target = FromScale(percent, range, kWholeScalePercent);
    const double loudest =
        static_cast<double>(*std::max_element(values.begin(), values.end())) - range.minimum;
    if (loudest <= 0.0) return std::vector<std::int32_t>(values.size(), target);
    const double ratio = (static_cast<double>(target) - range.minimum) / loudest;
    std::vector<std::int32_t> scaled;
    for (const std::int32_t value : values) {
        const double above = std::max(0.0, static_cast<double>(value) - range.minimum);
        scaled.push_back(range.minimum + static_cast<std::int32_t>(std::lround(above * ratio)));
    }
    return scaled;
}

std::int32_t StepPercent(const RawRange& range) noexcept {
    if (range.maximum <= range.minimum) return 1;
    return static_cast<std::int32_t>(std::ceil(kWholeScalePercent / Span(range)));
}

double ToGain(std::int32_t raw, const RawRange& range, const GainRange& gains) noexcept {
    return gains.minimumDb + PartOf(raw, range) * (gains.maximumDb - gains.minimumDb);
}

std::int32_t FromGain(double gainDb, const RawRange& range, const GainRange& gains) noexcept {
    const double span = gains.maximumDb - gains.minimumDb;
    return span > 0.0 ? AtPart((gainDb - gains.minimumDb) / span, range) : range.minimum;
}

std::string PercentCaption(std::int32_t percent, bool available) {
    return available ? CStr(percent) + " %" : "—";
}

}  // namespace sonavex
