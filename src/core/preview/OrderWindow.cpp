#include "core/preview/OrderWindow.h"

#include <algorithm>
#include <cmath>
#include <complex>
#include <numbers>

namespace sonavex {
namespace {

// Parts of the distances to the next order before and after.
constexpr double kBefore = 0.3;
constexpr double kAfter = 0.6;
constexpr double kEdgePart = 0.5;
constexpr double kLongestResponseSeconds = 1;
// Orders between which only noise is expected.
constexpr double kNoiseFromOrder = 30;
constexpr double kNoiseToOrder = 12;
// The noise is the mean over a third of an octave.
constexpr double kNoiseStepsPerOctave = 12;
constexpr double kNoiseHalfSteps = 2;

double EdgeWeight(double place, double edge) {
    if (place >= edge) return 1;
    return 0.5 - 0.5 * std::cos(std::numbers::pi * (place + 0.5) / edge);
}

OrderWindow CutNoise(const PreviewSweep& sweep, const std::vector<double>& response, std::size_t peak) {
    const double begin = static_cast<double>(peak) - sweep.LeadOf(kNoiseFromOrder);
    const double end = static_cast<double>(peak) - sweep.LeadOf(kNoiseToOrder);
    return {response, begin, end, 0.5 * (end - begin), 0.5 * (end - begin)};
}

}  // namespace

OrderWindow::OrderWindow(const std::vector<double>& response, double begin, double end, double firstEdge,
                         double lastEdge) {
    const auto length = static_cast<std::ptrdiff_t>(response.size());
    const auto first = static_cast<std::ptrdiff_t>(std::floor(begin));
    const auto count = static_cast<std::ptrdiff_t>(std::floor(end)) - first;
    samples_.reserve(static_cast<std::size_t>(count));
    for (std::ptrdiff_t n = 0; n < count; ++n) {
        const double weight = EdgeWeight(static_cast<double>(n), firstEdge) *
                              EdgeWeight(static_cast<double>(count - 1 - n), lastEdge);
        energy_ += weight * weight;
        const std::ptrdiff_t place = ((first + n) % length + length) % length;
        samples_.push_back(weight * response[static_cast<std::size_t>(place)]);
    }
}

OrderWindow OrderWindow::Of(const PreviewSweep& sweep, const std::vector<double>& response, std::size_t peak,
                            int order) {
    const double centre = static_cast<double>(peak) - sweep.LeadOf(order);
    const double before = kBefore * sweep.LeadOf((order + 1.0) / order);
    const double after =
        order > 1 ? kAfter * sweep.LeadOf(order / (order - 1.0)) : kLongestResponseSeconds * sweep.rateHz;
    return {response, centre - before, centre + after, kEdgePart * before, kEdgePart * after};
}

double OrderWindow::PowerAt(double turnsPerSample) const {
    const std::complex<double> turn = std::polar(1.0, -2 * std::numbers::pi * turnsPerSample);
    std::complex<double> phasor = 1;
    std::complex<double> sum = 0;
    for (const double sample : samples_) {
        sum += sample * phasor;
        phasor = {phasor.real() * turn.real() - phasor.imag() * turn.imag(),
                  phasor.real() * turn.imag() + phasor.imag() * turn.real()};
    }
    return std::norm(sum);
}

NoiseWindow::NoiseWindow(const PreviewSweep& sweep, const std::vector<double>& response, std::size_t peak)
    : lowestTurns_(sweep.lowHz / sweep.rateHz) {
    const OrderWindow window = CutNoise(sweep, response, peak);
    const double steps = kNoiseStepsPerOctave * std::log2(sweep.highHz / sweep.lowHz);
    for (int step = 0; step <= steps; ++step)
        densities_.push_back(window.PowerAt(lowestTurns_ * std::exp2(step / kNoiseStepsPerOctave)) /
                             window.Energy());
}

double NoiseWindow::PowerIn(const OrderWindow& order, double turnsPerSample) const {
    const double step = kNoiseStepsPerOctave * std::log2(turnsPerSample / lowestTurns_);
    const auto last = static_cast<double>(densities_.size() - 1);
    const auto from = static_cast<std::size_t>(std::clamp(std::ceil(step - kNoiseHalfSteps), 0.0, last));
    const auto to = static_cast<std::size_t>(std::clamp(std::floor(step + kNoiseHalfSteps), 0.0, last));
    double sum = 0;
    for (std::size_t i = from; i <= to; ++i) sum += densities_[i];
    return sum / static_cast<double>(to - from + 1) * order.Energy();
}

}  // namespace sonavex
