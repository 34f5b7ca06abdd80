#include "core/preview/PreviewAnalysis.h"

#include <fftw3.h>

#include <algorithm>
#include <cmath>
#include <complex>
#include <cstddef>
#include <numbers>
#include <utility>

#include "core/preview/OrderWindow.h"

namespace sonavex {
namespace {

using PreviewSpectrum = std::vector<std::complex<double>>;

constexpr double kHighestShownPart = 0.45;
constexpr double kLowestHarmonicStartHz = 50;
constexpr double kHighestHarmonicPart = 0.2;
// The spectrum of the sweep is used from its ends on with a smooth edge.
constexpr double kLowEdge = 1.5;     // of the lowest frequency
constexpr double kHighEdge = 0.955;  // of the highest one

// 0.1 dB is a change by 1.16 %. Three standard deviations of the part of the noise in phase, which has half
// of its power, are as much where the mean power is 45.2 dB below the value.
constexpr double kNoiseAboveMeanDb = 25.2;

double SmoothEdge(double part) {
    return 0.5 - 0.5 * std::cos(std::numbers::pi * std::clamp(part, 0.0, 1.0));
}

double GainAtEdges(const PreviewSweep& sweep, double hertz) {
    return SmoothEdge((hertz / sweep.lowHz - 1) / (kLowEdge - 1)) *
           SmoothEdge((1 - hertz / sweep.highHz) / (1 - kHighEdge));
}

double PreviewDecibels(double power) {
    return 10 * std::log10(std::max(power, 1e-40));
}

std::size_t PlaceOfPeak(const std::vector<double>& response) {
    const auto louder = [](double one, double other) { return std::abs(one) < std::abs(other); };
    return static_cast<std::size_t>(std::max_element(response.begin(), response.end(), louder) -
                                    response.begin());
}

}  // namespace

// Plans for one length. The arrays of a call need not be aligned.
struct PreviewAnalysis::Transform {
    explicit Transform(std::size_t length) {
        std::vector<double> samples(length);
        PreviewSpectrum bins(length / 2 + 1);
        constexpr unsigned kFlags = FFTW_ESTIMATE | FFTW_UNALIGNED;
        const int size = static_cast<int>(length);
        forward = fftw_plan_dft_r2c_1d(size, samples.data(), AsFftw(bins), kFlags);
        backward = fftw_plan_dft_c2r_1d(size, AsFftw(bins), samples.data(), kFlags);
    }
    ~Transform() {
        fftw_destroy_plan(forward);
        fftw_destroy_plan(backward);
    }
    Transform(const Transform&) = delete;
    Transform& operator=(const Transform&) = delete;

    static fftw_complex* AsFftw(PreviewSpectrum& bins) {
        return reinterpret_cast<fftw_complex*>(bins.data());  // FFTW documents that both have one layout
    }
    PreviewSpectrum Forward(std::span<const double> samples) const {
        std::vector<double> input(samples.begin(), samples.end());
        PreviewSpectrum bins(input.size() / 2 + 1);
        fftw_execute_dft_r2c(forward, input.data(), AsFftw(bins));
        return bins;
    }
    // Destroys the bins.
    std::vector<double> Backward(PreviewSpectrum& bins) const {
        std::vector<double> samples(2 * (bins.size() - 1));
        fftw_execute_dft_c2r(backward, AsFftw(bins), samples.data());
        return samples;
    }

    fftw_plan forward = nullptr;
    fftw_plan backward = nullptr;
};

PreviewAnalysis::PreviewAnalysis(PreviewSweep sweep)
    : sweep_(std::move(sweep)), transform_(std::make_unique<Transform>(sweep_.samples.size())) {}

PreviewAnalysis::~PreviewAnalysis() = default;

// The linear response at its delay, and the orders before it. Outside the sweep there is nothing.
std::vector<double> PreviewAnalysis::ImpulseResponse(std::span<const double> captured,
                                                     double amplitude) const {
    const PreviewSpectrum played = transform_->Forward(sweep_.samples);
    PreviewSpectrum bins = transform_->Forward(captured);
    const auto length = static_cast<double>(sweep_.samples.size());
    for (std::size_t k = 0; k < bins.size(); ++k) {
        const double gain = GainAtEdges(sweep_, static_cast<double>(k) * sweep_.rateHz / length);
        bins[k] *= gain == 0 ? 0.0 : gain / (amplitude * length) / played[k];
    }
    return transform_->Backward(bins);
}

std::vector<PreviewPoint> PreviewAnalysis::Analyze(std::span<const double> captured, double amplitude,
                                                   std::span<const double> frequenciesHz) const {
    const std::vector<double> response = ImpulseResponse(captured, amplitude);
    const std::size_t peak = PlaceOfPeak(response);
    std::vector<OrderWindow> orders;
    for (int order = 1; order <= kPreviewHighestOrder; ++order)
        orders.push_back(OrderWindow::Of(sweep_, response, peak, order));
    const NoiseWindow noise(sweep_, response, peak);

    std::vector<PreviewPoint> points;
    for (const double hertz : frequenciesHz) {
        if (hertz < 2 * sweep_.lowHz || hertz > kHighestShownPart * sweep_.rateHz) continue;
        const double first = orders.front().PowerAt(hertz / sweep_.rateHz);
        PreviewPoint point{hertz, PreviewDecibels(first), 0, {}};
        point.gainNoiseDb =
            PreviewDecibels(noise.PowerIn(orders.front(), hertz / sweep_.rateHz)) + kNoiseAboveMeanDb;
        for (int order = 2; order <= kPreviewHighestOrder && hertz >= kLowestHarmonicStartHz; ++order) {
            const double turns = order * hertz / sweep_.rateHz;
            if (turns > kHighestHarmonicPart) break;
            const OrderWindow& window = orders[static_cast<std::size_t>(order) - 1];
            point.harmonics.push_back(
                {PreviewDecibels(window.PowerAt(turns) / first),
                 PreviewDecibels(noise.PowerIn(window, turns) / first) + kNoiseAboveMeanDb});
        }
        points.push_back(std::move(point));
    }
    return points;
}

}  // namespace sonavex
