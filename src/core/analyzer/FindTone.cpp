#include "core/analyzer/FindTone.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace sonavex {
namespace {

// Vertex of the parabola through three logarithms of power. The main lobe is nearly Gaussian, for which this
// is exact.
double PeakOffset(double left, double centre, double right) {
    constexpr double kLeast = 1e-300;
    const double l = std::log(std::max(left, kLeast));
    const double c = std::log(std::max(centre, kLeast));
    const double r = std::log(std::max(right, kLeast));
    const double curvature = l - 2.0 * c + r;
    return curvature < 0.0 ? std::clamp(0.5 * (l - r) / curvature, -0.5, 0.5) : 0.0;
}

}  // namespace

std::optional<double> StrongestPeak(std::span<const double> power, BinRange range) {
    const double last = static_cast<double>(power.size()) - 2.0;
    const auto from = static_cast<std::size_t>(std::clamp(std::floor(range.low), 1.0, last));
    const auto to = static_cast<std::size_t>(std::clamp(std::ceil(range.high), 1.0, last));
    std::optional<std::size_t> best;
    for (std::size_t j = from; j <= to; ++j) {
        const bool peak = power[j] > 0.0 && power[j] >= power[j - 1] && power[j] >= power[j + 1];
        if (peak && (!best || power[j] > power[*best])) best = j;
    }
    if (!best) return std::nullopt;
    return static_cast<double>(*best) + PeakOffset(power[*best - 1], power[*best], power[*best + 1]);
}

}  // namespace sonavex
