#pragma once

#include <cstddef>
#include <span>
#include <vector>

namespace sonavex {

// Half width of the main lobe in bins. Lines closer to 0 Hz or to half the rate than one bin more are not
// fitted.
inline constexpr double kHalfLobeBins = 7.0;
inline constexpr double kGuardBins = 8.0;

// The 7-term cosine-sum window with minimum side lobes (-180 dB): H.-H. Albrecht, "A family of cosine-sum
// windows for high-resolution measurements", ICASSP 2001, pages 3081 to 3084. It is symmetric about the
// centre of the record, so its transform is real. Time m counts samples from the centre: m = n - (length - 1)
// / 2.
class AnalysisWindow {
public:
    // length: kShortestRecord to kLongestRecord samples; otherwise std::invalid_argument.
    explicit AnalysisWindow(std::size_t length);

    std::span<const double> Values() const noexcept { return values_; }
    std::size_t Length() const noexcept { return values_.size(); }
    double Centre() const noexcept { return 0.5 * (static_cast<double>(values_.size()) - 1.0); }

    double Sum() const noexcept { return sum_; }                              // sum of w
    double SumOfSquares() const noexcept { return sumOfSquares_; }            // sum of w^2
    double TimeMoment() const noexcept { return timeMoment_; }                // sum of w m^2
    double SquaredTimeMoment() const noexcept { return squaredTimeMoment_; }  // sum of w^2 m^2

    // Equivalent noise bandwidth, 2.63 bins: N sum(w^2) / sum(w)^2 (Heinzel, Ruediger, Schilling 2002).
    double EnbwBins() const noexcept;

    // Bins of white noise that fitting one line removes from the windowed residual: 3.41.
    double SwallowedBins() const noexcept;

    // Bins of the power spectrum that vary together: N sum(w^4) / sum(w^2)^2. The relative variance of the
    // mean of n bins of white noise is this number divided by n.
    double CorrelatedBins() const noexcept;

    // Correlation of the line amplitudes of two records of white noise whose starts are `shift` samples
    // apart, and the correlation of the frequencies fitted in them.
    double AmplitudeCorrelation(std::size_t shift) const;
    double FrequencyCorrelation(std::size_t shift) const;

    // Amplitude of a line that lies this many bins beside a bin, relative to a line on the bin.
    static double Response(double bins);

private:
    std::vector<double> values_;
    double sum_ = 0;
    double sumOfSquares_ = 0;
    double sumOfCubes_ = 0;
    double sumOfFourthPowers_ = 0;
    double timeMoment_ = 0;
    double squaredTimeMoment_ = 0;
};

}  // namespace sonavex
