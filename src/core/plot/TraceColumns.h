#pragma once

#include <cstddef>
#include <vector>

#include "core/plot/PlotRange.h"
#include "core/plot/SpectrumTrace.h"

namespace sonavex {

// The part of a trace in one column of pixels, in dB. NaN where the trace has no bins.
struct TraceColumn {
    double mean = 0;  // mean power of the bins in the column; interpolated where a column has none
    double low = 0;   // lowest and highest bin
    double high = 0;
    bool outstanding = false;  // noise alone reaches `high` less than once in a million bins

    // Where the line is drawn.
    double Line() const noexcept { return outstanding ? high : mean; }
};

// The columns of a trace, from the lowest visible frequency to the highest.
std::vector<TraceColumn> TraceColumns(const SpectrumTrace& trace, PlotRange decades, std::size_t columns);

// Height above the mean power, in dB, that a bin of Gaussian noise exceeds once in a million, for the mean of
// this many independent spectra (at least 1): the upper quantile of a gamma distribution. 11.4 dB for one.
double OnceInAMillionDb(double records);

}  // namespace sonavex
