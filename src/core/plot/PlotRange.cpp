#include "core/plot/PlotRange.h"

#include <algorithm>

namespace sonavex {

PlotRange Moved(PlotRange range, double fraction, PlotRange limits) {
    const double step = std::clamp(fraction * range.Span(), limits.low - range.low, limits.high - range.high);
    return {range.low + step, range.high + step};
}

PlotRange Zoomed(PlotRange range, double fraction, double factor, PlotRange limits, double leastSpan) {
    const double span = std::clamp(range.Span() / factor, std::min(leastSpan, limits.Span()), limits.Span());
    const double low = std::clamp(range.At(fraction) - fraction * span, limits.low, limits.high - span);
    return {low, low + span};
}

}  // namespace sonavex
