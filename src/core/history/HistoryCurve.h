#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "core/plot/SpectrumTrace.h"
#include "core/precise/results/ExportedMeasurement.h"

namespace sonavex {

// A spectrum at the resolution of a plot. A full spectrum is stored by an export only.
struct HistoryCurve {
    static constexpr std::size_t kMostColumns = 1200;

    // Ends of the logarithmic axis.
    double lowHz = 10;
    double highHz = 24000;
    // By column, in dBFS, from -320 to 320 with two decimals: the line of the plot. NaN in a column without
    // bins.
    std::vector<double> levelsDbfs;

    // Of a mean of this many independent spectra. No columns without power.
    static HistoryCurve Of(const ExportedSpectrum& spectrum, double independentSpectra);
};

// The curve as a trace that looks the same in a plot: each bin has the level of its column. Without bins for
// a curve without columns.
SpectrumTrace TraceOf(const HistoryCurve& curve, const std::string& name);

// Three digits of base 64 for each level: hundredths of a decibel as a 16-bit number in two's complement.
std::string EncodedLevels(const std::vector<double>& levelsDbfs);
// Empty for a text that EncodedLevels does not make, or for more than kMostColumns.
std::vector<double> DecodedLevels(std::string_view text);

}  // namespace sonavex
