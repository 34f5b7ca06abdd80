#include "core/analyzer/Spurs.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

#include "core/analyzer/AnalysisWindow.h"

namespace sonavex {
namespace {

constexpr double kOverDensity = 50.0;  // 17 dB
constexpr std::size_t kHalfLobe = static_cast<std::size_t>(kHalfLobeBins);
constexpr std::size_t kMostSpurs = 50;
constexpr std::size_t kFirstBin = 3;  // below it the fit of dc has emptied the bins

bool IsPeak(std::span<const double> power, std::size_t bin) {
    if (power[bin] <= power[bin - 1] || power[bin] < power[bin + 1]) return false;
    const std::size_t from = bin < kHalfLobe ? 0 : bin - kHalfLobe;
    const std::size_t to = std::min(bin + kHalfLobe + 1, power.size());
    for (std::size_t j = from; j < to; ++j)
        if (power[j] > power[bin]) return false;
    return true;
}

// Distance of a line from the bin, from the ratio of the amplitudes in the bins beside it.
double OffsetFrom(double left, double right) {
    double low = -0.5;
    double high = 0.5;
    for (int step = 0; step < 40; ++step) {
        const double middle = 0.5 * (low + high);
        const bool farther =
            right * AnalysisWindow::Response(-1.0 - middle) > left * AnalysisWindow::Response(1.0 - middle);
        (farther ? low : high) = middle;
    }
    return 0.5 * (low + high);
}

}  // namespace

std::vector<SpurLine> FindSpurs(const NoiseSpectrum& noise) {
    const std::span<const double> power = noise.BinPowers();
    std::vector<SpurLine> spurs;
    for (std::size_t bin = kFirstBin; bin + 1 < power.size(); ++bin) {
        // The rough density is a cheap first test; half the threshold, because it is rough.
        if (power[bin] <= 0.5 * kOverDensity * noise.RoughDensityAt(bin) || !IsPeak(power, bin)) continue;
        const auto position = static_cast<double>(bin);
        if (noise.InSkirt(bin) || power[bin] <= kOverDensity * noise.DensityAt(position)) continue;
        const double offset = OffsetFrom(std::sqrt(power[bin - 1]), std::sqrt(power[bin + 1]));
        const double onBin = std::sqrt(power[bin]) / AnalysisWindow::Response(offset);
        spurs.push_back({(position + offset) * noise.BinHz(), onBin * std::sqrt(2.0 * noise.EnbwBins())});
    }
    std::sort(spurs.begin(), spurs.end(),
              [](const SpurLine& a, const SpurLine& b) { return a.amplitude > b.amplitude; });
    if (spurs.size() > kMostSpurs) spurs.resize(kMostSpurs);
    return spurs;
}

}  // namespace sonavex
