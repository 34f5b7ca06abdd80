#pragma once

#include <span>
#include <vector>

#include "core/analyzer/RecordPlan.h"

namespace sonavex {

// The mean of the spectra of records.
class SpectrumMean {
public:
    // The plan must outlive the mean.
    explicit SpectrumMean(const RecordPlan& plan) : plan_(plan) {}

    // samples: as many as the plan's length.
    void Add(std::span<const double> samples);

    std::size_t Records() const noexcept { return records_; }
    // Mean of RecordPlan::AcPowerSpectrum; empty before the first record.
    const std::vector<double>& Power() const noexcept { return power_; }

private:
    const RecordPlan& plan_;
    std::size_t records_ = 0;
    std::vector<double> power_;
};

}  // namespace sonavex
