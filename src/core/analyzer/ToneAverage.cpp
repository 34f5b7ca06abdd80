#include "core/analyzer/ToneAverage.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace sonavex {
namespace {

// What counts as another frequency or level.
constexpr double kFrequencySigmas = 4.0;
constexpr double kFrequencyChange = 1e-7;
constexpr double kLevelChangeDb = 0.01;

// Brings powers down to -500 dB into the range of a float.
constexpr double kFloatScale = 0x1p60;

void MixValue(double& mean, double next, double weight) {
    mean += weight * (next - mean);
}

bool Contains(const std::vector<Warning>& warnings, WarningCode code) {
    return std::any_of(warnings.begin(), warnings.end(),
                       [code](const Warning& warning) { return warning.code == code; });
}

// All values but the spectrum.
void MixValues(ToneMeasurement& mean, const ToneMeasurement& next, double weight) {
    MixValue(mean.frequencyHz, next.frequencyHz, weight);
    MixValue(mean.amplitude, next.amplitude, weight);
    MixValue(mean.dc, next.dc, weight);
    MixValue(mean.frequencySigmaHz, next.frequencySigmaHz, weight);
    MixValue(mean.excessKurtosis, next.excessKurtosis, weight);
    mean.harmonics.resize(std::min(mean.harmonics.size(), next.harmonics.size()));
    for (std::size_t i = 0; i < mean.harmonics.size(); ++i) {
        std::complex<double>& ratio = mean.harmonics[i].ratio;
        ratio += weight * (next.harmonics[i].ratio - ratio);
    }
    for (const Warning& warning : next.warnings)
        if (!Contains(mean.warnings, warning.code)) mean.warnings.push_back(warning);
}

}  // namespace

ToneAverage::ToneAverage(const RecordPlan& plan, std::size_t records)
    : records_(records), overlap_(plan.Overlap()) {}

const ToneMeasurement& ToneAverage::Add(ToneMeasurement next, std::size_t shift) {
    if (!Continues(next))
        Begin(std::move(next));
    else if (records_ == 0)
        AddToAll(next, shift);
    else
        AddToNewest(std::move(next), shift);
    return *mean_;
}

void ToneAverage::Restart() {
    mean_.reset();
    kept_.clear();
}

void ToneAverage::Begin(ToneMeasurement first) {
    Restart();
    if (records_ > 1) Keep(first);
    mean_ = std::move(first);
}

void ToneAverage::AddToAll(const ToneMeasurement& next, std::size_t shift) {
    mean_->blocks += 1;
    const double weight = 1.0 / static_cast<double>(mean_->blocks);
    MixValues(*mean_, next, weight);
    for (std::size_t j = 0; j < next.residualPower.size(); ++j)
        MixValue(mean_->residualPower[j], next.residualPower[j], weight);
    CountRecords(shift);
}

void ToneAverage::AddToNewest(ToneMeasurement next, std::size_t shift) {
    if (records_ == 1) {
        mean_ = std::move(next);
        return;
    }
    Keep(std::move(next));
    if (kept_.size() > records_) kept_.pop_front();
    MeanOfKept();
    CountRecords(shift);
}

void ToneAverage::Keep(ToneMeasurement next) {
    Kept kept;
    kept.scaledPower.reserve(next.residualPower.size());
    for (const double power : next.residualPower)
        kept.scaledPower.push_back(static_cast<float>(power * kFloatScale));
    next.residualPower = std::vector<double>();  // clear() would keep its memory
    kept.measurement = std::move(next);
    kept_.push_back(std::move(kept));
}

// Computed from the records each time, so that a record that drops out leaves nothing behind.
void ToneAverage::MeanOfKept() {
    std::vector<double> power(kept_.front().scaledPower.size());
    mean_ = kept_.front().measurement;
    mean_->blocks = kept_.size();
    for (std::size_t i = 1; i < kept_.size(); ++i)
        MixValues(*mean_, kept_[i].measurement, 1.0 / static_cast<double>(i + 1));
    for (const Kept& kept : kept_)
        for (std::size_t j = 0; j < power.size(); ++j) power[j] += static_cast<double>(kept.scaledPower[j]);
    for (double& sum : power) sum /= kFloatScale * static_cast<double>(kept_.size());
    mean_->residualPower = std::move(power);
}

void ToneAverage::CountRecords(std::size_t lastShift) {
    const IndependentRecords independent = overlap_.Of(mean_->blocks, lastShift);
    mean_->amplitudeRecords = independent.amplitude;
    mean_->frequencyRecords = independent.frequency;
    mean_->powerRecords = independent.power;
}

bool ToneAverage::Continues(const ToneMeasurement& next) const {
    if (!mean_ || !mean_->voids.empty() || !next.voids.empty()) return false;
    if (mean_->harmonics.size() != next.harmonics.size()) return false;
    const double sigma = std::max(next.frequencySigmaHz, mean_->frequencySigmaHz) *
                         std::sqrt(1.0 + 1.0 / mean_->frequencyRecords);
    const double change = std::abs(next.frequencyHz - mean_->frequencyHz);
    const bool otherFrequency =
        change > kFrequencySigmas * sigma && change > kFrequencyChange * mean_->frequencyHz;
    return !otherFrequency && std::abs(Decibels(next.amplitude / mean_->amplitude)) <= kLevelChangeDb;
}

ToneMeasurement MeanOfSeparate(const ToneMeasurement& one, const ToneMeasurement& other) {
    ToneMeasurement mean = one;
    MixValues(mean, other, 0.5);
    for (std::size_t j = 0; j < mean.residualPower.size(); ++j)
        MixValue(mean.residualPower[j], other.residualPower[j], 0.5);
    mean.blocks = 2;
    mean.amplitudeRecords = mean.frequencyRecords = mean.powerRecords = 2.0;
    return mean;
}

}  // namespace sonavex
