#include "core/analyzer/CarrierError.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "core/analyzer/LineKernels.h"

namespace sonavex {
namespace {

// Segments of a record, when a segment contains enough half periods.
constexpr double kCarrierSegments = 256.0;

// Even, and nearly a whole number of half periods: the product of a line and the carrier contains the double
// frequency, which the segment must average out.
std::size_t SegmentLength(std::size_t length, double periodSamples) {
    const double wanted = 2.0 * static_cast<double>(length) / (kCarrierSegments + 1.0);
    const double halfPeriods = std::max(2.0, std::round(2.0 * wanted / periodSamples));
    return 2 * static_cast<std::size_t>(std::lround(0.25 * halfPeriods * periodSamples));
}

std::vector<double> HannOfSum(std::size_t length, double sum) {
    std::vector<double> weights(length);
    const auto n = static_cast<double>(length);
    for (std::size_t i = 0; i < length; ++i)
        weights[i] = sum / n * (1.0 - std::cos(2.0 * std::numbers::pi * (static_cast<double>(i) + 0.5) / n));
    return weights;
}

}  // namespace

CarrierError::CarrierError(std::span<const double> residual, const FittedLine& carrier)
    : residual_(residual),
      amplitude_(carrier.amplitude),
      hop_(SegmentLength(residual.size(), 1.0 / carrier.frequency.Sum()) / 2),
      startsRe_(Hops()),
      startsIm_(Hops()),
      re_(2 * hop_),
      im_(2 * hop_) {
    const double firstTime = -0.5 * (static_cast<double>(residual.size()) - 1.0);
    const auto& [coarse, fine] = carrier.frequency;
    line_kernels::Phasors(coarse, fine, firstTime, static_cast<double>(hop_), startsRe_.data(),
                          startsIm_.data(), Hops());
    line_kernels::Phasors(coarse, fine, 0.0, 1.0, re_.data(), im_.data(), re_.size());
    AddSegments();
}

void CarrierError::AddSegments() {
    const std::size_t length = re_.size();
    const std::vector<double> weights = HannOfSum(length, 2.0 / std::norm(amplitude_));
    std::vector<double> weighed(length);
    for (std::size_t hop = 0; hop * hop_ + length <= residual_.size(); ++hop) {
        line_kernels::Weigh(&residual_[hop * hop_], weights.data(), weighed.data(), length);
        const auto [re, im] = line_kernels::Matched(weighed.data(), re_.data(), im_.data(), length);
        errors_.push_back(std::conj(CarrierAt(hop)) * Complex(re, -im));
    }
}

double CarrierError::BoundaryBefore(std::size_t segment) const {
    return (static_cast<double>(segment) + 0.5) * static_cast<double>(hop_);
}

std::vector<double> CarrierError::Remainder() const {
    std::vector<double> rest(residual_.begin(), residual_.end());
    // The carrier times t and t^2.
    std::vector<double> re1(hop_);
    std::vector<double> im1(hop_);
    std::vector<double> re2(hop_);
    std::vector<double> im2(hop_);
    for (std::size_t i = 0; i < hop_; ++i) {
        const double t = static_cast<double>(i) / static_cast<double>(hop_);
        re1[i] = t * re_[i];
        im1[i] = t * im_[i];
        re2[i] = t * re1[i];
        im2[i] = t * im1[i];
    }
    for (std::size_t hop = 0; hop < Hops(); ++hop) {
        const auto subtract = [&](const Complex& error, const double* re, const double* im) {
            const Complex factor = error * CarrierAt(hop);
            const std::size_t start = hop * hop_;
            line_kernels::Subtract(factor.real(), factor.imag(), re, im, &rest[start],
                                   std::min(hop_, rest.size() - start));
        };
        const Parabola error = ErrorIn(hop);
        subtract(error.value, re_.data(), im_.data());
        subtract(error.slope, re1.data(), im1.data());
        if (error.curvature != 0.0) subtract(error.curvature, re2.data(), im2.data());
    }
    return rest;
}

// A segment's centre is where the hop after its first begins. Before the first centre and after the last the
// error is extrapolated.
CarrierError::Parabola CarrierError::ErrorIn(std::size_t hop) const {
    const std::size_t last = errors_.size() - 1;
    if (hop == 0) return Extrapolated(1.0, -1.0, 0, 1);
    if (hop > last) return Extrapolated(static_cast<double>(hop - 1 - last), 1.0, last, -1);
    return {errors_[hop - 1], errors_[hop] - errors_[hop - 1], 0.0};
}

// The parabola through the nearest three errors, outwards by from + step t hops from the nearest.
CarrierError::Parabola CarrierError::Extrapolated(double from, double step, std::size_t nearest,
                                                  std::ptrdiff_t inwards) const {
    const auto at = errors_.begin() + static_cast<std::ptrdiff_t>(nearest);
    const Complex slope = at[0] - at[inwards];
    const Complex half = 0.5 * (slope - (at[inwards] - at[2 * inwards]));
    return {at[0] + from * (slope + (from + 1.0) * half), step * (slope + (2.0 * from + 1.0) * half), half};
}

}  // namespace sonavex
