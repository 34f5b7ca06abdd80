#include "core/analyzer/Damage.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <complex>
#include <cstddef>
#include <cstdio>
#include <numbers>
#include <string>
#include <vector>

#include "core/analyzer/CarrierError.h"
#include "core/analyzer/LineKernels.h"

namespace sonavex {
namespace {

using Complex = std::complex<double>;

// Segments on each side of a place whose means are compared: short ones for losses that follow each other
// soon, long ones for steps in noise.
constexpr std::array<std::size_t, 3> kCompared = {1, 4, 16};

// A step is a break when it exceeds all three: steady records with every kind of interference reach 6.9
// medians, damaged ones 58. The second is the rounding of 24-bit samples, the third the residual of strong
// interference.
constexpr double kStepOverMedian = 20.0;
constexpr double kLeastStep = 3e-8;
constexpr double kStepOverThdn = 0.03;

// A piece is a burst when it exceeds this many median pieces; steady records reach 3.3.
constexpr double kBurstOverMedian = 6.0;
constexpr double kShortestPiece = 128.0;

// Rounding of doubles, relative to the carrier.
constexpr double kLeastBurst = 1e-14;

// Interference that recurs makes more bursts than damage.
constexpr std::size_t kMostBursts = 4;

double Median(std::vector<double> values) {
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

std::string Seconds(double seconds) {
    std::array<char, 32> text{};
    std::snprintf(text.data(), text.size(), "%.2f s", seconds);
    return text.data();
}

// The largest step of the carrier, in thresholds.
struct Step {
    double overThreshold = 0.0;
    std::size_t segment = 0;  // the first after the step
    double radians = 0.0;
};

class StepSearch {
public:
    StepSearch(std::span<const Complex> errors, double thdn)
        : errors_(errors), least_(std::max(kLeastStep, kStepOverThdn * thdn)) {
        sums_.emplace_back();
        for (const Complex& error : errors) sums_.push_back(sums_.back() + error);
    }

    Step Largest() const {
        Step largest;
        for (const std::size_t compared : kCompared)
            if (2 * compared < errors_.size()) Search(compared, largest);
        return largest;
    }

private:
    Complex Mean(std::size_t from, std::size_t count) const {
        return (sums_[from + count] - sums_[from]) / static_cast<double>(count);
    }

    void Search(std::size_t compared, Step& largest) const {
        std::vector<double> re;
        std::vector<double> im;
        for (std::size_t place = compared; place + compared <= errors_.size(); ++place) {
            const Complex difference = Mean(place, compared) - Mean(place - compared, compared);
            re.push_back(difference.real());
            im.push_back(difference.imag());
        }
        // A step tilts the fitted frequency, which adds the same difference everywhere.
        const Complex tilt(Median(re), Median(im));
        std::vector<double> sizes;
        for (std::size_t i = 0; i < re.size(); ++i) sizes.push_back(std::abs(Complex(re[i], im[i]) - tilt));
        const double threshold = std::max(least_, kStepOverMedian * Median(sizes));
        for (std::size_t i = 0; i < sizes.size(); ++i)
            if (sizes[i] / threshold > largest.overThreshold)
                largest = {sizes[i] / threshold, compared + i, Turn(compared + i, compared)};
    }

    double Turn(std::size_t place, std::size_t compared) const {
        return std::arg((1.0 + Mean(place, compared)) / (1.0 + Mean(place - compared, compared)));
    }

    std::span<const Complex> errors_;
    double least_;
    std::vector<Complex> sums_;  // of the errors before each segment
};

// How many samples a step of the phase means, without the sign; 0 for a step of the level.
long SamplesOf(const Step& step, double radiansPerSample) {
    return std::lround(std::abs(step.radians) / radiansPerSample);
}

std::string BreakSentence(double seconds, long samples) {
    std::string sentence = "Break at " + Seconds(seconds);
    if (samples > 0) sentence += ", " + std::to_string(samples) + (samples == 1 ? " sample" : " samples");
    return sentence + '.';
}

// Rms of the second difference in pieces. The difference shows a step of the waveform as well as a click.
std::vector<double> RoughnessOfPieces(std::span<const double> x, std::size_t pieceLength) {
    std::vector<double> pieces;
    for (std::size_t start = 2; start + pieceLength <= x.size(); start += pieceLength)
        pieces.push_back(std::sqrt(line_kernels::SecondDifferenceSquares(&x[start], pieceLength) /
                                   static_cast<double>(pieceLength)));
    return pieces;
}

struct Bursts {
    std::size_t events = 0;
    std::size_t firstSample = 0;
};

// In x, whose first sample is sample `start` of the record.
Bursts FindBursts(std::span<const double> x, std::size_t start, std::size_t pieceLength, double least) {
    const std::vector<double> pieces = RoughnessOfPieces(x, pieceLength);
    const double threshold = std::max(least, kBurstOverMedian * Median(pieces));
    Bursts bursts;
    bool inside = false;
    for (std::size_t i = 0; i < pieces.size(); ++i) {
        const bool loud = pieces[i] > threshold;
        if (loud && !inside && bursts.events++ == 0)
            bursts.firstSample = start + i * pieceLength + pieceLength / 2;
        inside = loud;
    }
    return bursts;
}

// Bursts in the residual less the followed carrier.
Bursts FindBursts(const CarrierError& error, double amplitude, double periodSamples) {
    const std::vector<double> rest = error.Remainder();
    const std::size_t margin = error.Margin();
    const auto pieceLength = static_cast<std::size_t>(std::lround(std::max(kShortestPiece, periodSamples)));
    return FindBursts(std::span(rest).subspan(margin, rest.size() - 2 * margin), margin, pieceLength,
                      kLeastBurst * amplitude);
}

Damage DamageOf(const Bursts& bursts, double rateHz, double startSeconds) {
    Damage damage;
    if (bursts.events > kMostBursts)
        damage.impulsiveNoise = {WarningCode::kImpulsiveNoise, "The noise contains bursts that recur."};
    else if (bursts.events > 0)
        damage.disturbed = {
            VoidCode::kDisturbed,
            "Burst at " + Seconds(startSeconds + static_cast<double>(bursts.firstSample) / rateHz) + '.'};
    return damage;
}

}  // namespace

Damage FindDamage(std::span<const double> residual, const FittedLine& carrier, double rateHz, double thdn,
                  double startSeconds) {
    const double turnsPerSample = carrier.frequency.Sum();
    const CarrierError error(residual, carrier);
    const Step step = StepSearch(error.Segments(), thdn).Largest();
    const Bursts bursts = FindBursts(error, std::abs(carrier.amplitude), 1.0 / turnsPerSample);
    const bool broken = step.overThreshold > 1.0;
    const long samples = SamplesOf(step, 2.0 * std::numbers::pi * turnsPerSample);
    Damage damage = DamageOf(bursts, rateHz, startSeconds);
    // A click moves the carrier too, but turns it by less than a sample.
    if (broken && (samples > 0 || !damage.disturbed))
        damage.disturbed = {
            VoidCode::kDisturbed,
            BreakSentence(startSeconds + error.BoundaryBefore(step.segment) / rateHz, samples)};
    return damage;
}

Damage FindDamageOfNoise(std::span<const double> noise, int bits, double rateHz, double startSeconds) {
    const auto pieceLength = static_cast<std::size_t>(kShortestPiece);
    return DamageOf(FindBursts(noise, 0, pieceLength, std::ldexp(1.0, 1 - bits)), rateHz, startSeconds);
}

const FittedLine& DamageCarrier(std::span<const FittedLine> lines) {
    return *std::max_element(lines.begin(), lines.end(), [](const FittedLine& a, const FittedLine& b) {
        return std::abs(a.amplitude) * a.frequency.Sum() < std::abs(b.amplitude) * b.frequency.Sum();
    });
}

}  // namespace sonavex
