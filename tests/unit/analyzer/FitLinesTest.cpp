#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <complex>
#include <numbers>
#include <optional>
#include <vector>

#include "core/analyzer/FindTone.h"
#include "core/analyzer/FitLines.h"
#include "core/analyzer/RecordPlan.h"
#include "unit/analyzer/Signals.h"

namespace sonavex {
namespace {

using signals::ExactFrequency;
using signals::Samples;

constexpr std::size_t kLength = 16384;
constexpr double kFitRateHz = 48000.0;
constexpr double kBinHz = kFitRateHz / kLength;

const RecordPlan& Plan() {
    static const RecordPlan plan(kLength, kFitRateHz);
    return plan;
}

// A tone near `hertz` with its harmonics below half the rate.
std::vector<LineToFit> ToneLines(double hertz, int highestOrder) {
    const TurnsPerSample start = FrequencyOf(hertz, kFitRateHz);
    std::vector<LineToFit> lines = {{start, {1.0, 0.0}, 0}};
    for (int k = 2; k <= highestOrder && k * hertz < 0.5 * kFitRateHz - kGuardBins * kBinHz; ++k)
        lines.push_back({start.Times(k), {static_cast<double>(k), 0.0}, std::nullopt});
    return lines;
}

FittedLines Fit(const Samples& x, const std::vector<LineToFit>& lines) {
    return FitLines(Plan().Window(), x, lines);
}

double PeakHz(const Samples& x) {
    return StrongestPeak(Plan().PowerSpectrum(x), {1.0, kLength / 2.0}).value() * kBinHz;
}

double LargestOf(const Samples& x) {
    return std::abs(
        *std::max_element(x.begin(), x.end(), [](double a, double b) { return std::abs(a) < std::abs(b); }));
}

// sin(2 pi f n + phase) as an amplitude at the record's centre.
std::complex<double> CentreAmplitude(const ExactFrequency& f, double amplitude, double phase) {
    const long double before = f.Phase(kLength / 2 - 1);
    const long double after = f.Phase(kLength / 2);
    const auto centre = std::polar(1.0L, before) + std::polar(1.0L, after);
    const auto unit = std::polar(1.0, static_cast<double>(std::arg(centre)) + phase - std::numbers::pi / 2.0);
    return amplitude * unit;
}

TEST(FitLines, APureSineLeavesOnlyRoundingErrors) {
    for (const double hertz : {8.5 * kBinHz, 27.37, 997.0, 1000.366, 9999.6, 0.45 * kFitRateHz}) {
        const ExactFrequency f(hertz, kFitRateHz);
        const Samples x = signals::Sine(kLength, f, 0.9, 0.3);
        const FittedLines fit = Fit(x, ToneLines(PeakHz(x), 20));
        EXPECT_NEAR(fit.lines[0].frequency.Hertz(kFitRateHz), f.Hertz(), 1e-12 * hertz);
        EXPECT_LT(std::abs(fit.lines[0].amplitude - CentreAmplitude(f, 0.9, 0.3)), 1e-14) << hertz;
        EXPECT_LT(std::abs(fit.dc), 1e-15);
        EXPECT_LT(LargestOf(fit.residual), 2e-15) << hertz;
        for (std::size_t k = 1; k < fit.lines.size(); ++k)
            EXPECT_LT(std::abs(fit.lines[k].amplitude), 1e-15) << hertz;
    }
}

TEST(FitLines, FindsHarmonicsAndDcWithTheirPhases) {
    const ExactFrequency f(440.123, kFitRateHz);
    Samples x = signals::Sine(kLength, f, 0.5, 1.0);
    signals::AddSine(x, f.Times(2), 1e-3, 0.7);
    signals::AddSine(x, f.Times(3), 1e-7, -2.0);
    for (double& value : x) value += 0.125;
    const FittedLines fit = Fit(x, ToneLines(PeakHz(x), 5));
    EXPECT_NEAR(fit.dc, 0.125, 1e-15);
    EXPECT_LT(std::abs(fit.lines[1].amplitude - CentreAmplitude(f.Times(2), 1e-3, 0.7)), 1e-15);
    EXPECT_LT(std::abs(fit.lines[2].amplitude - CentreAmplitude(f.Times(3), 1e-7, -2.0)), 1e-15);
    EXPECT_LT(std::abs(fit.lines[3].amplitude), 1e-15);
}

TEST(FitLines, FitsTwoTonesWithTheirProducts) {
    const ExactFrequency low(60.01, kFitRateHz);
    const ExactFrequency high(7000.3, kFitRateHz);
    const double product = high.Hertz() + low.Hertz();
    Samples x = signals::Sine(kLength, low, 0.8);
    signals::AddSine(x, high, 0.2, 0.4);
    signals::AddSine(x, ExactFrequency(product, kFitRateHz), 1e-5, 0.2);
    const TurnsPerSample f1 = FrequencyOf(60.05, kFitRateHz);
    const TurnsPerSample f2 = FrequencyOf(7000.2, kFitRateHz);
    const FittedLines fit =
        Fit(x, {{f1, {1.0, 0.0}, 0}, {f2, {0.0, 1.0}, 1}, {f1.Plus(f2), {1.0, 1.0}, std::nullopt}});
    EXPECT_NEAR(std::abs(fit.lines[0].amplitude), 0.8, 1e-13);
    EXPECT_NEAR(std::abs(fit.lines[1].amplitude), 0.2, 1e-13);
    EXPECT_NEAR(std::abs(fit.lines[2].amplitude), 1e-5, 1e-13);
    EXPECT_NEAR(fit.lines[2].frequency.Hertz(kFitRateHz), product, 1e-9);
}

TEST(FitLines, FitsOneClockRatioOfAMultitone) {
    constexpr double kRatio = 1.0 + 20e-6;
    Samples x(kLength);
    std::vector<LineToFit> lines;
    for (const double hertz : {50.0, 315.0, 1001.0, 5003.0, 15013.0}) {
        signals::AddSine(x, ExactFrequency(hertz * kRatio, kFitRateHz), 0.1, hertz);
        const TurnsPerSample start = FrequencyOf(hertz, kFitRateHz);
        lines.push_back({start, {start.Sum(), 0.0}, 0});
    }
    const FittedLines fit = Fit(x, lines);
    EXPECT_NEAR(fit.lines[4].frequency.Hertz(kFitRateHz), 15013.0 * kRatio, 1e-8);
    for (const FittedLine& line : fit.lines) EXPECT_NEAR(std::abs(line.amplitude), 0.1, 1e-12);
    EXPECT_LT(LargestOf(fit.residual), 1e-11);
}

// The weighted least-squares solution for dc and all amplitudes at fixed frequencies: the normal equations,
// in the precision of long double. Two real unknowns for each line.
class LeastSquares {
public:
    LeastSquares(const Samples& x, const std::vector<FittedLine>& lines)
        : lines_(lines), unknowns_(1 + 2 * lines.size()) {
        rows_.assign(unknowns_, std::vector<long double>(unknowns_ + 1));
        for (std::size_t n = 0; n < x.size(); ++n) AddSample(n, x[n]);
        Eliminate();
    }

