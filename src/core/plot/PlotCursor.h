#pragma once

#include <cstddef>

#include "core/plot/SpectrumTrace.h"

namespace sonavex {

// The bin of the peak nearest to a range of frequencies: the strongest bin in it, or the top of the slope on
// which this bin lies. The trace must have bins.
std::size_t PeakBin(const SpectrumTrace& trace, double lowHz, double highHz);

}  // namespace sonavex
