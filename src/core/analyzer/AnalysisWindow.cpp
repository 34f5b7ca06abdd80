#include "core/analyzer/AnalysisWindow.h"

#include <array>
#include <cmath>
#include <numbers>
#include <stdexcept>

#include "core/analyzer/Record.h"
#include "core/analyzer/Square.h"

namespace sonavex {
namespace {

constexpr std::array<double, 7> kCosineTerms = {0.27105140069342, 0.43329793923448, 0.21812299954311,
                                                0.06592544638803, 0.01081174209837, 0.00077658482522,
                                                0.00001388721735};

// The window at an angle of 2 pi m / length.
double CosineSum(double angle) {
    double sum = 0.0;
    for (std::size_t k = kCosineTerms.size(); k-- > 0;)
        sum += kCosineTerms[k] * std::cos(static_cast<double>(k) * angle);
    return sum;
}

// sin(pi x) / (pi x)
double Sinc(double x) {
    const double angle = std::numbers::pi * x;
    return std::abs(angle) < 1e-6 ? 1.0 : std::sin(angle) / angle;
}

}  // namespace

AnalysisWindow::AnalysisWindow(std::size_t length) {
    if (length < kShortestRecord || length > kLongestRecord)
        throw std::invalid_argument("length of a record");
    values_.resize(length);
    for (std::size_t n = 0; n < length; ++n) {
        const double m = static_cast<double>(n) - Centre();
        const double w = CosineSum(2.0 * std::numbers::pi * m / static_cast<double>(length));
        values_[n] = w;
        sum_ += w;
        sumOfSquares_ += w * w;
        sumOfCubes_ += w * w * w;
        sumOfFourthPowers_ += Square(w * w);
        timeMoment_ += w * m * m;
        squaredTimeMoment_ += Square(w * m);
    }
}

double AnalysisWindow::EnbwBins() const noexcept {
    return static_cast<double>(Length()) * sumOfSquares_ / Square(sum_);
}

double AnalysisWindow::SwallowedBins() const noexcept {
    return static_cast<double>(Length()) *
           (2.0 * sumOfCubes_ / (sum_ * sumOfSquares_) - sumOfSquares_ / Square(sum_));
}

double AnalysisWindow::CorrelatedBins() const noexcept {
    return static_cast<double>(Length()) * sumOfFourthPowers_ / Square(sumOfSquares_);
}

double AnalysisWindow::AmplitudeCorrelation(std::size_t shift) const {
    double sum = 0.0;
    for (std::size_t n = shift; n < Length(); ++n) sum += values_[n] * values_[n - shift];
    return sum / sumOfSquares_;
}

double AnalysisWindow::FrequencyCorrelation(std::size_t shift) const {
    double sum = 0.0;
    for (std::size_t n = shift; n < Length(); ++n) {
        const double m = static_cast<double>(n) - Centre();
        sum += values_[n] * m * values_[n - shift] * (m - static_cast<double>(shift));
    }
    return sum / squaredTimeMoment_;
}

double AnalysisWindow::Response(double bins) {
    double sum = kCosineTerms[0] * Sinc(bins);
    for (std::size_t k = 1; k < kCosineTerms.size(); ++k) {
        const auto distance = static_cast<double>(k);
        sum += 0.5 * kCosineTerms[k] * (Sinc(bins - distance) + Sinc(bins + distance));
    }
    return sum / kCosineTerms[0];
}

}  // namespace sonavex
