#include "core/analyzer/LinesReading.h"

#include <algorithm>
#include <cmath>
#include <initializer_list>
#include <numbers>

#include "core/analyzer/MeasureLines.h"
#include "core/analyzer/Spurs.h"
#include "core/analyzer/Square.h"
#include "core/analyzer/Uncertainty.h"

namespace sonavex {
namespace {

constexpr double kCcirRmsBelow468Db = -5.63;

// Hidden values and their bounds, as for harmonics and THD.
constexpr double kHiddenLineSigmas = 3.0;
constexpr double kHiddenSumFloors = 2.0;
constexpr double kSigmasToBound = 2.5;

// Noise this far below the strongest tone is rounding of the arithmetic.
constexpr double kRoundingBelowTone = 1e-10;

// Weaker spurs (-200 dBc) are what the fit leaves of tones with strong side bands.
constexpr double kWeakestSpur = 1e-10;

double RelativeSigma(const NoisePower& power) {
    return power.mean > 0.0 ? power.sigma / power.mean : 0.0;
}

// Welch and Satterthwaite: the degrees of freedom of a sum of variances, in those of one.
double EqualLines(double variances, double squaredVariances) {
    return squaredVariances > 0.0 ? variances * variances / squaredVariances : 1.0;
}

// A sum of products' amplitudes or of their squares, with its standard deviation.
struct ProductSum {
    bool defined = true;
    double value = 0;
    double sigma = 0;
    double floor = 0;  // what noise alone makes of it
    double bound = 0;  // added for an upper bound
    double lines = 1;  // how many equal lines have a sigma as well known as this one
};

class LinesReadingMaker {
public:
    LinesReadingMaker(const RecordPlan& plan, const LinesMeasurement& measurement, const Band& band)
        : plan_(plan),
          measured_(measurement),
          band_(band.UpTo(0.5 * plan.RateHz())),
          independent_(plan.Overlap().Of(measurement.blocks, measurement.lastShift)),
          noise_(plan, measurement.residualPower, LinePositions(), TonePositions(), independent_.power,
                 measurement.excessKurtosis),
          widening_(WideningOfLine(independent_.power)),
          uncertainty_(Noiseless()) {
        TakeConditions();
    }

    LinesReading Pair() {
        AddTones();
        for (const MeasuredProduct& product : measured_.products) result_.products.push_back(Values(product));
        for (const MeasuredProduct& product : measured_.dropped)
            result_.dropped.push_back({product.n1, product.n2, FrequencyOfProduct(product), {}});
        AddModulation();
        AddDifference();
        AddNoise();
        AddSpurs();
        return result_;
    }

    LinesReading Multitone() {
        AddTones();
        AddNoise();
        AddSpurs();
        const NoisePower rest = noise_.InBand(band_);
        double total = rest.mean;
        for (const MeasuredTone& tone : measured_.tones)
            if (band_.Contains(tone.frequencyHz)) total += 0.5 * Square(tone.amplitude);
        // The rest is part of the total.
        result_.tdnDb =
            uncertainty_.PowerDb(rest.mean / total, RelativeSigma(rest) * (1.0 - rest.mean / total));
        return result_;
    }

    LinesReading Noise() {
        const NoisePower all = noise_.InBand({0.0, 0.5 * plan_.RateHz()});
        result_.reading.levelDbfs = uncertainty_.PowerDb(2.0 * all.mean, RelativeSigma(all));
        result_.peakDbfs.value = Decibels(measured_.peak);
        result_.reading.dc = Dc(measured_.peak);
        AddNoise();
        AddSpurs();
        return result_;
    }

private:
    double FrequencyOfProduct(const MeasuredProduct& product) const {
        return product.n1 * measured_.tones[0].frequencyHz + product.n2 * measured_.tones[1].frequencyHz;
    }

    std::vector<double> TonePositions() const {
        std::vector<double> positions;
        for (const MeasuredTone& tone : measured_.tones)
            positions.push_back(tone.frequencyHz / plan_.BinHz());
        return positions;
    }

    std::vector<double> LinePositions() const {
        std::vector<double> positions = TonePositions();
        for (const MeasuredProduct& product : measured_.products)
            positions.push_back(FrequencyOfProduct(product) / plan_.BinHz());
        return positions;
    }

    // Amplitude to which others are relative: the strongest tone, without one full scale.
    double Reference() const {
        double strongest = 0.0;
        for (const MeasuredTone& tone : measured_.tones) strongest = std::max(strongest, tone.amplitude);
        return strongest > 0.0 ? strongest : 1.0;
    }

    bool Noiseless() const {
        if (measured_.tones.empty()) return false;
        const double density = noise_.DensityAt(measured_.tones.front().frequencyHz / plan_.BinHz());
        return std::sqrt(density * 0.5 * static_cast<double>(plan_.Length())) <
               kRoundingBelowTone * Reference();
    }

    double LineSigma(double hertz) const {
        return noise_.LineSigma(hertz / plan_.BinHz()) / std::sqrt(independent_.amplitude);
    }

