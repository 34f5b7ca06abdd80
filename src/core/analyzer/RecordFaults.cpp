#include "core/analyzer/RecordFaults.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

#include "core/analyzer/LineKernels.h"

namespace sonavex {
namespace {

constexpr double kSilenceDbfs = -140.0;

// Level of everything but dc, relative to a full-scale sine.
double AcDbfs(std::span<const double> samples, double sumOfSquares) {
    const auto n = static_cast<double>(samples.size());
    const double mean = line_kernels::Sum(samples.data(), samples.size()) / n;
    return Decibels(std::sqrt(2.0 * std::max(sumOfSquares / n - mean * mean, 0.0)));
}

}  // namespace

std::optional<Void> FaultOf(const Record& record, std::size_t length) {
    if (record.samples.size() < length)
        return Void{VoidCode::kTooShort, "There are " + std::to_string(record.samples.size()) +
                                             " uninterrupted samples; a reading needs " +
                                             std::to_string(length) + "."};
    if (!record.loss.empty()) return Void{VoidCode::kDisturbed, record.loss};
    const double* const x = record.samples.data();
    const double sumOfSquares = line_kernels::Dot(x, x, record.samples.size());
    if (!std::isfinite(sumOfSquares)) return Void{VoidCode::kNotFinite, "A sample is not a finite number."};
    if (AcDbfs(record.samples, sumOfSquares) < kSilenceDbfs)
        return Void{VoidCode::kSilence, "The signal is below -140 dBFS."};
    return std::nullopt;
}

bool Overloaded(const Record& record) {
    const double limit = record.floatingPoint ? 1.0 : 1.0 - 1.5 * std::ldexp(1.0, 1 - record.bits);
    return std::any_of(record.samples.begin(), record.samples.end(),
                       [limit](double x) { return std::abs(x) >= limit; });
}

}  // namespace sonavex
