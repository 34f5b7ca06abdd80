#pragma once

#include <complex>
#include <cstddef>
#include <span>
#include <vector>

#include "core/analyzer/FitLines.h"

namespace sonavex {

// How a carrier deviates from its fit in the course of a record: the residual times conj(carrier) /
// |amplitude|^2, averaged in about 256 half-overlapped Hann segments of whole half periods. The real part of
// an error is relative level, the imaginary part phase in radians.
class CarrierError {
public:
    // residual: what the fit of the record leaves; it must outlive this object.
    CarrierError(std::span<const double> residual, const FittedLine& carrier);

    std::span<const std::complex<double>> Segments() const noexcept { return errors_; }

    // Between the segments before this one and those from it on, in samples.
    double BoundaryBefore(std::size_t segment) const;

    // The residual less the carrier times its error, interpolated between the centres of the segments.
    std::vector<double> Remainder() const;

    // Samples at each end of the remainder for which the extrapolated error is too uncertain. The window
    // almost hides them.
    std::size_t Margin() const noexcept { return hop_ / 2; }

private:
    using Complex = std::complex<double>;

    // value + slope t + curvature t^2, t = 0 to 1 from one hop to the next.
    struct Parabola {
        Complex value;
        Complex slope;
        Complex curvature;
    };

    std::size_t Hops() const { return (residual_.size() + hop_ - 1) / hop_; }
    Complex CarrierAt(std::size_t hop) const { return amplitude_ * Complex(startsRe_[hop], startsIm_[hop]); }
    void AddSegments();
    Parabola ErrorIn(std::size_t hop) const;
    Parabola Extrapolated(double from, double step, std::size_t nearest, std::ptrdiff_t inwards) const;

    std::span<const double> residual_;
    Complex amplitude_;
    std::size_t hop_;
    std::vector<Complex> errors_;

    // exp(2 pi i f m) at the start of each hop, and relative to it within a segment of two hops.
    std::vector<double> startsRe_;
    std::vector<double> startsIm_;
    std::vector<double> re_;
    std::vector<double> im_;
};

}  // namespace sonavex
