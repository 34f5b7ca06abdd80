#pragma once

#include <complex>
#include <cstddef>
#include <memory>
#include <span>
#include <vector>

#include "core/analyzer/AnalysisWindow.h"

namespace sonavex {

// Window and Fourier transform of one record length. Construct it on the user-interface thread, because
// making FFTW plans is not thread-safe. All members may then be called from any thread.
class RecordTransform {
public:
    // length: kShortestRecord to kLongestRecord samples; otherwise std::invalid_argument.
    explicit RecordTransform(std::size_t length);
    ~RecordTransform();
    RecordTransform(RecordTransform&&) noexcept;
    RecordTransform& operator=(RecordTransform&&) noexcept;

    const AnalysisWindow& Window() const noexcept;
    std::size_t Length() const noexcept { return Window().Length(); }

    // Mean square of the windowed samples by frequency: length / 2 + 1 bins whose sum is the mean square of
    // the samples (a sine of amplitude 1 gives 0.5, spread over the bins of the main lobe).
    std::vector<double> PowerSpectrum(std::span<const double> samples) const;

private:
    struct Plan;
    std::unique_ptr<Plan> plan_;
};

}  // namespace sonavex
