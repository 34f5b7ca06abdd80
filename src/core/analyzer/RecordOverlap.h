#pragma once

#include <cstddef>

#include "core/analyzer/AnalysisWindow.h"

namespace sonavex {

// How many independent records have the variance of a mean: of amplitudes, of the frequency, of powers.
struct IndependentRecords {
    double amplitude = 1;
    double frequency = 1;
    double power = 1;
};

// Means of records that overlap by 75 %. The noise of such records is correlated, so they count for less than
// their number.
class RecordOverlap {
public:
    explicit RecordOverlap(const AnalysisWindow& window);

    // records: how many the mean contains, all with the same weight. lastShift: samples from the start of the
    // last but one to the start of the last; 0: a quarter of a record.
    IndependentRecords Of(std::size_t records, std::size_t lastShift = 0) const;

private:
    // Correlations of records whose starts differ by `shift` samples.
    struct Correlations {
        double amplitude = 0;
        double frequency = 0;
        double power = 0;
    };
    Correlations At(std::size_t shift) const;

    const AnalysisWindow& window_;
    Correlations quarter_;
    Correlations half_;
};

}  // namespace sonavex
