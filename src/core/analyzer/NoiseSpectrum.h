#pragma once

#include <cstddef>
#include <functional>
#include <span>
#include <vector>

#include "core/analyzer/AnalysisWindow.h"

namespace sonavex {

// Lower and upper end of the band in which noise and distortion are measured, in Hz.
struct Band {
    double lowHz = 20.0;
    double highHz = 20000.0;

    bool Contains(double hertz) const noexcept { return hertz >= lowHz && hertz <= highHz; }
    Band UpTo(double limitHz) const noexcept { return {lowHz, highHz < limitHz ? highHz : limitHz}; }
};

// A mean square and its standard deviation.
struct Power {
    double mean = 0;
    double sigma = 0;
};

// Factor for the power at a frequency in Hz.
using PowerWeight = std::function<double(double)>;

// The power spectrum of a residual, and the density of its noise around any frequency. Positions are in bins
// and need not be whole.
class NoiseSpectrum {
public:
    // power: RecordTransform::PowerSpectrum of the residual, or a mean of several. lines: positions of all
    // fitted lines. tones: those whose neighbours within kGuardBins are not noise, because an unsteady tone
    // leaves its skirt there. records: how many independent spectra `power` is the mean of, at least 1.
    NoiseSpectrum(const AnalysisWindow& window, double rateHz, std::vector<double> power,
                  std::vector<double> lines, std::vector<double> tones, double records = 1.0);

    std::span<const double> Power() const noexcept { return power_; }
    double BinHz() const noexcept { return binHz_; }

    // Mean square per bin of the noise around a position: the median of the bins 9 to 48 away on both sides
    // divided by ln 2. Bins that a fit has emptied and the skirts of tones do not count.
    double DensityAt(double position) const;

    // Standard deviation of each of the two parts of a line's amplitude in one record, from the local
    // density.
    double LineSigma(double position) const;

    // The noise in the band. Within kGuardBins of a tone the density of its neighbours counts, and the bins
    // that a fitted line has swallowed are replaced.
    sonavex::Power InBand(const Band& band) const;
    sonavex::Power InBand(const Band& band, const PowerWeight& weight) const;

    // Mean square within kGuardBins of a position.
    double Skirt(double position) const;

private:
    bool CountsAsNoise(std::size_t bin) const;
    double Share(std::size_t bin, const Band& band) const;

    double enbwBins_;
    double swallowedBins_;
    double correlatedBins_;
    double binHz_;
    double records_;
    std::vector<double> power_;
    std::vector<double> lines_;
    std::vector<double> tones_;
    std::vector<bool> excluded_;
};

}  // namespace sonavex
