#include "core/stimulus/RenderStimulus.h"

#include <algorithm>
#include <cmath>
#include <complex>
#include <map>
#include <numbers>
#include <utility>

#include "core/stimulus/PeriodTransform.h"
#include "core/stimulus/RandomWord.h"
#include "core/stimulus/SampleWord.h"

namespace sonavex {
namespace {

using Complex = std::complex<double>;
using Samples = std::vector<double>;

constexpr double kLowestPinkHz = 10.0;
constexpr int kPhaseChoices = 16;

// A bin that plays amplitude sin(2 pi k n / N + phase); phase in turns.
Complex SineBin(double amplitude, double turns = 0.0) {
    return std::polar(amplitude, 2.0 * std::numbers::pi * (turns - 0.25));
}

double RandomTurns(std::size_t index) {
    return std::ldexp(static_cast<double>(RandomWord(index) >> 11U), -53);
}

std::size_t BinOf(const StimulusPlan& plan, const PlannedTone& tone) {
    return static_cast<std::size_t>(
        std::nearbyint(tone.hertz / plan.rateHz * static_cast<double>(plan.length)));
}

double PeakOf(const Samples& samples) {
    double peak = 0;
    for (const double sample : samples) peak = std::max(peak, std::abs(sample));
    return peak;
}

double RmsOf(const Samples& samples) {
    double sum = 0;
    for (const double sample : samples) sum += sample * sample;
    return std::sqrt(sum / static_cast<double>(samples.size()));
}

void Clip(Samples& samples, double limit) {
    for (double& sample : samples) sample = std::clamp(sample, -limit, limit);
}

void Scale(Samples& samples, double factor) {
    for (double& sample : samples) sample *= factor;
}

// The amplitude of harmonic `order` of a square, triangle or sawtooth relative to the fundamental.
double HarmonicAmplitude(StimulusShape shape, std::size_t order) {
    const auto k = static_cast<double>(order);
    if (shape == StimulusShape::kSawtooth) return order % 2 == 0 ? -1.0 / k : 1.0 / k;
    if (order % 2 == 0) return 0.0;
    if (shape == StimulusShape::kSquare) return 1.0 / k;
    return order % 4 == 1 ? 1.0 / (k * k) : -1.0 / (k * k);
}

std::vector<Complex> HarmonicBins(const StimulusPlan& plan) {
    std::vector<Complex> bins(plan.length);
    const std::size_t first = BinOf(plan, plan.tones.front());
    const double highest = kHighestPart * static_cast<double>(plan.length);
    for (std::size_t order = 1; static_cast<double>(order * first) <= highest; ++order)
        bins[order * first] = SineBin(HarmonicAmplitude(plan.shape, order));
    return bins;
}

// Low-crest phases for tones at equal distances (Schroeder 1970): each tone has its group delay at the part
// of the period that the power of the tones below it has.
std::vector<Complex> SchroederBins(const StimulusPlan& plan) {
    std::map<std::size_t, double> amplitudes;  // by bin
    double power = 0;
    for (const PlannedTone& tone : plan.tones) {
        amplitudes[BinOf(plan, tone)] = tone.amplitude;
        power += tone.amplitude * tone.amplitude;
    }
    std::vector<Complex> bins(plan.length);
    double delay = 0;  // of a period
    double turns = 0;
    std::size_t below = 0;
    for (const auto& [bin, amplitude] : amplitudes) {
        turns -= delay * static_cast<double>(bin - below);
        turns -= std::floor(turns);
        bins[bin] = SineBin(amplitude, turns);
        delay += amplitude * amplitude / power;
        below = bin;
    }
    return bins;
}

std::vector<Complex> RandomBins(const StimulusPlan& plan, int choice) {
    std::vector<Complex> bins(plan.length);
    for (const PlannedTone& tone : plan.tones) {
        const std::size_t bin = BinOf(plan, tone);
        bins[bin] =
            SineBin(tone.amplitude, RandomTurns(bin + plan.length * static_cast<std::size_t>(choice)));
    }
    return bins;
}

// The period with the lowest peak of several choices of phases. For tones at equal ratios no rule for the
// phases is better than chance.
Samples LowCrestPeriod(const StimulusPlan& plan, const PeriodTransform& transform) {
    Samples best = transform.Synthesize(SchroederBins(plan));
    for (int choice = 1; choice < kPhaseChoices; ++choice) {
        Samples period = transform.Synthesize(RandomBins(plan, choice));
        if (PeakOf(period) < PeakOf(best)) best = std::move(period);
    }
    return best;
}

// Equal or, for pink noise, falling magnitudes and random phases.
std::vector<Complex> NoiseBins(const StimulusPlan& plan) {
    std::vector<Complex> bins(plan.length);
    const bool pink = plan.shape == StimulusShape::kPinkNoise;
    const double lowest = pink ? kLowestPinkHz / plan.rateHz * static_cast<double>(plan.length) : 1.0;
    for (std::size_t k = 1; k < plan.length / 2; ++k) {
        if (static_cast<double>(k) < lowest) continue;
        bins[k] = SineBin(pink ? 1.0 / std::sqrt(static_cast<double>(k)) : 1.0, RandomTurns(k));
    }
    return bins;
}

// Clips the few samples beyond the crest factor and scales to the rms.
void LimitCrest(Samples& samples, double rms) {
    for (double now = RmsOf(samples); PeakOf(samples) > kNoiseCrest * now; now = RmsOf(samples)) {
        Clip(samples, 0.9999 * kNoiseCrest * now);
    }
    Scale(samples, rms / RmsOf(samples));
}

std::vector<StimulusLine> LinesOf(const StimulusPlan& plan, double scale) {
    std::vector<StimulusLine> lines;
    for (const PlannedTone& tone : plan.tones)
        lines.push_back({tone.step, tone.hertz, scale * tone.amplitude});
    return lines;
}

StimulusSignal RenderTones(const StimulusPlan& plan, double peak) {
    double sum = 0;
    for (const PlannedTone& tone : plan.tones) sum += tone.amplitude;
    return StimulusSignal(LinesOf(plan, peak / sum));
}

StimulusSignal RenderPeriod(const StimulusPlan& plan, double peak) {
    const PeriodTransform transform(plan.length);
    Samples period =
        HasHarmonics(plan.shape) ? transform.Synthesize(HarmonicBins(plan)) : LowCrestPeriod(plan, transform);
    const double scale = peak / PeakOf(period);
    Scale(period, scale);
    return {LinesOf(plan, scale), std::move(period)};
}

StimulusSignal RenderNoise(const StimulusPlan& plan, double peak) {
    Samples period = PeriodTransform(plan.length).Synthesize(NoiseBins(plan));
    LimitCrest(period, peak / std::sqrt(2.0));
    return {{}, std::move(period)};
}

}  // namespace

StimulusSignal RenderStimulus(const StimulusPlan& plan) {
    const double peak = std::pow(10.0, plan.levelDbfs / 20.0);
    if (IsNoise(plan.shape)) return RenderNoise(plan, peak);
    return plan.Periodic() ? RenderPeriod(plan, peak) : RenderTones(plan, peak);
}

}  // namespace sonavex
