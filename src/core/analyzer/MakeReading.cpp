#include <algorithm>
#include <cmath>
#include <complex>
#include <cstddef>
#include <numbers>
#include <span>

#include "core/analyzer/MeasureTone.h"
#include "core/analyzer/Spurs.h"
#include "core/analyzer/Square.h"
#include "core/analyzer/Uncertainty.h"
#include "core/analyzer/Weightings.h"

namespace sonavex {
namespace {

// A value below this many sigmas is hidden by noise.
constexpr double kHiddenSigmas = 3.0;

// An upper bound lies this many sigmas above what was measured.
constexpr double kBoundSigmas = 2.5;

// THD below this multiple of its floor is hidden.
constexpr double kHiddenFloors = 2.0;

// Sample noise below this part of the fundamental is rounding of the arithmetic.
constexpr double kRoundingOnly = 1e-10;

// Weaker spurs (-280 dBc) are products of rounding.
constexpr double kLeastSpur = 1e-14;

// "unsteady tone": skirt relative to the fundamental's power, and relative to THD+N.
constexpr double kLeastSkirt = 1e-15;
constexpr double kSkirtOverThdn = 4.0;

// The CCIR-RMS weighting lowers the 468 weighting by 5.63 dB.
constexpr double kCcirRmsDb = -5.63;

double Relative(const NoisePower& power) {
    return power.mean > 0.0 ? power.sigma / power.mean : 0.0;
}

std::vector<double> LinePositions(const RecordPlan& plan, const ToneMeasurement& measurement) {
    const double fundamental = measurement.frequencyHz / plan.BinHz();
    std::vector<double> positions = {fundamental};
    for (const HarmonicRatio& harmonic : measurement.harmonics)
        positions.push_back(harmonic.order * fundamental);
    return positions;
}

Value InPercent(const Value& decibels, double ratio) {
    constexpr double kPartPerDecibel = std::numbers::ln10 / 20.0;
    Value percent = decibels;
    percent.value = 100.0 * ratio;
    if (decibels.uncertainty) percent.uncertainty = 100.0 * ratio * kPartPerDecibel * *decibels.uncertainty;
    return percent;
}

// Computes the values of one reading. Powers are mean squares.
class ReadingMaker {
public:
    ReadingMaker(const RecordPlan& plan, const ToneMeasurement& measurement, const ToneSettings& settings)
        : plan_(plan),
          tone_(measurement),
          band_(settings.band.UpTo(0.5 * plan.RateHz())),
          highestOrder_(settings.highestOrder),
          position_(tone_.frequencyHz / plan.BinHz()),
          noise_(plan, tone_.residualPower, LinePositions(plan, tone_), {position_}, tone_.powerRecords,
                 tone_.excessKurtosis),
          fundamentalPower_(0.5 * Square(tone_.amplitude)),
          fundamentalSigma_(LineSigma(position_)),
          widening_(WideningOfLine(tone_.powerRecords)),
          uncertainty_(SampleNoise() < kRoundingOnly * tone_.amplitude) {}

    Reading Make() {
        reading_.voids = tone_.voids;
        reading_.warnings = tone_.warnings;
        AddFundamental();
        for (const HarmonicRatio& harmonic : tone_.harmonics) AddHarmonic(harmonic);
        AddThd();
        AddNoise();
        AddThdn();
        AddNotch();
        AddSkirt();
        AddSpurs();
        reading_.band = band_;
        return reading_;
    }

private:
    // Relative to the fundamental's amplitude.
    double FundamentalRelative() const { return widening_ * fundamentalSigma_ / tone_.amplitude; }

    double LineSigma(double position) const {
        return noise_.LineSigma(position) / std::sqrt(tone_.amplitudeRecords);
    }

    // Standard deviation of the samples' noise, from the density around the fundamental.
    double SampleNoise() const {
        return std::sqrt(noise_.DensityAt(position_) * 0.5 * static_cast<double>(plan_.Length()));
    }

    bool InBand(const HarmonicRatio& harmonic) const {
        return band_.Contains(harmonic.order * tone_.frequencyHz);
    }
    bool InThd(const HarmonicRatio& harmonic) const {
        return harmonic.order <= highestOrder_ && InBand(harmonic);
    }

    void AddFundamental() {
        reading_.frequencyHz = uncertainty_.Absolute(
            tone_.frequencyHz, widening_ * tone_.frequencySigmaHz / std::sqrt(tone_.frequencyRecords));
        reading_.levelDbfs = uncertainty_.AmplitudeDb(tone_.amplitude, FundamentalRelative());
        // dc is one part of a line whose density counts half.
        const double dcSigma = WideningAtDc(tone_.powerRecords) * LineSigma(0.0) / std::numbers::sqrt2;
        reading_.dc = uncertainty_.Absolute(tone_.dc, dcSigma, tone_.amplitude);
    }

