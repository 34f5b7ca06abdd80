#pragma once

#include <optional>
#include <span>

namespace sonavex {

// A range of bins in which a tone is searched.
struct BinRange {
    double low = 0;
    double high = 0;
};

// Position in bins of the strongest peak of a power spectrum within the range, interpolated to about 0.01
// bins. Empty if there is no peak in the range; the flank of a stronger line outside it is none.
std::optional<double> StrongestPeak(std::span<const double> power, BinRange range);

}  // namespace sonavex