    double ToneRelative(const MeasuredTone& tone) const {
        return widening_ * LineSigma(tone.frequencyHz) / tone.amplitude;
    }

    // One part of a line whose density counts half.
    Value Dc(double scale) const {
        const double widening = WideningAtDc(independent_.power);
        return uncertainty_.Absolute(measured_.dc, widening * LineSigma(0.0) / std::numbers::sqrt2, scale);
    }

    void TakeConditions() {
        Reading& reading = result_.reading;
        reading.warnings = measured_.warnings;
        reading.lines = measured_.tones.size() + measured_.products.size();
        reading.band = band_;
    }

    void AddTones() {
        for (const MeasuredTone& tone : measured_.tones)
            result_.tones.push_back(
                {uncertainty_.Absolute(tone.frequencyHz,
                                       widening_ * tone.frequencySigmaHz / std::sqrt(independent_.frequency)),
                 uncertainty_.AmplitudeDb(tone.amplitude, ToneRelative(tone))});
        result_.reading.dc = Dc(Reference());
    }

    ProductValues Values(const MeasuredProduct& product) const {
        const double hertz = FrequencyOfProduct(product);
        const double sigma = LineSigma(hertz);
        const double amplitude = std::abs(product.amplitude);
        ProductValues values{product.n1, product.n2, hertz, {}};
        if (amplitude < kHiddenLineSigmas * sigma)
            values.levelDbfs = Uncertainty::AtMost(
                Decibels(std::max(amplitude + kSigmasToBound * sigma, kHiddenLineSigmas * sigma)));
        else
            values.levelDbfs =
                uncertainty_.AmplitudeDb(amplitude, amplitude > 0.0 ? widening_ * sigma / amplitude : 0.0);
        return values;
    }

    const MeasuredProduct* Find(int n1, int n2) const {
        for (const MeasuredProduct& product : measured_.products)
            if ((product.n1 == n1 && product.n2 == n2) || (product.n1 == -n1 && product.n2 == -n2))
                return &product;
        return nullptr;
    }

    struct Orders {
        int n1;
        int n2;
    };

    ProductSum SumOfAmplitudes(std::initializer_list<Orders> products) const {
        ProductSum sum;
        double variance = 0.0;
        double squaredVariances = 0.0;
        for (const auto& [n1, n2] : products) {
            const MeasuredProduct* const product = Find(n1, n2);
            if (product == nullptr) return {false};
            const double sigma = LineSigma(FrequencyOfProduct(*product));
            sum.value += std::abs(product->amplitude);
            variance += Square(sigma);
            squaredVariances += Square(Square(sigma));
            sum.bound += kSigmasToBound * sigma;
        }
        sum.sigma = std::sqrt(variance);
        sum.floor = std::sqrt(2.0 * variance);
        sum.lines = EqualLines(variance, squaredVariances);
        return sum;
    }

    ProductSum RootOfSquares(const std::vector<const MeasuredProduct*>& products) const {
        ProductSum sum;
        double squares = 0.0;
        double variance = 0.0;
        double squaredVariances = 0.0;
        double floor = 0.0;
        for (const MeasuredProduct* const product : products) {
            if (product == nullptr) return {false};
            const double sigma = LineSigma(FrequencyOfProduct(*product));
            squares += std::norm(product->amplitude);
            variance += std::norm(product->amplitude) * Square(sigma);
            squaredVariances += Square(std::norm(product->amplitude) * Square(sigma));
            floor += 2.0 * Square(sigma);
            sum.bound = std::max(sum.bound, kSigmasToBound * sigma);
        }
        sum.value = std::sqrt(squares);
        sum.sigma = squares > 0.0 ? std::sqrt(variance / squares) : 0.0;
        sum.floor = std::sqrt(floor);
        sum.lines = EqualLines(variance, squaredVariances);
        return sum;
    }

    // A sum relative to a tone, or to the sum of both.
    Value Ratio(const ProductSum& sum, double reference) const {
        if (!sum.defined) return {};
        if (sum.value < kHiddenSumFloors * sum.floor)
            return Uncertainty::AtMost((sum.value + sum.bound) / reference);
        const double widening = WideningOfLine(independent_.power * sum.lines);
        const double relative = std::max(ToneRelative(measured_.tones[0]), ToneRelative(measured_.tones[1]));
        return uncertainty_.Absolute(sum.value / reference,
                                     std::hypot(widening * sum.sigma, relative * sum.value) / reference);
    }

    Value InDecibels(const Value& ratio) const {
        if (!ratio.value) return {};
        if (ratio.atMost) return Uncertainty::AtMost(Decibels(*ratio.value));
        Value level;
        level.value = Decibels(*ratio.value);
        if (*ratio.value > 0.0)
            level.uncertainty = 20.0 / std::numbers::ln10 * *ratio.uncertainty / *ratio.value;
        return level;
    }

