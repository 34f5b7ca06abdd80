#include "core/plot/WavePlot.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "core/plot/WaveColumns.h"
#include "core/text/Decimals.h"

namespace sonavex {
namespace {

constexpr double kSmallestScale = 1e-8;
// Smaller full scales are written in µFS.
constexpr double kSmallestInFs = 0.01;

double ScaleFor(double peak) {
    const double power = std::pow(10.0, std::floor(std::log10(std::max(peak, kSmallestScale))));
    for (const double step : {1.0, 1.5, 2.0, 3.0, 4.0, 5.0, 6.0, 8.0})
        if (step * power >= peak * (1.0 - 1e-9)) return step * power;
    return 10.0 * power;
}

double Rescaled(double scale, double peak) {
    return peak > scale || peak <= 0.5 * scale ? ScaleFor(peak) : scale;
}

}  // namespace

void WavePlot::Show(std::shared_ptr<const WaveRecord> record) {
    if (record) {
        const WavePeaks peaks = PeaksOf(*record);
        signalScale_ = std::min(1.0, Rescaled(signalScale_, peaks.signal));
        residualScale_ = Rescaled(residualScale_, peaks.captured);
    }
    Assign(record_, std::move(record));
}

double WavePlot::Seconds() const {
    return periods_ * (record_ ? PeriodSeconds(*record_) : kSecondsWithoutTone);
}

std::string WavePlot::SignalScaleText() const {
    const AxisTexts texts = TextsOf(signalScale_);
    return "±" + texts.value + ' ' + texts.unit;
}

std::string WavePlot::ResidualScaleText() const {
    const AxisTexts texts = TextsOf(residualScale_);
    return "±" + texts.value + ' ' + texts.unit + " = " + WithDecimals(20.0 * std::log10(residualScale_), 1) +
           " dBFS";
}

WavePlot::AxisTexts WavePlot::TextsOf(double fullScale) {
    constexpr int kDecimals = 3;
    if (fullScale < kSmallestInFs) return {WithoutTrailingZeros(1e6 * fullScale, kDecimals), "µFS"};
    return {WithoutTrailingZeros(fullScale, kDecimals), "FS"};
}

std::string WavePlot::Description() const {
    if (!record_) return "Waveform: nothing measured.";
    return "Waveform of " + WithoutTrailingZeros(1e3 * Seconds(), 3) + " ms, " + SignalScaleText() +
           ". Residual, " + ResidualScaleText() + ".";
}

}  // namespace sonavex
