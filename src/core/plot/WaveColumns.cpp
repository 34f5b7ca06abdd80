#include "core/plot/WaveColumns.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>
#include <span>

namespace sonavex {
namespace {

constexpr int kSincReach = 16;  // samples on each side
constexpr int kMostPeriods = 5;

double PeriodSamples(const WaveRecord& record) {
    return PeriodSeconds(record) * record.rateHz;
}

// The latest time at which this many periods can begin.
double BeginOf(const WaveRecord& record, int periods) {
    const double period = PeriodSamples(record);
    const double latest = static_cast<double>(record.samples.size()) - 1.0 - kSincReach - periods * period;
    if (!record.fundamentalHz) return latest;
    const double turns = record.phaseRadians / (2.0 * std::numbers::pi);
    return period * (std::floor(latest / period + turns) - turns);
}

// Cosine and sine of the angle of each sample under the window, so that BandLimited needs one of each.
struct WindowAngles {
    WindowAngles() {
        for (int k = 1 - kSincReach; k <= kSincReach; ++k) {
            const double angle = std::numbers::pi * k / kSincReach;
            cosine[static_cast<std::size_t>(k + kSincReach - 1)] = std::cos(angle);
            sine[static_cast<std::size_t>(k + kSincReach - 1)] = std::sin(angle);
        }
    }
    std::array<double, std::size_t{2} * kSincReach> cosine{};
    std::array<double, std::size_t{2} * kSincReach> sine{};
};

// Interpolation with a sinc under a Hann window.
double BandLimited(std::span<const float> samples, double time) {
    const double before = std::floor(time);
    const double fraction = time - before;
    const auto first = static_cast<std::ptrdiff_t>(before);
    if (fraction < 1e-9) return samples[static_cast<std::size_t>(first)];
    static const WindowAngles kAngles;
    const double sine = std::sin(std::numbers::pi * fraction) / std::numbers::pi;
    const double cosineOfWindow = 0.5 * std::cos(std::numbers::pi * fraction / kSincReach);
    const double sineOfWindow = 0.5 * std::sin(std::numbers::pi * fraction / kSincReach);
    double sum = 0;
    for (std::ptrdiff_t k = 1 - kSincReach; k <= kSincReach; ++k) {
        const double distance = fraction - static_cast<double>(k);
        const auto angle = static_cast<std::size_t>(k + kSincReach - 1);
        const double window =
            0.5 + cosineOfWindow * kAngles.cosine[angle] + sineOfWindow * kAngles.sine[angle];
        const double sinc = (k % 2 == 0 ? sine : -sine) / distance;
        const std::ptrdiff_t n = first + k;
        if (n >= 0 && n < std::ssize(samples)) sum += sinc * window * samples[static_cast<std::size_t>(n)];
    }
    return sum;
}

double Straight(std::span<const float> samples, double time) {
    const double before = std::floor(time);
    const auto n = static_cast<std::size_t>(before);
    return samples[n] + (time - before) * (samples[n + 1] - samples[n]);
}

// The visible time in columns.
struct TimeColumns {
    double begin;
    double step;
    std::size_t count;

    // The extent of a function between the edges of each column.
    template <class Function>
    std::vector<WaveColumn> Extents(const Function& valueAt) const {
        std::vector<WaveColumn> result(count);
        double left = valueAt(begin);
        for (std::size_t i = 0; i < count; ++i) {
            const double right = valueAt(begin + static_cast<double>(i + 1) * step);
            result[i] = {std::min(left, right), std::max(left, right)};
            left = right;
        }
        return result;
    }

    // Extends each column to the samples in it.
    std::vector<WaveColumn> Including(std::span<const float> samples, std::vector<WaveColumn> extents) const {
        for (std::size_t i = 0; i < count; ++i) {
            const double start = begin + static_cast<double>(i) * step;
            const auto end = static_cast<std::size_t>(std::ceil(start + step));
            for (auto n = static_cast<std::size_t>(std::ceil(start)); n < end; ++n) {
                extents[i].low = std::min(extents[i].low, static_cast<double>(samples[n]));
                extents[i].high = std::max(extents[i].high, static_cast<double>(samples[n]));
            }
        }
        return extents;
    }
};

double LargestFrom(std::span<const float> samples, std::size_t first) {
    double largest = 0;
    for (std::size_t n = first; n < samples.size(); ++n)
        largest = std::max(largest, std::fabs(static_cast<double>(samples[n])));
    return largest;
}

}  // namespace

WaveColumns MakeWaveColumns(const WaveRecord& record, int periods, std::size_t columns) {
    const double begin = BeginOf(record, periods);
    if (columns == 0 || begin < 0) return {};
    const TimeColumns time{begin, periods * PeriodSamples(record) / static_cast<double>(columns), columns};
    const std::span<const float> samples = record.samples;
    const std::span<const float> captured = record.captured;
    WaveColumns result;
    result.signal = time.Including(samples, time.Extents([&](double t) { return BandLimited(samples, t); }));
    if (!captured.empty())
        result.captured =
            time.Including(captured, time.Extents([&](double t) { return Straight(captured, t); }));
    if (!record.harmonics.empty())
        result.harmonics = time.Extents([&](double t) { return HarmonicsAt(record, t); });
    return result;
}

WavePeaks PeaksOf(const WaveRecord& record) {
    const auto first = static_cast<std::size_t>(std::max(0.0, BeginOf(record, kMostPeriods)));
    return {LargestFrom(record.samples, first), LargestFrom(record.captured, first)};
}

}  // namespace sonavex
