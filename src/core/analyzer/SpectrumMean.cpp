#include "core/analyzer/SpectrumMean.h"

#include <array>
#include <cstdio>

#include "core/analyzer/Reading.h"

namespace sonavex {
namespace {

template <typename... Arguments>
std::string CsvText(const char* format, Arguments... arguments) {
    std::array<char, 200> text{};
    std::snprintf(text.data(), text.size(), format, arguments...);
    return text.data();
}

}  // namespace

void SpectrumMean::Add(std::span<const double> samples) {
    const std::vector<double> power = plan_.AcPowerSpectrum(samples);
    power_.resize(power.size());
    ++records_;
    for (std::size_t j = 0; j < power.size(); ++j)
        power_[j] += (power[j] - power_[j]) / static_cast<double>(records_);
}

std::string SpectrumMean::Csv() const {
    const double enbw = plan_.Window().EnbwBins();
    std::string csv =
        "# Mean power spectrum without dc, scaled so that a sine on a bin reads its level in dBFS\n";
    csv += "# A full-scale sine is 0 dBFS\n";
    csv += "# Window: 7-term minimum side lobe\n";
    csv += CsvText("# ENBW: %.6f bins = %.6f Hz\n", enbw, enbw * plan_.BinHz());
    csv += CsvText("# Rate: %.0f Hz; record: %zu samples; records: %zu, overlapping by 75 %%\n",
                   plan_.RateHz(), plan_.Length(), records_);
    csv += "frequency_hz,level_dbfs\n";
    for (std::size_t j = 0; j < power_.size(); ++j)
        csv += CsvText("%.9g,%.4f\n", static_cast<double>(j) * plan_.BinHz(),
                       0.5 * Decibels(2.0 * enbw * power_[j]));
    return csv;
}

}  // namespace sonavex
