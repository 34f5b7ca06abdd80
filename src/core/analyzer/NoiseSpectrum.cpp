#include "core/analyzer/NoiseSpectrum.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <utility>

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

double Squared(double x) {
    return x * x;
}

// Median of the mean of `records` exponentially distributed powers of mean 1: ln 2 for one, tends to 1. The
// median of the gamma distribution as a series.
double MedianOfMean(double records) {
    return 1.0 - (1.0 / 3.0 - (8.0 / 405.0 + 0.00673 / records) / records) / records;
}

// The part of a bin that lies in the band.
double ShareInBand(double bin, double binHz, const Band& band) {
    const double from = std::max(bin - 0.5, band.lowHz / binHz);
    const double to = std::min(bin + 0.5, band.highHz / binHz);
    return std::clamp(to - from, 0.0, 1.0);
}

double GainAt(std::span<const double> gains, double position) {
    if (gains.empty()) return 1.0;
    const double last = static_cast<double>(gains.size()) - 1.0;
    return gains[static_cast<std::size_t>(std::clamp(std::round(position), 0.0, last))];
}

}  // namespace

NoiseSpectrum::NoiseSpectrum(const RecordPlan& plan, std::vector<double> power, std::vector<double> lines,
                             std::vector<double> tones, double records)
    : enbwBins_(plan.Window().EnbwBins()),
      swallowedBins_(plan.Window().SwallowedBins()),
      correlatedBins_(plan.Window().CorrelatedBins()),
      binHz_(plan.BinHz()),
      records_(records),
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

// Noise: the mean of n records of exponentially distributed power p has the mean square p^2 (1 + 1/n) and the
// variance p^2 / n. Lines: the noise beside them moves their power.
double NoiseSpectrum::Variance(std::size_t bin, double gain) const {
    const double density = RoughDensityAt(bin);
    if (power_[bin] > kLineOverDensity * density)
        return 2.0 * gain * gain * power_[bin] * density * enbwBins_ / records_;
    return Squared(gain * power_[bin]) * correlatedBins_ / (records_ + 1.0);
}

double NoiseSpectrum::SkirtPower(const Band& band, std::span<const double> powerGains, double tone) const {
    const double last = static_cast<double>(power_.size()) - 1.0;
    double bins = 0.0;
    for (double bin = std::max(std::ceil(tone - kGuardBins), 0.0); bin <= std::min(tone + kGuardBins, last);
         bin += 1.0)
        bins += ShareInBand(bin, binHz_, band) * GainAt(powerGains, bin);
    return bins == 0.0 ? 0.0 : bins * DensityAt(tone);
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
    const double last = static_cast<double>(power_.size()) - 1.0;
    const double from = std::max(std::floor(band.lowHz / binHz_ - 0.5), 0.0);
    const double to = std::min(std::ceil(band.highHz / binHz_ + 0.5), last);
    double mean = SwallowedPower(band, powerGains);
    double variance = 0.0;
    for (double position = from; position <= to; position += 1.0) {
        const auto bin = static_cast<std::size_t>(position);
        if (excluded_[bin] && InSkirt(bin)) continue;
        const double gain = ShareInBand(position, binHz_, band) * GainAt(powerGains, position);
        mean += gain * power_[bin];
        variance += Variance(bin, gain);
    }
    for (const double tone : tones_) {
        const double skirt = SkirtPower(band, powerGains, tone);
        constexpr double kNeighbours = 2.0 * (kFarthestNeighbour - kNearestNeighbour + 1);
        constexpr double kMedianVariance = 1.0 / (std::numbers::ln2 * std::numbers::ln2 * kNeighbours);
        mean += skirt;
        variance += Squared(skirt) * kMedianVariance * correlatedBins_ / records_;
    }
    return {mean, std::sqrt(variance)};
}

NoisePower NoiseSpectrum::Skirt(double position) const {
    const double last = static_cast<double>(power_.size()) - 1.0;
    double mean = 0.0;
    double bins = 0.0;
    const double to = std::min(position + kGuardBins, last);
    for (double bin = std::max(std::ceil(position - kGuardBins), 0.0); bin <= to; bin += 1.0, bins += 1.0)
        mean += power_[static_cast<std::size_t>(bin)];
    const double density = DensityAt(position);
    const double variance = (correlatedBins_ * bins * density + 2.0 * enbwBins_ * mean) * density / records_;
    return {mean, std::sqrt(variance)};
}

}  // namespace sonavex