    void AddHarmonic(const HarmonicRatio& harmonic) {
        const double ratio = std::abs(harmonic.ratio);
        const double sigma = LineSigma(harmonic.order * position_) / tone_.amplitude;
        sigmas_.push_back(sigma);
        Harmonic result;
        result.order = harmonic.order;
        if (ratio < kHiddenSigmas * sigma) {
            const double bound = std::max(ratio + kBoundSigmas * sigma, kHiddenSigmas * sigma);
            result.levelDbc = Uncertainty::AtMost(Decibels(bound));
        } else if (ratio == 0.0) {
            result.levelDbc = uncertainty_.AmplitudeDb(0.0, 0.0);
        } else {
            const double relative = widening_ * sigma / ratio;
            result.levelDbc = uncertainty_.AmplitudeDb(ratio, std::hypot(relative, FundamentalRelative()));
            result.phaseDegrees =
                uncertainty_.Degrees(std::arg(harmonic.ratio) * 180.0 / std::numbers::pi,
                                     std::hypot(relative, harmonic.order * FundamentalRelative()));
        }
        reading_.harmonics.push_back(result);
    }

    void AddThd() {
        double squares = 0.0;
        double variance = 0.0;
        double floor = 0.0;
        double largestSigma = 0.0;
        bool any = false;
        for (std::size_t i = 0; i < tone_.harmonics.size(); ++i) {
            if (!InThd(tone_.harmonics[i])) continue;
            any = true;
            squares += std::norm(tone_.harmonics[i].ratio);
            variance += std::norm(tone_.harmonics[i].ratio) * Square(sigmas_[i]);
            floor += 2.0 * Square(sigmas_[i]);
            largestSigma = std::max(largestSigma, sigmas_[i]);
        }
        reading_.highestOrder = highestOrder_;
        if (!any) {
            reading_.warnings.push_back(
                {WarningCode::kNoHarmonicInBand, "No harmonic lies in the band; THD is not defined."});
            return;
        }
        reading_.thdFloorDb = Decibels(std::sqrt(floor));
        const double thd = std::sqrt(squares);
        if (thd < kHiddenFloors * std::sqrt(floor))
            SetThd(Uncertainty::AtMost(0.0), thd + kBoundSigmas * largestSigma, 0.0);
        else
            SetThd({}, thd,
                   thd > 0.0 ? std::hypot(widening_ * std::sqrt(variance) / squares, FundamentalRelative())
                             : 0.0);
    }

    // kind: at most, or a value.
    void SetThd(const Value& kind, double thd, double relativeSigma) {
        const double r = thd / std::hypot(1.0, thd);
        reading_.thdDb = uncertainty_.AmplitudeDb(thd, relativeSigma);
        Value thdR = uncertainty_.AmplitudeDb(r, relativeSigma / (1.0 + thd * thd));
        if (kind.atMost) {
            reading_.thdDb = Uncertainty::AtMost(Decibels(thd));
            thdR = Uncertainty::AtMost(Decibels(r));
        }
        reading_.thdPercent = InPercent(reading_.thdDb, thd);
        reading_.thdRPercent = InPercent(thdR, r);
    }

    Value NoiseLevel(const NoisePower& power, double weightDb = 0.0) const {
        Value level = uncertainty_.PowerDb(2.0 * power.mean, Relative(power));
        if (power.mean > 0.0) *level.value += weightDb;
        return level;
    }

    void AddNoise() {
        noiseInBand_ = noise_.InBand(band_);
        reading_.noiseDbfs = NoiseLevel(noiseInBand_);
        reading_.noiseADbfs = NoiseLevel(noise_.InBand(band_, plan_.APowerGains()));
        const NoisePower itu468 = noise_.InBand(band_, plan_.PowerGains468());
        reading_.noise468Dbfs = NoiseLevel(itu468);
        reading_.noiseCcirRmsDbfs = NoiseLevel(itu468, kCcirRmsDb);
        if (noiseInBand_.mean > 0.0)
            reading_.snrDb =
                uncertainty_.AmplitudeDb(std::sqrt(fundamentalPower_ / noiseInBand_.mean),
                                         std::hypot(0.5 * Relative(noiseInBand_), FundamentalRelative()));
    }

    // Harmonics in the band, each with a gain for its amplitude.
    template <typename Gain>
    NoisePower HarmonicPower(Gain gain) const {
        double sum = 0.0;
        double variance = 0.0;
        for (std::size_t i = 0; i < tone_.harmonics.size(); ++i) {
            const HarmonicRatio& harmonic = tone_.harmonics[i];
            if (!InBand(harmonic)) continue;
            const double square =
                std::norm(harmonic.ratio) * Square(gain(harmonic.order * tone_.frequencyHz));
            sum += square;
            variance += square * Square(sigmas_[i]);
        }
        // Powers are half the squared amplitudes.
        return {fundamentalPower_ * sum, 2.0 * fundamentalPower_ * std::sqrt(variance)};
    }

