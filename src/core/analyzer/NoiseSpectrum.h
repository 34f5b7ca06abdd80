#pragma once

#include <cstddef>
#include <span>
#include <vector>

#include "core/analyzer/RecordPlan.h"

namespace sonavex {

// Lower and upper end of the band in which noise and distortion are measured, in Hz.
struct Band {
    double lowHz = 20.0;
    double highHz = 20000.0;

    bool Contains(double hertz) const noexcept { return hertz >= lowHz && hertz <= highHz; }
    Band UpTo(double limitHz) const noexcept { return {lowHz, highHz < limitHz ? highHz : limitHz}; }
};

// A mean square and its standard deviation.
struct NoisePower {
    double mean = 0;
    double sigma = 0;
};

// 0 for Gaussian noise, negative for dither and rounding. It changes how much the noise power of records
// varies.
double ExcessKurtosis(std::span<const double> samples);

// The power spectrum of a residual, and the density of its noise around any frequency. Positions are in bins
// and need not be whole. Belongs to one thread.
class NoiseSpectrum {
public:
    // power: RecordPlan::PowerSpectrum of the residual, or a mean of several. lines: positions of all fitted
    // lines. tones: those of the lines whose neighbours within kGuardBins are not noise, because an unsteady
    // tone leaves its skirt there. records: how many independent spectra `power` is the mean of, at least 1.
    // excessKurtosis: of the residual's samples, see ExcessKurtosis.
    NoiseSpectrum(const RecordPlan& plan, std::vector<double> power, std::vector<double> lines,
                  std::vector<double> tones, double records = 1.0, double excessKurtosis = 0.0);

    std::span<const double> BinPowers() const noexcept { return power_; }
    double BinHz() const noexcept { return binHz_; }
    double EnbwBins() const noexcept { return enbwBins_; }

    // Mean square per bin of the noise around a position: from the median of the bins 9 to 48 away on both
    // sides (divided by ln 2 for one record). Bins that a fit has emptied and the skirts of tones do not
    // count.
    double DensityAt(double position) const;

    // The same for a bin, from the median of a group of 64 bins: fast, for comparisons.
    double RoughDensityAt(std::size_t bin) const;

    // Standard deviation of each of the two parts of a line's amplitude in one record: sqrt(density x ENBW).
    double LineSigma(double position) const;

    // The noise in the band; bins at its ends count by their share. Within kGuardBins of a tone the density
    // of its neighbours counts instead of the bins, and for every other fitted line the power that the fit
    // swallowed is added. powerGains: of each bin; empty: 1.
    NoisePower InBand(const Band& band, std::span<const double> powerGains = {}) const;

    // Mean square in the bins of the band that are in no tone's skirt.
    double PowerOutsideSkirts(const Band& band) const;

    // Mean square within kGuardBins of a position.
    NoisePower Skirt(double position) const;

    // Whether the bin is within kGuardBins of a tone.
    bool InSkirt(std::size_t bin) const;

private:
    // The noise of each bin, with the skirts of tones replaced, and its variance.
    struct CleanBins {
        std::vector<double> power;
        std::vector<double> variance;
        double kurtosis = 0;  // excess, of the noise alone
    };

    void Exclude(double position, double reach);
    void CollectNeighbours(double position, std::vector<double>& powers) const;
    double MedianDensity(std::vector<double>& powers) const;
    const CleanBins& Clean() const;
    bool IsLine(std::size_t bin) const;
    double LineShare() const;
    double Variance(std::size_t bin) const;
    double SkirtVariance(double tone, const Band& band, std::span<const double> powerGains) const;
    double SwallowedPower(const Band& band, std::span<const double> powerGains) const;

    double enbwBins_;
    double swallowedBins_;
    double correlatedBins_;
    double binHz_;
    double records_;
    double excessKurtosis_;
    std::vector<double> power_;
    std::vector<double> lines_;
    std::vector<double> tones_;
    std::vector<bool> excluded_;

    // Computed at the first use.
    mutable std::vector<double> roughDensities_;
    mutable CleanBins clean_;
};

}  // namespace sonavex
