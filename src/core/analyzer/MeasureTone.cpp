#include "core/analyzer/MeasureTone.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <utility>

#include "core/analyzer/Damage.h"
#include "core/analyzer/FindTone.h"
#include "core/analyzer/RecordFaults.h"
#include "core/analyzer/ToneChecks.h"

namespace sonavex {
namespace {

constexpr int kFewestOrders = 20;

// The interpolated position of a peak is this exact, so a tone at exactly 8 bins passes the first test.
constexpr double kPeakError = 0.1;

BinRange SearchRange(const RecordPlan& plan, const ToneSettings& settings) {
    if (settings.playedHz) {
        const double position = *settings.playedHz / plan.BinHz();
        const double reach = 1000e-6 * position + 3.0;
        return {position - reach, position + reach};
    }
    if (settings.fundamentalHz) {
        const double position = *settings.fundamentalHz / plan.BinHz();
        return {0.99 * position, 1.01 * position};
    }
    return {1.0, 0.5 * static_cast<double>(plan.Length())};
}

std::vector<double> LinePositions(const RecordPlan& plan, const FittedLines& fit) {
    std::vector<double> positions;
    for (const FittedLine& line : fit.lines)
        positions.push_back(line.frequency.Sum() * static_cast<double>(plan.Length()));
    return positions;
}

// Phases referred to the tone itself, as sines.
std::vector<HarmonicRatio> Ratios(const FittedLines& fit) {
    const std::complex<double> fundamental = fit.lines.front().amplitude;
    const double turned = std::arg(fundamental) + 0.5 * std::numbers::pi;
    std::vector<HarmonicRatio> harmonics;
    for (std::size_t i = 1; i < fit.lines.size(); ++i) {
        const auto order = static_cast<int>(i) + 1;
        const double phase =
            std::arg(fit.lines[i].amplitude) + 0.5 * std::numbers::pi - static_cast<double>(order) * turned;
        const double ratio = std::abs(fit.lines[i].amplitude) / std::abs(fundamental);
        harmonics.push_back({order, std::polar(ratio, phase)});
    }
    return harmonics;
}

ToneMeasurement Begin(const RecordPlan& plan, const Record& record) {
    ToneMeasurement measurement;
    measurement.rateHz = plan.RateHz();
    measurement.bits = record.bits;
    measurement.floatingPoint = record.floatingPoint;
    return measurement;
}

void TakeValues(const RecordPlan& plan, const FittedLines& fit, std::vector<double> residualPower,
                ToneMeasurement& measurement) {
    measurement.frequencyHz = fit.lines.front().frequency.Hertz(plan.RateHz());
    measurement.amplitude = std::abs(fit.lines.front().amplitude);
    measurement.phase = std::arg(fit.lines.front().amplitude) + 0.5 * std::numbers::pi;
    measurement.dc = fit.dc;
    measurement.harmonics = Ratios(fit);
    measurement.residualPower = std::move(residualPower);
    measurement.excessKurtosis = ExcessKurtosis(fit.residual);
}

// Harmonics and everything in the band but the skirt of the tone, relative to the fundamental.
double RoughThdn(const NoiseSpectrum& noise, const ToneMeasurement& measurement, const Band& band) {
    double squares = 0.0;
    for (const HarmonicRatio& harmonic : measurement.harmonics)
        if (band.Contains(harmonic.order * measurement.frequencyHz)) squares += std::norm(harmonic.ratio);
    const double fundamentalPower = 0.5 * measurement.amplitude * measurement.amplitude;
    return std::sqrt(squares + noise.PowerOutsideSkirts(band) / fundamentalPower);
}

void AddDamage(const NoiseSpectrum& noise, const FittedLines& fit, const Band& band, double startSeconds,
               ToneMeasurement& measurement) {
    const Damage damage = FindDamage(fit.residual, fit.lines.front(), measurement.rateHz,
                                     RoughThdn(noise, measurement, band), startSeconds);
    if (damage.disturbed) measurement.voids.push_back(*damage.disturbed);
    if (damage.impulsiveNoise) measurement.warnings.push_back(*damage.impulsiveNoise);
}

// Fits the tone near a position in bins.
void MeasureAt(const RecordPlan& plan, const Record& record, double position, const ToneSettings& settings,
               FittedLines& fit, ToneMeasurement& measurement) {
    fit = FitLines(plan.Window(), record.samples,
                   HarmonicLines(plan, position * plan.BinHz(), settings.highestOrder));
    std::vector<double> power = plan.PowerSpectrum(fit.residual);
    const std::vector<double> positions = LinePositions(plan, fit);
    const double amplitude = std::abs(fit.lines.front().amplitude);
    const NoiseSpectrum noise(plan, power, positions, {positions.front()});
    const double density = noise.DensityAt(positions.front());
    measurement.frequencySigmaHz = FrequencySigmaHz(plan, amplitude, density);
    if (const std::optional<Void> fault = PositionFault(plan, positions.front()))
        measurement.voids.push_back(*fault);
    else if (!StandsOut(plan, amplitude, density))
        measurement.voids.push_back(NoTone("No line is 20 dB above the noise around it."));
    else {
        TakeValues(plan, fit, std::move(power), measurement);
        AddDamage(noise, fit, settings.band, record.startSeconds, measurement);
    }
}

// A peak of noise at a low frequency is no tone.
Void LowPeakFault(const RecordPlan& plan, std::vector<double> power, double position) {
    const double peak = power[static_cast<std::size_t>(std::lround(position))];
    const NoiseSpectrum spectrum(plan, std::move(power), {}, {});
    if (peak < kToneOverNoise * spectrum.DensityAt(position))
        return NoTone("No line is 20 dB above the noise around it.");
    return *PositionFault(plan, 0.0);
}

}  // namespace

std::vector<LineToFit> HarmonicLines(const RecordPlan& plan, double fundamentalHz, int highestOrder) {
    const TurnsPerSample start = FrequencyOf(fundamentalHz, plan.RateHz());
    const double highest = 0.5 - kGuardBins / static_cast<double>(plan.Length());
    std::vector<LineToFit> lines = {{start, {1.0, 0.0}, 0}};
    for (int k = 2; k <= std::max(kFewestOrders, highestOrder) && k * start.Sum() < highest; ++k)
        lines.push_back({start.Times(k), {static_cast<double>(k), 0.0}, std::nullopt});
    return lines;
}

ToneMeasurement MeasureTone(const RecordPlan& plan, Record record, const ToneSettings& settings,
                            FittedLines* fit) {
    ToneMeasurement measurement = Begin(plan, record);
    if (const std::optional<Void> fault = FaultOf(record, plan.Length())) {
        measurement.voids.push_back(*fault);
        return measurement;
    }
    record = record.Last(plan.Length());
    AddLevelFaults(record, measurement.voids, measurement.warnings);
    std::vector<double> power = plan.AcPowerSpectrum(record.samples);
    const std::optional<double> position = StrongestPeak(power, SearchRange(plan, settings));
    FittedLines own;
    if (!position)
        measurement.voids.push_back(NoTone("There is no line at the expected frequency."));
    else if (*position < kGuardBins - kPeakError)
        measurement.voids.push_back(LowPeakFault(plan, std::move(power), *position));
    else
        MeasureAt(plan, record, *position, settings, fit == nullptr ? own : *fit, measurement);
    return measurement;
}

Reading AnalyzeTone(const RecordPlan& plan, const Record& record, const ToneSettings& settings) {
    return MakeReading(plan, MeasureTone(plan, record, settings), settings);
}

}  // namespace sonavex
