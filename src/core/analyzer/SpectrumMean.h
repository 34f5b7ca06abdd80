#pragma once

#include <cstddef>
#include <deque>
#include <span>
#include <vector>

#include "core/analyzer/RecordPlan.h"

namespace sonavex {

struct MeanSpectrum {
    std::size_t records = 0;
    std::vector<double> power;  // mean of RecordPlan::AcPowerSpectrum; empty without records
};

// Averages the spectra of records. Belongs to one thread at a time.
class SpectrumMean {
public:
    // rolling: older records can drop out of the mean. Their spectra are kept for that. The plan must outlive
    // the mean.
    explicit SpectrumMean(const RecordPlan& plan, bool rolling = false) : plan_(plan), rolling_(rolling) {}

    // samples: as many as the plan's length. newest: how many of the newest records the mean consists of
    // afterwards, this one included; 0: all. Without rolling 1 begins again, and other numbers mean all.
    void Add(std::span<const double> samples, std::size_t newest = 0);

    const MeanSpectrum& Mean() const noexcept { return mean_; }

private:
    void AddToAll(const std::vector<double>& power);
    void AddToNewest(const std::vector<double>& power, std::size_t newest);

    const RecordPlan& plan_;
    bool rolling_;
    MeanSpectrum mean_;
    // Of the records in the mean, newest last; only if rolling.
    std::deque<std::vector<float>> kept_;
};

}  // namespace sonavex