    void AddModulation() {
        Intermodulation& values = result_.intermodulation;
        const double v2 = measured_.tones[1].amplitude;
        const ProductSum d2 = SumOfAmplitudes({{1, 1}, {-1, 1}});
        const ProductSum d3 = SumOfAmplitudes({{2, 1}, {-2, 1}});
        values.modD2 = Ratio(d2, v2);
        values.modD3 = Ratio(d3, v2);
        values.mod = Ratio(Combined(d2, d3), v2);
        values.modDb = InDecibels(values.mod);
        values.modRms = Ratio(RootOfSquares({Find(1, 1), Find(-1, 1), Find(2, 1), Find(-2, 1)}), v2);
        values.modAes17 = Ratio(RootOfSquares({Find(1, 1), Find(-1, 1)}), v2);
    }

    static ProductSum Combined(const ProductSum& a, const ProductSum& b) {
        if (!a.defined || !b.defined) return {false};
        ProductSum sum;
        sum.value = std::hypot(a.value, b.value);
        if (sum.value > 0.0) sum.sigma = std::hypot(a.value * a.sigma, b.value * b.sigma) / sum.value;
        const double varianceA = Square(a.value * a.sigma);
        const double varianceB = Square(b.value * b.sigma);
        sum.lines =
            EqualLines(varianceA + varianceB, Square(varianceA) / a.lines + Square(varianceB) / b.lines);
        sum.floor = std::hypot(a.floor, b.floor);
        sum.bound = std::hypot(a.bound, b.bound);
        return sum;
    }

    void AddDifference() {
        Intermodulation& values = result_.intermodulation;
        const double v1 = measured_.tones[0].amplitude;
        const double v2 = measured_.tones[1].amplitude;
        values.dfdD2 = Ratio(SumOfAmplitudes({{-1, 1}}), v1 + v2);
        values.dfdD3 = Ratio(SumOfAmplitudes({{2, -1}, {-1, 2}}), v1 + v2);
        values.dfdAes17 = Ratio(RootOfSquares({Find(-1, 1), Find(2, -1), Find(-1, 2)}), v1);
        values.dfdAes17Db = InDecibels(values.dfdAes17);
        std::vector<const MeasuredProduct*> inBand;
        for (const MeasuredProduct& product : measured_.products)
            if (product.n1 != 0 && product.n2 != 0 && band_.Contains(FrequencyOfProduct(product)))
                inBand.push_back(&product);
        if (!inBand.empty()) values.imdPower = Ratio(RootOfSquares(inBand), std::hypot(v1, v2));
    }

    Value NoiseLevel(const NoisePower& power, double weightDb = 0.0) const {
        Value level = uncertainty_.PowerDb(2.0 * power.mean, RelativeSigma(power));
        if (power.mean > 0.0) *level.value += weightDb;
        return level;
    }

    void AddNoise() {
        Reading& reading = result_.reading;
        reading.noiseDbfs = NoiseLevel(noise_.InBand(band_));
        reading.noiseADbfs = NoiseLevel(noise_.InBand(band_, plan_.APowerGains()));
        const NoisePower itu468 = noise_.InBand(band_, plan_.PowerGains468());
        reading.noise468Dbfs = NoiseLevel(itu468);
        reading.noiseCcirRmsDbfs = NoiseLevel(itu468, kCcirRmsBelow468Db);
    }

    void AddSpurs() {
        for (const SpurLine& spur : FindSpurs(noise_))
            if (spur.amplitude >= kWeakestSpur * Reference())
                result_.reading.spurs.push_back({spur.frequencyHz, Decibels(spur.amplitude / Reference())});
    }

    const RecordPlan& plan_;
    const LinesMeasurement& measured_;
    Band band_;
    IndependentRecords independent_;
    NoiseSpectrum noise_;
    double widening_;  // of intervals from sigmas of lines
    Uncertainty uncertainty_;
    LinesReading result_;
};

LinesReading Make(const RecordPlan& plan, const LinesMeasurement& measurement, const Band& band,
                  LinesReading (LinesReadingMaker::*make)()) {
    LinesReading result;
    if (measurement.voids.empty()) {
        LinesReadingMaker maker(plan, measurement, band);
        result = (maker.*make)();
    } else {
        result.reading.voids = measurement.voids;
        result.reading.warnings = measurement.warnings;
        result.reading.band = band.UpTo(0.5 * plan.RateHz());
    }
    result.reading.length = plan.Length();
    result.reading.blocks = measurement.blocks;
    result.reading.bits = measurement.bits;
    result.reading.floatingPoint = measurement.floatingPoint;
    return result;
}

}  // namespace

LinesReading MakePairReading(const RecordPlan& plan, const LinesMeasurement& measurement, const Band& band) {
    return Make(plan, measurement, band, &LinesReadingMaker::Pair);
}

LinesReading MakeMultitoneReading(const RecordPlan& plan, const LinesMeasurement& measurement,
                                  const Band& band) {
    return Make(plan, measurement, band, &LinesReadingMaker::Multitone);
}

LinesReading MakeNoiseReading(const RecordPlan& plan, const LinesMeasurement& measurement, const Band& band) {
    return Make(plan, measurement, band, &LinesReadingMaker::Noise);
}

}  // namespace sonavex
