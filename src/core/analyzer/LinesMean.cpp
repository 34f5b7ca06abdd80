#include <algorithm>
#include <cmath>
#include <utility>

#include "core/analyzer/MeasureLines.h"

namespace sonavex {
namespace {

// What counts as another frequency or level.
constexpr double kSigmasOfChange = 4.0;
constexpr double kRelativeChange = 1e-7;
constexpr double kLevelChangeInDb = 0.01;

// records: how many the mean contains.
bool SameTone(const MeasuredTone& mean, const MeasuredTone& next, double records) {
    const double change = std::abs(next.frequencyHz - mean.frequencyHz);
    const double sigma =
        std::max(mean.frequencySigmaHz, next.frequencySigmaHz) * std::sqrt(1.0 + 1.0 / records);
    const bool otherFrequency =
        change > kSigmasOfChange * sigma && change > kRelativeChange * mean.frequencyHz;
    return !otherFrequency && std::abs(Decibels(next.amplitude / mean.amplitude)) <= kLevelChangeInDb;
}

bool SameLines(const LinesMeasurement& mean, const LinesMeasurement& next) {
    return mean.voids.empty() && next.voids.empty() &&
           std::equal(mean.tones.begin(), mean.tones.end(), next.tones.begin(), next.tones.end(),
                      [&mean](const MeasuredTone& a, const MeasuredTone& b) {
                          return SameTone(a, b, static_cast<double>(mean.blocks));
                      }) &&
           std::equal(mean.products.begin(), mean.products.end(), next.products.begin(), next.products.end(),
                      [](const MeasuredProduct& a, const MeasuredProduct& b) {
                          return a.n1 == b.n1 && a.n2 == b.n2;
                      });
}

template <typename Number>
void Approach(Number& mean, const Number& next, double weight) {
    mean += weight * (next - mean);
}

void AddWarning(std::vector<Warning>& warnings, const Warning& warning) {
    if (std::none_of(warnings.begin(), warnings.end(),
                     [&](const Warning& known) { return known.code == warning.code; }))
        warnings.push_back(warning);
}

}  // namespace

void AddToMean(std::optional<LinesMeasurement>& mean, LinesMeasurement next, std::size_t shift) {
    if (!mean || !SameLines(*mean, next)) {
        mean = std::move(next);
        return;
    }
    mean->blocks += 1;
    mean->lastShift = shift;
    const double weight = 1.0 / static_cast<double>(mean->blocks);
    for (std::size_t i = 0; i < next.tones.size(); ++i) {
        Approach(mean->tones[i].frequencyHz, next.tones[i].frequencyHz, weight);
        Approach(mean->tones[i].frequencySigmaHz, next.tones[i].frequencySigmaHz, weight);
        Approach(mean->tones[i].amplitude, next.tones[i].amplitude, weight);
    }
    for (std::size_t i = 0; i < next.products.size(); ++i)
        Approach(mean->products[i].amplitude, next.products[i].amplitude, weight);
    Approach(mean->dc, next.dc, weight);
    Approach(mean->excessKurtosis, next.excessKurtosis, weight);
    mean->peak = std::max(mean->peak, next.peak);
    for (std::size_t j = 0; j < next.residualPower.size(); ++j)
        Approach(mean->residualPower[j], next.residualPower[j], weight);
    for (const Warning& warning : next.warnings) AddWarning(mean->warnings, warning);
}

}  // namespace sonavex