    void AddThdn() {
        const NoisePower harmonics = HarmonicPower([](double) { return 1.0; });
        rest_ = {harmonics.mean + noiseInBand_.mean, std::hypot(harmonics.sigma, noiseInBand_.sigma)};
        const double ratio = std::sqrt(rest_.mean / fundamentalPower_);
        const double relative = std::hypot(0.5 * Relative(rest_), FundamentalRelative());
        reading_.thdnDb = uncertainty_.AmplitudeDb(ratio, relative);
        reading_.thdnRDb =
            uncertainty_.AmplitudeDb(ratio / std::hypot(1.0, ratio), relative / (1.0 + ratio * ratio));
        if (rest_.mean == 0.0) return;
        reading_.sinadDb = uncertainty_.AmplitudeDb(1.0 / ratio, relative);
        const double bits = std::log2(2.0 / std::sqrt(12.0 * rest_.mean));
        reading_.enob = uncertainty_.Absolute(bits, 0.5 * Relative(rest_) / std::numbers::ln2);
    }

    void AddNotch() {
        const double f0 = tone_.frequencyHz;
        std::vector<double> gains(noise_.BinPowers().size());
        for (std::size_t j = 0; j < gains.size(); ++j)
            gains[j] = NotchPowerGain(static_cast<double>(j) * plan_.BinHz(), f0);
        const NoisePower noise = noise_.InBand(band_, gains);
        const NoisePower harmonics =
            HarmonicPower([f0](double hertz) { return std::sqrt(NotchPowerGain(hertz, f0)); });
        const NoisePower rest = {noise.mean + harmonics.mean, std::hypot(noise.sigma, harmonics.sigma)};
        const double total = fundamentalPower_ + rest_.mean;
        reading_.thdnNotchDb = uncertainty_.AmplitudeDb(
            std::sqrt(rest.mean / total), std::hypot(0.5 * Relative(rest), FundamentalRelative()));
    }

    void AddSkirt() {
        const NoisePower skirt = noise_.Skirt(position_);
        const double ratio = skirt.mean / fundamentalPower_;
        reading_.skirtDb =
            uncertainty_.PowerDb(ratio, std::hypot(Relative(skirt), 2.0 * FundamentalRelative()));
        if (ratio > kLeastSkirt && ratio > kSkirtOverThdn * rest_.mean / fundamentalPower_)
            reading_.warnings.push_back(
                {WarningCode::kUnsteadyTone, "The frequency or the level of the tone is not steady."});
    }

    void AddSpurs() {
        double strongest = 0.0;
        double position = 0.0;
        for (const SpurLine& spur : FindSpurs(noise_)) {
            const double ratio = spur.amplitude / tone_.amplitude;
            if (ratio < kLeastSpur) break;
            reading_.spurs.push_back({spur.frequencyHz, Decibels(ratio)});
            if (ratio <= strongest) continue;
            strongest = ratio;
            position = spur.frequencyHz / plan_.BinHz();
        }
        for (std::size_t i = 0; i < tone_.harmonics.size(); ++i) {
            const double ratio = std::abs(tone_.harmonics[i].ratio);
            if (reading_.harmonics[i].levelDbc.atMost || ratio <= strongest) continue;
            strongest = ratio;
            position = tone_.harmonics[i].order * position_;
        }
        if (strongest > 0.0)
            reading_.sfdrDb = uncertainty_.AmplitudeDb(
                1.0 / strongest,
                std::hypot(LineSigma(position) / (tone_.amplitude * strongest), FundamentalRelative()));
    }

    const RecordPlan& plan_;
    const ToneMeasurement& tone_;
    Band band_;
    int highestOrder_;
    double position_;  // of the fundamental, in bins
    NoiseSpectrum noise_;
    double fundamentalPower_;
    double fundamentalSigma_;
    double widening_;  // of intervals from sigmas of lines
    Uncertainty uncertainty_;
    std::vector<double> sigmas_;  // of each harmonic, relative to the fundamental
    NoisePower noiseInBand_;
    NoisePower rest_;  // noise and harmonics in the band
    Reading reading_;
};

}  // namespace

Reading MakeReading(const RecordPlan& plan, const ToneMeasurement& measurement,
                    const ToneSettings& settings) {
    Reading reading;
    if (measurement.voids.empty()) {
        reading = ReadingMaker(plan, measurement, settings).Make();
    } else {
        reading.voids = measurement.voids;
        reading.warnings = measurement.warnings;
        reading.band = settings.band.UpTo(0.5 * plan.RateHz());
        reading.highestOrder = settings.highestOrder;
    }
    reading.lines = measurement.harmonics.size() + (measurement.voids.empty() ? 1 : 0);
    reading.length = plan.Length();
    reading.blocks = measurement.blocks;
    reading.bits = measurement.bits;
    reading.floatingPoint = measurement.floatingPoint;
    return reading;
}

}  // namespace sonavex
