#include "core/analyzer/MeasureLines.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "core/analyzer/Damage.h"
#include "core/analyzer/FindTone.h"
#include "core/analyzer/RecordFaults.h"
#include "core/analyzer/Square.h"
#include "core/analyzer/ToneChecks.h"

namespace sonavex {
namespace {

constexpr int kHighestProduct = 5;

// The window couples lines 3 bins apart by 12 %, 6 bins apart by 2.6e-5.
constexpr double kLeastDistanceBins = 6.0;

double HighestPosition(const RecordPlan& plan) {
    return 0.5 * static_cast<double>(plan.Length()) - kGuardBins;
}

// Whether the record can be measured; its faults otherwise.
bool Begin(const RecordPlan& plan, Record& record, bool silenceIsFault, LinesMeasurement& measurement) {
    measurement.bits = record.bits;
    measurement.floatingPoint = record.floatingPoint;
    const std::optional<Void> fault = FaultOf(record, plan.Length());
    if (fault && (silenceIsFault || fault->code != VoidCode::kSilence)) {
        measurement.voids.push_back(*fault);
        return false;
    }
    record = record.Last(plan.Length());
    AddLevelFaults(record, measurement.voids, measurement.warnings);
    return true;
}

// Distance in bins that a tone of this program may have from where it is expected: the clocks of input and
// output differ.
double ReachOfPlayedTone(double expectedBins) {
    return 1000e-6 * expectedBins + 3.0;
}

double ReachOfGivenTone(double expectedBins) {
    return 0.01 * expectedBins + 1.0;
}

// Positions in bins of the two strongest lines, or of the strongest ones near given frequencies.
std::vector<double> FindPair(const RecordPlan& plan, std::vector<double> power,
                             std::span<const double> tonesHz, PairSearch search) {
    std::vector<double> positions;
    for (int i = 0; i < 2; ++i) {
        BinRange range{1.0, static_cast<double>(power.size())};
        if (!tonesHz.empty()) {
            const double expected = tonesHz[static_cast<std::size_t>(i)] / plan.BinHz();
            const double distance = std::abs(tonesHz[1] - tonesHz[0]) / plan.BinHz();
            const double widest =
                search == PairSearch::kPlayed ? ReachOfPlayedTone(expected) : ReachOfGivenTone(expected);
            const double reach = std::min(widest, 0.5 * distance + 1.0);
            range = {expected - reach, expected + reach};
        }
        const std::optional<double> position = StrongestPeak(power, range);
        if (!position) break;
        positions.push_back(*position);
        for (std::size_t j = 0; j < power.size(); ++j)
            if (std::abs(static_cast<double>(j) - *position) <= kGuardBins) power[j] = 0.0;
    }
    std::sort(positions.begin(), positions.end());
    return positions;
}

struct Orders {
    int n1;
    int n2;
};

// All products with |n1| + |n2| = order, those of both tones before the harmonics.
std::vector<Orders> ProductsOfOrder(int order) {
    std::vector<Orders> products;
    for (int n2 = 1; n2 < order; ++n2) {
        products.push_back({n2 - order, n2});
        products.push_back({order - n2, n2});
    }
    products.push_back({order, 0});
    products.push_back({0, order});
    return products;
}

bool TooClose(std::span<const double> positions, double position) {
    return std::any_of(positions.begin(), positions.end(),
                       [position](double other) { return std::abs(other - position) < kLeastDistanceBins; });
}

// The lines to fit for two tones, and the products that cannot be separated from others.
struct PairLines {
    std::vector<LineToFit> lines;  // the tones, then the products
    std::vector<Orders> products;
    std::vector<Orders> dropped;
};

struct ProductAt {
    Orders orders;
    double position;  // bins
};

// The products up to half the rate, as positive frequencies.
std::vector<ProductAt> ProductsOf(const RecordPlan& plan, std::span<const double> tones) {
    std::vector<ProductAt> products;
    for (int order = 2; order <= kHighestProduct; ++order)
        for (const auto& [n1, n2] : ProductsOfOrder(order)) {
            const double position = n1 * tones[0] + n2 * tones[1];
            const int sign = position < 0.0 ? -1 : 1;
            if (std::abs(position) > 0.5 * static_cast<double>(plan.Length())) continue;
            products.push_back({{sign * n1, sign * n2}, std::abs(position)});
        }
    return products;
}

PairLines LinesOfPair(const RecordPlan& plan, std::span<const double> tones) {
    const TurnsPerSample f1 = FrequencyOf(tones[0] * plan.BinHz(), plan.RateHz());
    const TurnsPerSample f2 = FrequencyOf(tones[1] * plan.BinHz(), plan.RateHz());
    PairLines pair;
    pair.lines = {{f1, {1.0, 0.0}, 0}, {f2, {0.0, 1.0}, 1}};
    const std::vector<ProductAt> products = ProductsOf(plan, tones);
    for (const auto& [product, position] : products) {
        const bool outside = position < kGuardBins || position > HighestPosition(plan);
        const auto close = [at = position](const ProductAt& other) {
            return std::abs(other.position - at) < kLeastDistanceBins;
        };
        // Each product is close to itself.
        if (outside || TooClose(tones, position) ||
            std::count_if(products.begin(), products.end(), close) > 1) {
            pair.dropped.push_back(product);
            continue;
        }
        pair.products.push_back(product);
        pair.lines.push_back({f1.Times(product.n1).Plus(f2.Times(product.n2)),
                              {static_cast<double>(product.n1), static_cast<double>(product.n2)},
                              std::nullopt});
    }
    return pair;
}

std::vector<double> Positions(const RecordPlan& plan, const FittedLines& fit) {
    std::vector<double> positions;
    for (const FittedLine& line : fit.lines)
        positions.push_back(line.frequency.Sum() * static_cast<double>(plan.Length()));
    return positions;
}

// Everything in the band but the tones and their skirts, relative to the carrier.
double RoughRest(const FittedLines& fit, std::size_t tones, const FittedLine& carrier,
                 const NoiseSpectrum& noise, const Band& band) {
    double power = 0.0;
    for (std::size_t i = tones; i < fit.lines.size(); ++i) power += 0.5 * std::norm(fit.lines[i].amplitude);
    power += noise.PowerOutsideSkirts(band);
    return std::sqrt(power / (0.5 * std::norm(carrier.amplitude)));
}

void TakeDamage(const Damage& damage, LinesMeasurement& measurement) {
    if (damage.disturbed) measurement.voids.push_back(*damage.disturbed);
    if (damage.impulsiveNoise) measurement.warnings.push_back(*damage.impulsiveNoise);
}

// Takes tones, residual and damage from the fit, whose first lines are the tones.
void TakeFit(const RecordPlan& plan, const Record& record, const FittedLines& fit, std::size_t tones,
             const Band& band, LinesMeasurement& measurement) {
    const std::vector<double> positions = Positions(plan, fit);
    std::vector<double> power = plan.PowerSpectrum(fit.residual);
    const NoiseSpectrum noise(plan, power, positions,
                              {positions.begin(), positions.begin() + static_cast<std::ptrdiff_t>(tones)});
    measurement.dc = fit.dc;
    for (std::size_t i = 0; i < tones; ++i) {
        const double amplitude = std::abs(fit.lines[i].amplitude);
        const double density = noise.DensityAt(positions[i]);
        if (!StandsOut(plan, amplitude, density)) {
            measurement.voids.push_back(NoTone("A tone is less than 20 dB above the noise around it."));
            return;
        }
        measurement.tones.push_back({fit.lines[i].frequency.Hertz(plan.RateHz()),
                                     FrequencySigmaHz(plan, amplitude, density), amplitude});
    }
    const FittedLine& carrier = DamageCarrier(std::span(fit.lines).first(tones));
    TakeDamage(FindDamage(fit.residual, carrier, plan.RateHz(), RoughRest(fit, tones, carrier, noise, band),
                          record.startSeconds),
               measurement);
    measurement.residualPower = std::move(power);
    measurement.excessKurtosis = ExcessKurtosis(fit.residual);
}

void TakeProducts(const FittedLines& fit, const PairLines& pair, LinesMeasurement& measurement) {
    const double phase1 = std::arg(fit.lines[0].amplitude);
    const double phase2 = std::arg(fit.lines[1].amplitude);
    for (std::size_t i = 0; i < pair.products.size(); ++i) {
        const auto [n1, n2] = pair.products[i];
        const std::complex<double> turned = std::polar(1.0, -n1 * phase1 - n2 * phase2);
        measurement.products.push_back({n1, n2, fit.lines[i + 2].amplitude * turned});
    }
    for (const auto& [n1, n2] : pair.dropped) measurement.dropped.push_back({n1, n2, {}});
}

// Which tone of a list is found on which frequency: the ratio of the clocks, from the highest tone that is
// not faint.
std::optional<double> ClockRatio(const RecordPlan& plan, std::span<const double> power,
                                 std::span<const double> tonesHz) {
    constexpr double kFaint = 1e-4;
    const double strongest = *std::max_element(power.begin() + 3, power.end());
    for (auto tone = tonesHz.rbegin(); tone != tonesHz.rend(); ++tone) {
        const double expected = *tone / plan.BinHz();
        const double reach = ReachOfPlayedTone(expected);
        const std::optional<double> found = StrongestPeak(power, {expected - reach, expected + reach});
        if (found && power[static_cast<std::size_t>(std::lround(*found))] > kFaint * strongest)
            return *found / expected;
    }
    return std::nullopt;
}

// All tones of a multitone follow one clock ratio, which is more exact than the frequency of each tone: the
// mean of their frequency errors, weighted by amplitude^2 frequency^2.
void ShareClock(std::vector<MeasuredTone>& tones) {
    double weights = 0.0;
    double variance = 0.0;
    for (const MeasuredTone& tone : tones) {
        const double weight = Square(tone.amplitude * tone.frequencyHz);
        weights += weight;
        variance += Square(weight * tone.frequencySigmaHz / tone.frequencyHz);
    }
    for (MeasuredTone& tone : tones) tone.frequencySigmaHz = tone.frequencyHz * std::sqrt(variance) / weights;
}

}  // namespace

LinesMeasurement MeasurePair(const RecordPlan& plan, Record record, std::span<const double> tonesHz,
                             const Band& band, FittedLines* fit, PairSearch search) {
    LinesMeasurement measurement;
    if (!Begin(plan, record, true, measurement)) return measurement;
    const std::vector<double> tones = FindPair(plan, plan.AcPowerSpectrum(record.samples), tonesHz, search);
    if (tones.size() < 2) {
        measurement.voids.push_back(NoTone("There are no two tones."));
        return measurement;
    }
    for (const double tone : tones)
        if (const std::optional<Void> fault = PositionFault(plan, tone)) {
            measurement.voids.push_back(*fault);
            return measurement;
        }
    const PairLines pair = LinesOfPair(plan, tones);
    FittedLines own;
    FittedLines& fitted = fit == nullptr ? own : *fit;
    fitted = FitLines(plan.Window(), record.samples, pair.lines);
    TakeFit(plan, record, fitted, 2, band, measurement);
    if (measurement.voids.empty()) TakeProducts(fitted, pair, measurement);
    return measurement;
}

LinesMeasurement MeasureMultitone(const RecordPlan& plan, Record record, std::span<const double> tonesHz,
                                  const Band& band, FittedLines* fit) {
    LinesMeasurement measurement;
    if (!Begin(plan, record, true, measurement)) return measurement;
    std::vector<double> tones(tonesHz.begin(), tonesHz.end());
    std::sort(tones.begin(), tones.end());
    const std::optional<double> ratio = ClockRatio(plan, plan.AcPowerSpectrum(record.samples), tones);
    if (!ratio) {
        measurement.voids.push_back(NoTone("None of the tones is found."));
        return measurement;
    }
    std::vector<LineToFit> lines;
    lines.reserve(tones.size());
    for (const double tone : tones)
        lines.push_back({FrequencyOf(tone * *ratio, plan.RateHz()), {tone / tones.back(), 0.0}, 0});
    FittedLines own;
    FittedLines& fitted = fit == nullptr ? own : *fit;
    fitted = FitLines(plan.Window(), record.samples, lines);
    TakeFit(plan, record, fitted, lines.size(), band, measurement);
    ShareClock(measurement.tones);
    return measurement;
}

LinesMeasurement MeasureNoise(const RecordPlan& plan, Record record, FittedLines* fit) {
    LinesMeasurement measurement;
    if (!Begin(plan, record, false, measurement)) return measurement;
    FittedLines own;
    FittedLines& fitted = fit == nullptr ? own : *fit;
    fitted = FitLines(plan.Window(), record.samples, {});
    measurement.dc = fitted.dc;
    measurement.residualPower = plan.PowerSpectrum(fitted.residual);
    measurement.excessKurtosis = ExcessKurtosis(fitted.residual);
    TakeDamage(FindDamageOfNoise(fitted.residual, record.bits, plan.RateHz(), record.startSeconds),
               measurement);
    for (const double sample : record.samples)
        measurement.peak = std::max(measurement.peak, std::abs(sample));
    return measurement;
}

std::optional<std::string> TonesFault(const RecordPlan& plan, std::span<const double> tonesHz) {
    std::vector<double> positions;
    for (const double tone : tonesHz) {
        const double position = tone / plan.BinHz();
        if (position < kGuardBins) return "A tone has fewer than 8 periods in a record.";
        if (position > HighestPosition(plan))
            return "A tone is above half the sampling rate, or too close to it.";
        if (TooClose(positions, position)) return "Two tones are closer than 6 bins of the record.";
        positions.push_back(position);
    }
    return std::nullopt;
}

}  // namespace sonavex