    double Dc() const { return static_cast<double>(rows_[0][unknowns_]); }
    std::complex<double> Amplitude(std::size_t line) const {
        return {static_cast<double>(rows_[1 + 2 * line][unknowns_]),
                -static_cast<double>(rows_[2 + 2 * line][unknowns_])};
    }

private:
    void AddSample(std::size_t n, double x) {
        const long double m = static_cast<long double>(n) - 0.5L * (kLength - 1);
        std::vector<long double> basis = {1.0L};
        for (const FittedLine& line : lines_) {
            const long double turns = std::fmod(line.frequency.coarse * m, 1.0L) + line.frequency.fine * m;
            basis.push_back(std::cos(2.0L * std::numbers::pi_v<long double> * turns));
            basis.push_back(std::sin(2.0L * std::numbers::pi_v<long double> * turns));
        }
        const long double w = Plan().Window().Values()[n];
        for (std::size_t i = 0; i < unknowns_; ++i) {
            for (std::size_t j = 0; j < unknowns_; ++j) rows_[i][j] += w * basis[i] * basis[j];
            rows_[i][unknowns_] += w * basis[i] * x;
        }
    }

    // The matrix is positive definite, so no pivot is zero.
    void Eliminate() {
        for (std::size_t p = 0; p < unknowns_; ++p) {
            const long double pivot = rows_[p][p];
            for (long double& value : rows_[p]) value /= pivot;
            for (std::size_t i = 0; i < unknowns_; ++i) {
                const long double factor = rows_[i][p];
                if (i == p || factor == 0.0L) continue;
                for (std::size_t j = 0; j <= unknowns_; ++j) rows_[i][j] -= factor * rows_[p][j];
            }
        }
    }

    const std::vector<FittedLine>& lines_;
    std::size_t unknowns_;
    std::vector<std::vector<long double>> rows_;
};

TEST(FitLines, AgreesWithTheFullLeastSquaresSolution) {
    for (const double hertz : {8.2 * kBinHz, 33.3, 440.123, 4321.0}) {
        const ExactFrequency f(hertz, kFitRateHz);
        Samples x = signals::Sine(kLength, f, 0.5, 1.0);
        signals::AddSine(x, f.Times(2), 0.1, 0.7);
        signals::AddSine(x, f.Times(3), 1e-4, 0.7);
        for (double& value : x) value -= 0.2;
        signals::AddWhiteNoise(x, 1e-3, 4);
        const FittedLines fit = Fit(x, ToneLines(PeakHz(x), 5));
        const LeastSquares exact(x, fit.lines);
        EXPECT_NEAR(fit.dc, exact.Dc(), 0.5e-12) << hertz;
        for (std::size_t k = 0; k < fit.lines.size(); ++k)
            EXPECT_LT(std::abs(fit.lines[k].amplitude - exact.Amplitude(k)), 0.5e-12) << hertz << ' ' << k;
    }
}

TEST(FitLines, DrawsNothingFromSilence) {
    const FittedLines fit = Fit(Samples(kLength), ToneLines(1000.0, 9));
    EXPECT_EQ(fit.dc, 0.0);
    EXPECT_EQ(LargestOf(fit.residual), 0.0);
}

}  // namespace
}  // namespace sonavex
