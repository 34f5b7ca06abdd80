#pragma once

#include <array>
#include <complex>
#include <cstddef>
#include <optional>
#include <span>
#include <vector>

#include "core/analyzer/AnalysisWindow.h"
#include "core/analyzer/TurnsPerSample.h"

namespace sonavex {

// A line to fit. Its frequency may move with up to two free frequencies.
struct LineToFit {
    // Start value, within 0.2 bins of the truth for a line that determines a free frequency.
    TurnsPerSample frequency;

    // Change of this line's frequency per change of each free frequency: {k, 0} for harmonic k of a tone,
    // {n1, n2} for the product n1 f1 + n2 f2, {f, 0} for tone f of a multitone with one clock ratio.
    std::array<double, 2> follows{};

    // The free frequency (0 or 1) that this line determines. Several lines may determine the same one; they
    // then count by amplitude^2 follows^2. Lines that determine none join the fit in the second round.
    std::optional<std::size_t> determines;
};

struct FittedLine {
    TurnsPerSample frequency;

    // Peak amplitude and phase: the line is Re(amplitude exp(2 pi i frequency m)), m = 0 at the record's
    // centre.
    std::complex<double> amplitude;
};

struct FittedLines {
    double dc = 0;
    std::vector<FittedLine> lines;  // in the order of the request
    std::vector<double> residual;   // samples minus dc and lines
};

// Weighted least-squares fit of dc and all lines in four rounds of matched sums (Belega and Petri, weighted
// sine fit, extended to several lines). Lines must be at least 6 bins apart from each other, 8 bins from 0 Hz
// and from half the rate. samples: as many as the window has.
FittedLines FitLines(const AnalysisWindow& window, std::span<const double> samples,
                     std::span<const LineToFit> lines);

}  // namespace sonavex
