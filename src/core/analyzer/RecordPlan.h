#pragma once

#include <cstddef>
#include <memory>
#include <span>
#include <vector>

#include "core/analyzer/AnalysisWindow.h"
#include "core/analyzer/RecordOverlap.h"

namespace sonavex {

// What is prepared once for all records of one length and rate: window, correlation of overlapping records,
// Fourier transform, weightings.
// Construct it on the user-interface thread, because making FFTW plans is not thread-safe. All members may
// then be called from any thread.
class RecordPlan {
public:
    // length: kShortestRecord to kLongestRecord samples; otherwise std::invalid_argument.
    RecordPlan(std::size_t length, double rateHz);
    ~RecordPlan();
    RecordPlan(RecordPlan&&) noexcept;
    RecordPlan& operator=(RecordPlan&&) noexcept;

    const AnalysisWindow& Window() const noexcept;
    std::size_t Length() const noexcept { return Window().Length(); }
    const RecordOverlap& Overlap() const noexcept;
    double RateHz() const noexcept;
    double BinHz() const noexcept { return RateHz() / static_cast<double>(Length()); }

    // Mean square of the windowed samples by frequency: length / 2 + 1 bins whose sum is the mean square of
    // the samples (a sine of amplitude 1 gives 0.5, spread over the bins of the main lobe).
    std::vector<double> PowerSpectrum(std::span<const double> samples) const;

    // The same without dc, whose main lobe would hide weaker lines below 7 bins or pass for one.
    std::vector<double> AcPowerSpectrum(std::span<const double> samples) const;

    // Squared gains of the weightings at each bin.
    std::span<const double> APowerGains() const noexcept;
    std::span<const double> PowerGains468() const noexcept;

private:
    std::vector<double> PowerLessDc(std::span<const double> samples, double dc) const;

    struct Plan;
    std::unique_ptr<Plan> plan_;
};

}  // namespace sonavex
