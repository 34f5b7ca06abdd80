#include "core/analyzer/NoiseSpectrum.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <utility>

#include "core/analyzer/LineKernels.h"
#include "core/analyzer/Square.h"

namespace sonavex {
namespace {

// Bins beside a fitted line that the fit has emptied.
constexpr double kEmptiedBins = 2.5;

// Where the density is measured, in bins from the position.
constexpr std::ptrdiff_t kNearestNeighbour = 9;
constexpr std::ptrdiff_t kFarthestNeighbour = 48;
constexpr std::size_t kFewestNeighbours = 16;

constexpr std::size_t kRoughGroup = 64;

// A bin above this multiple of the density (17 dB) is a line, not noise.
constexpr double kLineOverDensity = 50.0;

// With a larger share of lines in the residual its kurtosis says nothing about the noise.
constexpr double kLargestLineShare = 0.01;

// The least part of the Gaussian variance that noise power may have; noise of two values alone has less.
constexpr double kLeastVariance = 0.1;

// Median of the mean of `records` exponentially distributed powers of mean 1: ln 2 for one, tends to 1. The
// median of the gamma distribution as a series.
double MedianOfMean(double records) {
    constexpr double kFirst = 1.0 / 3.0;
    constexpr double kSecond = 8.0 / 405.0;
    constexpr double kThird = std::numbers::ln2 - (1.0 - kFirst + kSecond);
    return 1.0 - (kFirst - (kSecond + kThird / records) / records) / records;
}

// The part of a bin that lies in the band.
double ShareInBand(std::size_t bin, double binHz, const Band& band) {
    const auto position = static_cast<double>(bin);
    const double from = std::max(position - 0.5, band.lowHz / binHz);
    const double to = std::min(position + 0.5, band.highHz / binHz);
    return std::clamp(to - from, 0.0, 1.0);
}

double GainAt(std::span<const double> gains, double position) {
    if (gains.empty()) return 1.0;
    const double last = static_cast<double>(gains.size()) - 1.0;
    return gains[static_cast<std::size_t>(std::clamp(std::round(position), 0.0, last))];
}

double WeightedSum(std::span<const double> gains, const std::vector<double>& x, std::size_t from,
                   std::size_t n) {
    return gains.empty() ? line_kernels::Sum(&x[from], n) : line_kernels::Dot(&gains[from], &x[from], n);
}

double SquareWeightedSum(std::span<const double> gains, const std::vector<double>& x, std::size_t from,
                         std::size_t n) {
    return gains.empty() ? line_kernels::Sum(&x[from], n)
                         : line_kernels::SquareDot(&gains[from], &x[from], n);
}

// Bins from, from + 1 ... to - 1.
struct BinSpan {
    std::size_t from;
    std::size_t to;
};

BinSpan SkirtOf(double tone, std::size_t bins) {
    const double from = std::max(std::ceil(tone - kGuardBins), 0.0);
    const double to = std::min(std::floor(tone + kGuardBins) + 1.0, static_cast<double>(bins));
    return {static_cast<std::size_t>(from), static_cast<std::size_t>(std::max(from, to))};
}

}  // namespace

double ExcessKurtosis(std::span<const double> samples) {
    const double squares = line_kernels::Dot(samples.data(), samples.data(), samples.size());
    if (squares == 0.0) return 0.0;
    return line_kernels::FourthPowers(samples.data(), samples.size()) * static_cast<double>(samples.size()) /
               (squares * squares) -
           3.0;
}

NoiseSpectrum::NoiseSpectrum(const RecordPlan& plan, std::vector<double> power, std::vector<double> lines,
                             std::vector<double> tones, double records, double excessKurtosis)
    : enbwBins_(plan.Window().EnbwBins()),
      swallowedBins_(plan.Window().SwallowedBins()),
      correlatedBins_(plan.Window().CorrelatedBins()),
      binHz_(plan.BinHz()),
      records_(records),
      excessKurtosis_(excessKurtosis),
      power_(std::move(power)),
      lines_(std::move(lines)),
      tones_(std::move(tones)),
      excluded_(power_.size(), false) {
    Exclude(0.0, kEmptiedBins);
    for (const double line : lines_) Exclude(line, kEmptiedBins);
    for (const double tone : tones_) Exclude(tone, kGuardBins);
}

void NoiseSpectrum::Exclude(double position, double reach) {
    const double last = static_cast<double>(power_.size()) - 1.0;
    const double to = std::min(std::floor(position + reach), last);
    for (double bin = std::max(std::ceil(position - reach), 0.0); bin <= to; bin += 1.0)
        excluded_[static_cast<std::size_t>(bin)] = true;
}

double NoiseSpectrum::MedianDensity(std::vector<double>& powers) const {
    if (powers.empty()) return 0.0;
    const auto middle = powers.begin() + static_cast<std::ptrdiff_t>((powers.size() - 1) / 2);
    std::nth_element(powers.begin(), middle, powers.end());
    return *middle / MedianOfMean(records_);
}

// Reaches farther than the neighbourhood where most of it is excluded.
void NoiseSpectrum::CollectNeighbours(double position, std::vector<double>& powers) const {
    const auto size = static_cast<std::ptrdiff_t>(power_.size());
    const auto centre = static_cast<std::ptrdiff_t>(std::lround(position));
    for (std::ptrdiff_t away = kNearestNeighbour; away < size; ++away) {
        if (away > kFarthestNeighbour && powers.size() >= kFewestNeighbours) return;
        for (const std::ptrdiff_t bin : {centre - away, centre + away})
            if (bin >= 0 && bin < size && !excluded_[static_cast<std::size_t>(bin)])
                powers.push_back(power_[static_cast<std::size_t>(bin)]);
    }
}

double NoiseSpectrum::DensityAt(double position) const {
    std::vector<double> powers;
    powers.reserve(2 * (kFarthestNeighbour - kNearestNeighbour + 1));
    CollectNeighbours(position, powers);
    return MedianDensity(powers);
}

double NoiseSpectrum::RoughDensityAt(std::size_t bin) const {
    if (roughDensities_.empty()) {
        std::vector<double> powers;
        for (std::size_t start = 0; start < power_.size(); start += kRoughGroup) {
            powers.clear();
            for (std::size_t j = start; j < std::min(start + kRoughGroup, power_.size()); ++j)
                if (!excluded_[j]) powers.push_back(power_[j]);
            const bool enough = powers.size() >= kFewestNeighbours || roughDensities_.empty();
            roughDensities_.push_back(enough ? MedianDensity(powers) : roughDensities_.back());
        }
    }
    return roughDensities_[bin / kRoughGroup];
}

double NoiseSpectrum::LineSigma(double position) const {
    return std::sqrt(DensityAt(position) * enbwBins_);
}

bool NoiseSpectrum::InSkirt(std::size_t bin) const {
    return std::any_of(tones_.begin(), tones_.end(), [bin](double tone) {
        return std::abs(static_cast<double>(bin) - tone) <= kGuardBins;
    });
}

double NoiseSpectrum::PowerOutsideSkirts(const Band& band) const {
    const double size = static_cast<double>(power_.size());
    const auto from = static_cast<std::size_t>(std::clamp(std::ceil(band.lowHz / binHz_), 1.0, size));
    const auto to = static_cast<std::size_t>(std::clamp(std::floor(band.highHz / binHz_) + 1.0, 1.0, size));
    if (from >= to) return 0.0;
    std::vector<double> bins(power_.begin() + static_cast<std::ptrdiff_t>(from),
                             power_.begin() + static_cast<std::ptrdiff_t>(to));
    for (const double tone : tones_) {
        const BinSpan skirt = SkirtOf(tone, to);
        for (std::size_t bin = std::max(skirt.from, from); bin < skirt.to; ++bin) bins[bin - from] = 0.0;
    }
    return line_kernels::Sum(bins.data(), bins.size());
}

bool NoiseSpectrum::IsLine(std::size_t bin) const {
    return power_[bin] > kLineOverDensity * RoughDensityAt(bin);
}

// Part of the spectrum's power in bins that are lines: 0 to 1.
double NoiseSpectrum::LineShare() const {
    double lines = 0.0;
    for (std::size_t bin = 0; bin < power_.size(); ++bin)
        if (IsLine(bin)) lines += power_[bin];
    const double all = line_kernels::Sum(power_.data(), power_.size());
    return all > 0.0 ? lines / all : 0.0;
}

// Noise: the mean of n records of exponentially distributed power p has the mean square p^2 (1 + 1/n) and the
// variance p^2 / n. Lines: the noise beside them moves their power.
double NoiseSpectrum::Variance(std::size_t bin) const {
    const double density = RoughDensityAt(bin);
    if (power_[bin] > kLineOverDensity * density) return 2.0 * power_[bin] * density * enbwBins_ / records_;
    return Square(power_[bin]) * correlatedBins_ / (records_ + 1.0);
}

const NoiseSpectrum::CleanBins& NoiseSpectrum::Clean() const {
    if (!clean_.power.empty()) return clean_;
    clean_.power = power_;
    clean_.variance.resize(power_.size());
    for (std::size_t bin = 0; bin < power_.size(); ++bin) clean_.variance[bin] = Variance(bin);
    clean_.kurtosis = LineShare() < kLargestLineShare ? excessKurtosis_ : 0.0;
    for (const double tone : tones_) {
        const BinSpan skirt = SkirtOf(tone, power_.size());
        const double density = DensityAt(tone);
        for (std::size_t bin = skirt.from; bin < skirt.to; ++bin) {
            clean_.power[bin] = density;
            clean_.variance[bin] = 0.0;
        }
    }
    return clean_;
}

// All bins of a skirt have the density measured once, so their errors add.
double NoiseSpectrum::SkirtVariance(double tone, const Band& band, std::span<const double> powerGains) const {
    constexpr double kNeighbours = 2.0 * (kFarthestNeighbour - kNearestNeighbour + 1);
    constexpr double kMedianVariance = 1.0 / (std::numbers::ln2 * std::numbers::ln2 * kNeighbours);
    const BinSpan skirt = SkirtOf(tone, power_.size());
    double power = 0.0;
    for (std::size_t bin = skirt.from; bin < skirt.to; ++bin)
        power += ShareInBand(bin, binHz_, band) * GainAt(powerGains, static_cast<double>(bin)) *
                 Clean().power[bin];
    return Square(power) * kMedianVariance * correlatedBins_ / records_;
}

double NoiseSpectrum::SwallowedPower(const Band& band, std::span<const double> powerGains) const {
    double sum = 0.0;
    for (const double line : lines_) {
        const bool inSkirt = std::any_of(tones_.begin(), tones_.end(),
                                         [line](double tone) { return std::abs(line - tone) < kGuardBins; });
        if (!inSkirt && band.Contains(line * binHz_))
            sum += GainAt(powerGains, line) * swallowedBins_ * DensityAt(line);
    }
    return sum;
}

NoisePower NoiseSpectrum::InBand(const Band& band, std::span<const double> powerGains) const {
    const CleanBins& clean = Clean();
    const double size = static_cast<double>(power_.size());
    // The bins at both ends count by their share.
    const auto from = static_cast<std::size_t>(std::clamp(std::round(band.lowHz / binHz_), 0.0, size - 1.0));
    const auto last = static_cast<std::size_t>(std::clamp(std::round(band.highHz / binHz_), 0.0, size - 1.0));
    double mean = SwallowedPower(band, powerGains);
    double variance = 0.0;
    for (const std::size_t bin : {from, last}) {
        const double gain = ShareInBand(bin, binHz_, band) * GainAt(powerGains, static_cast<double>(bin));
        mean += gain * clean.power[bin];
        variance += gain * gain * clean.variance[bin];
        if (from == last) break;
    }
    if (last > from + 1) {
        const std::size_t n = last - from - 1;
        mean += WeightedSum(powerGains, clean.power, from + 1, n);
        variance += SquareWeightedSum(powerGains, clean.variance, from + 1, n);
    }
    for (const double tone : tones_) variance += SkirtVariance(tone, band, powerGains);
    // The variance of a quadratic form of independent samples contains their excess kurtosis.
    const double change = clean.kurtosis * correlatedBins_ / (2.0 * (size - 1.0)) * Square(mean) / records_;
    return {mean, std::sqrt(std::max(variance + change, kLeastVariance * variance))};
}

NoisePower NoiseSpectrum::Skirt(double position) const {
    const BinSpan skirt = SkirtOf(position, power_.size());
    const auto bins = static_cast<double>(skirt.to - skirt.from);
    const double mean = line_kernels::Sum(&power_[skirt.from], skirt.to - skirt.from);
    const double density = DensityAt(position);
    const double variance = (correlatedBins_ * bins * density + 2.0 * enbwBins_ * mean) * density / records_;
    return {mean, std::sqrt(variance)};
}

}  // namespace sonavex
