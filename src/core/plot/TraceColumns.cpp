#include "core/plot/TraceColumns.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>
#include <span>
#include <vector>

namespace sonavex {
namespace {

constexpr double kNoTrace = std::numeric_limits<double>::quiet_NaN();
constexpr std::size_t kNeighbourColumns = 10;  // on each side; the main lobe of a line is narrower
// Bins that vary together, for the window of the precise measurement.
constexpr double kBinsPerIndependentBin = 2.6;

// Part of a gamma distribution with this shape above x, for x > shape + 1: continued fraction, evaluated by
// the modified Lentz method (Abramowitz and Stegun 6.5.31).
double UpperGammaPart(double shape, double x) {
    double b = x + 1.0 - shape;
    double c = 1e300;
    double d = 1.0 / b;
    double fraction = d;
    for (int i = 1; i < 300; ++i) {
        const double a = -i * (i - shape);
        b += 2.0;
        d = 1.0 / (a * d + b);
        c = b + a / c;
        fraction *= c * d;
        if (std::fabs(c * d - 1.0) < 1e-12) break;
    }
    return fraction * std::exp(shape * std::log(x) - x - std::lgamma(shape));
}

// Bins at and above a frequency.
std::size_t FirstBin(const SpectrumTrace& trace, double hertz) {
    const double bin = std::ceil(hertz / trace.binHz);
    return static_cast<std::size_t>(std::clamp(bin, 0.0, static_cast<double>(trace.power.size())));
}

double Interpolated(const SpectrumTrace& trace, double hertz) {
    const double position = hertz / trace.binHz;
    const auto below = static_cast<std::size_t>(position);
    if (below + 1 >= trace.power.size()) return kNoTrace;
    const double lower = PowerDecibels(trace.power[below]);
    return lower + (position - static_cast<double>(below)) * (PowerDecibels(trace.power[below + 1]) - lower);
}

TraceColumn ColumnOf(std::span<const float> bins) {
    const double sum = std::accumulate(bins.begin(), bins.end(), 0.0);
    if (bins.size() == 1) return {PowerDecibels(sum), PowerDecibels(sum), PowerDecibels(sum)};
    const auto [low, high] = std::minmax_element(bins.begin(), bins.end());
    return {PowerDecibels(sum / static_cast<double>(bins.size())), PowerDecibels(*low), PowerDecibels(*high)};
}

// The means of the columns around one, in order.
class Neighbours {
public:
    explicit Neighbours(std::span<const TraceColumn> columns) : columns_(columns) {
        for (std::size_t i = 0; i < kNeighbourColumns; ++i) Add(i);
    }
    // Moves to a column: first to the first one, then each time to the next.
    void MoveTo(std::size_t column) {
        Add(column + kNeighbourColumns);
        if (column > kNeighbourColumns) Remove(column - kNeighbourColumns - 1);
    }
    double Median() const { return means_[means_.size() / 2]; }

private:
    void Add(std::size_t column) {
        if (column >= columns_.size() || std::isnan(columns_[column].mean)) return;
        const double mean = columns_[column].mean;
        means_.insert(std::upper_bound(means_.begin(), means_.end(), mean), mean);
    }
    void Remove(std::size_t column) {
        if (std::isnan(columns_[column].mean)) return;
        means_.erase(std::lower_bound(means_.begin(), means_.end(), columns_[column].mean));
    }

    std::span<const TraceColumn> columns_;
    std::vector<double> means_;
};

// Mean level of the noise around a column: from the median of the columns' means, which lines hardly change.
// bins: in the column.
double NoiseLevel(double median, double bins, double records) {
    // Median of a gamma distribution relative to its mean (Wilson and Hilferty).
    const double shape = records * std::max(1.0, bins / kBinsPerIndependentBin);
    return median - 30.0 * std::log10(1.0 - 1.0 / (9.0 * shape));
}

}  // namespace

double OnceInAMillionDb(double records) {
    const double shape = std::max(1.0, records);
    double low = 1.0 + 1.5 / std::sqrt(shape);
    double high = 1.0 + 20.0 / std::sqrt(shape);
    for (int i = 0; i < 40; ++i) {
        const double middle = 0.5 * (low + high);
        (UpperGammaPart(shape, shape * middle) > 1e-6 ? low : high) = middle;
    }
    return PowerDecibels(low);
}

std::vector<TraceColumn> TraceColumns(const SpectrumTrace& trace, PlotRange decades, std::size_t columns) {
    std::vector<TraceColumn> result(columns, {kNoTrace, kNoTrace, kNoTrace});
    if (trace.power.empty() || columns == 0) return result;
    const double ratio = std::pow(10.0, decades.Span() / static_cast<double>(columns));
    double hertz = std::pow(10.0, decades.low);
    std::vector<std::size_t> bins(columns);
    for (std::size_t i = 0; i < columns; ++i, hertz *= ratio) {
        const std::size_t first = FirstBin(trace, hertz);
        bins[i] = FirstBin(trace, hertz * ratio) - first;
        if (bins[i] > 0) {
            result[i] = ColumnOf(std::span(trace.power).subspan(first, bins[i]));
        } else {
            const double level = Interpolated(trace, hertz * std::sqrt(ratio));
            result[i] = {level, level, level};
        }
    }
    const double threshold = OnceInAMillionDb(trace.records);
    Neighbours neighbours(result);
    for (std::size_t i = 0; i < columns; ++i) {
        neighbours.MoveTo(i);
        if (bins[i] > 1 && result[i].high > result[i].mean)
            result[i].outstanding =
                result[i].high >
                threshold + NoiseLevel(neighbours.Median(), static_cast<double>(bins[i]), trace.records);
    }
    return result;
}

}  // namespace sonavex
