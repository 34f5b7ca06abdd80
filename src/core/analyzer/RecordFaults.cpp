#include "core/analyzer/RecordFaults.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace sonavex {
namespace {

constexpr double kSilenceDbfs = -140.0;

bool AllFinite(std::span<const double> samples) {
    return std::all_of(samples.begin(), samples.end(), [](double x) { return std::isfinite(x); });
}

// Level of everything but dc, relative to a full-scale sine.
double AcDbfs(std::span<const double> samples) {
    const auto n = static_cast<double>(samples.size());
    double mean = 0.0;
    for (const double x : samples) mean += x / n;
    double meanSquare = 0.0;
    for (const double x : samples) meanSquare += (x - mean) * (x - mean) / n;
    return Decibels(std::sqrt(2.0 * meanSquare));
}

}  // namespace

std::optional<Void> FaultOf(const Record& record, std::size_t length) {
    if (record.samples.size() < length)
        return Void{VoidCode::kTooShort, "There are " + std::to_string(record.samples.size()) +
                                             " uninterrupted samples; a reading needs " +
                                             std::to_string(length) + "."};
    if (!record.loss.empty()) return Void{VoidCode::kDisturbed, record.loss};
    if (!AllFinite(record.samples)) return Void{VoidCode::kNotFinite, "A sample is not a finite number."};
    if (AcDbfs(record.samples) < kSilenceDbfs)
        return Void{VoidCode::kSilence, "The signal is below -140 dBFS."};
    return std::nullopt;
}

bool Overloaded(const Record& record) {
    const double limit = record.floatingPoint ? 1.0 : 1.0 - 1.5 * std::ldexp(1.0, 1 - record.bits);
    return std::any_of(record.samples.begin(), record.samples.end(),
                       [limit](double x) { return std::abs(x) >= limit; });
}

}  // namespace sonavex
