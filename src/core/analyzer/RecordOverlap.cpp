#include "core/analyzer/RecordOverlap.h"

#include <algorithm>

#include "core/analyzer/Square.h"

namespace sonavex {

RecordOverlap::RecordOverlap(const AnalysisWindow& window)
    : window_(window), quarter_(At(window.Length() / 4)), half_(At(window.Length() / 2)) {}

RecordOverlap::Correlations RecordOverlap::At(std::size_t shift) const {
    const double amplitude = window_.AmplitudeCorrelation(shift);
    return {amplitude, window_.FrequencyCorrelation(shift), Square(amplitude)};
}

// The variance of a mean contains each pair of overlapping records twice. Records that start three quarters
// of a record apart are not correlated.
IndependentRecords RecordOverlap::Of(std::size_t records, std::size_t lastShift) const {
    if (records < 2) return {};
    const bool ordinary = lastShift == 0 || lastShift == window_.Length() / 4;
    const Correlations last = ordinary ? quarter_ : At(lastShift);
    const Correlations lastButOne = ordinary ? half_ : At(lastShift + window_.Length() / 4);
    const auto n = static_cast<double>(records);
    const auto count = [&](double Correlations::*of) {
        const double pairs = (n - 2.0) * quarter_.*of + std::max(n - 3.0, 0.0) * half_.*of + last.*of +
                             (records > 2 ? lastButOne.*of : 0.0);
        return n / (1.0 + 2.0 * pairs / n);
    };
    return {count(&Correlations::amplitude), count(&Correlations::frequency), count(&Correlations::power)};
}

}  // namespace sonavex
