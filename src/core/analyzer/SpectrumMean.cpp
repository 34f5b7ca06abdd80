#include "core/analyzer/SpectrumMean.h"

#include <algorithm>

namespace sonavex {
namespace {

// A float represents the power of -370 to +380 dBFS.
std::vector<float> InSinglePrecision(const std::vector<double>& power) {
    return {power.begin(), power.end()};
}

}  // namespace

void SpectrumMean::Add(std::span<const double> samples, std::size_t newest) {
    const std::vector<double> power = plan_.AcPowerSpectrum(samples);
    if (rolling_) return AddToNewest(power, newest);
    if (newest == 1) mean_.records = 0;
    AddToAll(power);
}

void SpectrumMean::AddToAll(const std::vector<double>& power) {
    if (mean_.records == 0) mean_.power.assign(power.size(), 0.0);
    ++mean_.records;
    for (std::size_t j = 0; j < power.size(); ++j)
        mean_.power[j] += (power[j] - mean_.power[j]) / static_cast<double>(mean_.records);
}

// Computed from its records each time, so that a record that drops out leaves no rounding error behind.
void SpectrumMean::AddToNewest(const std::vector<double>& power, std::size_t newest) {
    kept_.push_back(InSinglePrecision(power));
    if (newest != 0)
        while (kept_.size() > newest) kept_.pop_front();
    mean_.records = kept_.size();
    mean_.power.assign(power.size(), 0.0);
    for (const std::vector<float>& record : kept_)
        for (std::size_t j = 0; j < record.size(); ++j) mean_.power[j] += record[j];
    for (double& mean : mean_.power) mean /= static_cast<double>(mean_.records);
}

}  // namespace sonavex
