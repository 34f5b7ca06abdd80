#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "core/analyzer/RecordPlan.h"

namespace sonavex::measure {

// The files that `analyze` writes. Each replaces an older file when it is complete. All throw MeasureError.

void WriteText(const std::string& path, const std::string& text);

// One channel of 32-bit floats.
void WriteFloatWav(const std::string& path, std::span<const double> samples, std::int32_t rateHz);

// The mean of the spectra of all records.
class SpectrumMean {
public:
    explicit SpectrumMean(const RecordPlan& plan) : plan_(plan) {}

    void Add(std::span<const double> samples);

    // Frequency and dBFS of each bin, after lines with the conditions that begin with '#'.
    std::string Csv() const;

private:
    const RecordPlan& plan_;
    std::size_t records_ = 0;
    std::vector<double> power_;
};

}  // namespace sonavex::measure
