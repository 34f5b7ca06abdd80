#include "core/analyzer/SpectrumMean.h"

namespace sonavex {

void SpectrumMean::Add(std::span<const double> samples) {
    const std::vector<double> power = plan_.AcPowerSpectrum(samples);
    power_.resize(power.size());
    ++records_;
    for (std::size_t j = 0; j < power.size(); ++j)
        power_[j] += (power[j] - power_[j]) / static_cast<double>(records_);
}

}  // namespace sonavex
