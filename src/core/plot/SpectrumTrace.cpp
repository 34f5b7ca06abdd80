#include "core/plot/SpectrumTrace.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace sonavex {

// The natural logarithm of the C library is several times as fast as the decadic one.
double PowerDecibels(double power) {
    return power > 1e-40 ? 10.0 / std::numbers::ln10 * std::log(power) : -400.0;
}

std::size_t NearestBin(const SpectrumTrace& trace, double hertz) {
    if (trace.power.empty()) return 0;
    const double bin = std::round(hertz / trace.binHz);
    return static_cast<std::size_t>(std::clamp(bin, 0.0, static_cast<double>(trace.power.size() - 1)));
}

double LevelAt(const SpectrumTrace& trace, double hertz) {
    if (trace.power.empty() || hertz > trace.LastHz() + 0.5 * trace.binHz) return -400.0;
    return PowerDecibels(trace.power[NearestBin(trace, hertz)]);
}

}  // namespace sonavex
