#include "core/analyzer/FitLines.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <numeric>
#include <utility>

#include "core/analyzer/LineKernels.h"

namespace sonavex {
namespace {

using Complex = std::complex<double>;

constexpr int kRounds = 4;

// exp(2 pi i f m) of a sample is the product of its block's start phasor and its phasor within the block: two
// short tables in place of a sine for each sample. The second tables of 20 lines fit into the fastest cache.
constexpr std::size_t kBlock = 128;

using BlockValues = std::array<double, kBlock>;

class FittingLine {
public:
    FittingLine(const LineToFit& request, const AnalysisWindow& window)
        : request_(request),
          firstTime_(-window.Centre()),
          frequency_(request.frequency),
          startsRe_((window.Length() + kBlock - 1) / kBlock),
          startsIm_(startsRe_.size()) {
        MakePhasors();
    }

    bool Determines(std::size_t freeFrequency) const { return request_.determines == freeFrequency; }
    bool DeterminesAny() const { return request_.determines.has_value(); }
    double Follows(std::size_t freeFrequency) const { return request_.follows[freeFrequency]; }
    FittedLine Result() const { return {frequency_, amplitude_}; }
    const Complex& Amplitude() const { return amplitude_; }

    void SubtractFrom(double* samples, std::size_t block, std::size_t n) const {
        const Complex factor = amplitude_ * Start(block);
        line_kernels::Subtract(factor.real(), factor.imag(), re_.data(), im_.data(), samples, n);
    }

    // Adds the block's sum of x exp(-2 pi i f m), where x is the weighed residual, and that of x m.
    void Match(const BlockValues& weighed, std::size_t block, std::size_t n) {
        matched_ += BlockSum(weighed, block, n);
    }
    void MatchTimed(const BlockValues& timed, std::size_t block, std::size_t n) {
        timed_ += BlockSum(timed, block, n);
    }

    void UpdateAmplitude(const AnalysisWindow& window) {
        amplitude_ += 2.0 / window.Sum() * matched_;
        matched_ = 0.0;
    }

    // The frequency error in radians per sample times |amplitude|^2.
    double TakeWeightedError(const AnalysisWindow& window) {
        const double error = 2.0 * std::imag(std::conj(amplitude_) * timed_) / window.TimeMoment();
        timed_ = 0.0;
        return error;
    }

    void Move(const std::array<double, 2>& changes) {
        frequency_.fine += request_.follows[0] * changes[0] + request_.follows[1] * changes[1];
        MakePhasors();
    }

private:
    void MakePhasors() {
        line_kernels::Phasors(frequency_.coarse, frequency_.fine, firstTime_, kBlock, startsRe_.data(),
                              startsIm_.data(), startsRe_.size());
        line_kernels::Phasors(frequency_.coarse, frequency_.fine, 0.0, 1.0, re_.data(), im_.data(), kBlock);
    }

    Complex Start(std::size_t block) const { return {startsRe_[block], startsIm_[block]}; }

    Complex BlockSum(const BlockValues& x, std::size_t block, std::size_t n) const {
        const line_kernels::Sums sums = line_kernels::Matched(x.data(), re_.data(), im_.data(), n);
        return std::conj(Start(block)) * Complex(sums.re, -sums.im);
    }

    LineToFit request_;
    double firstTime_;
    TurnsPerSample frequency_;
    Complex amplitude_;
    Complex matched_;
    Complex timed_;
    std::vector<double> startsRe_;
    std::vector<double> startsIm_;
    BlockValues re_{};
    BlockValues im_{};
};

class Fit {
public:
    Fit(const AnalysisWindow& window, std::span<const double> samples, std::span<const LineToFit> lines)
        : window_(window), samples_(samples), residual_(window.Length()) {
        for (const LineToFit& line : lines) lines_.emplace_back(line, window);
        std::iota(offsets_.begin(), offsets_.end(), 0.0);
    }

    FittedLines Result() {
        for (int round = 0; round < kRounds; ++round) Round(round == 0);
        for (std::size_t block = 0; block * kBlock < residual_.size(); ++block) Render(block);
        FittedLines result;
        result.dc = dc_;
        for (const FittingLine& line : lines_) result.lines.push_back(line.Result());
        result.residual = std::move(residual_);
        return result;
    }

private:
    // The first round fits only the lines that determine a frequency: with the start values of the
    // frequencies the others would be less exact than the second round makes them.
    void Round(bool first) {
        double sum = 0.0;
        for (std::size_t block = 0; block * kBlock < residual_.size(); ++block) {
            Render(block);
            sum += Match(block, first);
        }
        dc_ += sum / window_.Sum();
        for (FittingLine& line : lines_) line.UpdateAmplitude(window_);
        const std::array<double, 2> changes = {FrequencyChange(0), FrequencyChange(1)};
        for (FittingLine& line : lines_) line.Move(changes);
    }

    std::size_t BlockLength(std::size_t block) const {
        return std::min(kBlock, residual_.size() - block * kBlock);
    }

    void Render(std::size_t block) {
        const std::size_t start = block * kBlock;
        const std::size_t n = BlockLength(block);
        for (std::size_t i = start; i < start + n; ++i) residual_[i] = samples_[i] - dc_;
        for (const FittingLine& line : lines_)
            if (line.Amplitude() != 0.0) line.SubtractFrom(&residual_[start], block, n);
    }

    // The block's sum of the weighed residual.
    double Match(std::size_t block, bool first) {
        const std::size_t start = block * kBlock;
        const std::size_t n = BlockLength(block);
        line_kernels::Weigh(&residual_[start], &window_.Values()[start], weighed_.data(), n);
        const double firstTime = static_cast<double>(start) - window_.Centre();
        for (std::size_t i = 0; i < n; ++i) timed_[i] = weighed_[i] * (firstTime + offsets_[i]);
        for (FittingLine& line : lines_) {
            if (!first || line.DeterminesAny()) line.Match(weighed_, block, n);
            if (line.DeterminesAny()) line.MatchTimed(timed_, block, n);
        }
        return line_kernels::Sum(weighed_.data(), n);
    }

    // In turns per sample; the mean of the lines that determine this frequency, limited to one bin.
    double FrequencyChange(std::size_t freeFrequency) {
        double errors = 0.0;
        double weights = 0.0;
        for (FittingLine& line : lines_) {
            if (!line.Determines(freeFrequency)) continue;
            const double follows = line.Follows(freeFrequency);
            errors += follows * line.TakeWeightedError(window_);
            weights += follows * follows * std::norm(line.Amplitude());
        }
        if (weights == 0.0) return 0.0;
        const double bin = 1.0 / static_cast<double>(window_.Length());
        return std::clamp(errors / weights / (2.0 * std::numbers::pi), -bin, bin);
    }

    const AnalysisWindow& window_;
    std::span<const double> samples_;
    std::vector<double> residual_;
    std::vector<FittingLine> lines_;
    double dc_ = 0.0;
    BlockValues offsets_{};  // 0, 1, 2 ...
    BlockValues weighed_{};
    BlockValues timed_{};
};

}  // namespace

FittedLines FitLines(const AnalysisWindow& window, std::span<const double> samples,
                     std::span<const LineToFit> lines) {
    return Fit(window, samples, lines).Result();
}

}  // namespace sonavex
