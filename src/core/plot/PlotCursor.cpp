#include "core/plot/PlotCursor.h"

#include <algorithm>

namespace sonavex {

std::size_t PeakBin(const SpectrumTrace& trace, double lowHz, double highHz) {
    const auto& power = trace.power;
    const auto first = power.begin() + static_cast<std::ptrdiff_t>(NearestBin(trace, lowHz));
    const auto last = power.begin() + static_cast<std::ptrdiff_t>(NearestBin(trace, highHz));
    auto peak = std::max_element(first, last + 1);
    while (peak + 1 != power.end() && *(peak + 1) > *peak) ++peak;
    while (peak != power.begin() && *(peak - 1) > *peak) --peak;
    return static_cast<std::size_t>(peak - power.begin());
}

}  // namespace sonavex
