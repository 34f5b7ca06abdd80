#include "core/analyzer/RecordPlan.h"

#include <fftw3.h>

#include <new>

#include "core/analyzer/LineKernels.h"
#include "core/analyzer/Weightings.h"

namespace sonavex {
namespace {

using RealArray = std::unique_ptr<double, void (*)(void*)>;

RealArray MakeRealArray(std::size_t length) {
    RealArray array(fftw_alloc_real(length), fftw_free);
    if (!array) throw std::bad_alloc();
    return array;
}

// Real and imaginary part of each bin. The transform is in place: new memory costs as much time as half the
// transform.
std::size_t SpectrumReals(std::size_t length) {
    return 2 * (length / 2 + 1);
}

fftw_complex* AsComplex(const RealArray& array) {
    return reinterpret_cast<fftw_complex*>(array.get());
}

}  // namespace

struct RecordPlan::Plan {
    Plan(std::size_t length, double rate)
        : window(length),
          overlap(window),
          rateHz(rate),
          a(PowerGains(AWeighting)),
          itu468(PowerGains(Weighting468)) {
        const RealArray array = MakeRealArray(SpectrumReals(length));
        transform =
            fftw_plan_dft_r2c_1d(static_cast<int>(length), array.get(), AsComplex(array), FFTW_ESTIMATE);
        if (transform == nullptr) throw std::bad_alloc();
    }
    ~Plan() { fftw_destroy_plan(transform); }
    Plan(const Plan&) = delete;
    Plan& operator=(const Plan&) = delete;

    std::vector<double> PowerGains(double (*gain)(double)) const {
        const std::size_t length = window.Length();
        std::vector<double> gains(length / 2 + 1);
        for (std::size_t j = 0; j < gains.size(); ++j) {
            const double amplitude = gain(static_cast<double>(j) * rateHz / static_cast<double>(length));
            gains[j] = amplitude * amplitude;
        }
        return gains;
    }

    AnalysisWindow window;
    RecordOverlap overlap;
    double rateHz;
    std::vector<double> a;
    std::vector<double> itu468;
    fftw_plan transform = nullptr;
};

RecordPlan::RecordPlan(std::size_t length, double rateHz) : plan_(std::make_unique<Plan>(length, rateHz)) {}
RecordPlan::~RecordPlan() = default;
RecordPlan::RecordPlan(RecordPlan&&) noexcept = default;
RecordPlan& RecordPlan::operator=(RecordPlan&&) noexcept = default;

const AnalysisWindow& RecordPlan::Window() const noexcept {
    return plan_->window;
}

const RecordOverlap& RecordPlan::Overlap() const noexcept {
    return plan_->overlap;
}

double RecordPlan::RateHz() const noexcept {
    return plan_->rateHz;
}

std::span<const double> RecordPlan::APowerGains() const noexcept {
    return plan_->a;
}

std::span<const double> RecordPlan::PowerGains468() const noexcept {
    return plan_->itu468;
}

std::vector<double> RecordPlan::PowerSpectrum(std::span<const double> samples) const {
    return PowerLessDc(samples, 0.0);
}

std::vector<double> RecordPlan::AcPowerSpectrum(std::span<const double> samples) const {
    const AnalysisWindow& window = plan_->window;
    return PowerLessDc(
        samples, line_kernels::Dot(samples.data(), window.Values().data(), window.Length()) / window.Sum());
}

std::vector<double> RecordPlan::PowerLessDc(std::span<const double> samples, double dc) const {
    const AnalysisWindow& window = plan_->window;
    const std::size_t length = window.Length();
    const RealArray array = MakeRealArray(SpectrumReals(length));
    double* const windowed = array.get();
    const double* const weights = window.Values().data();
    for (std::size_t n = 0; n < length; ++n) windowed[n] = (samples[n] - dc) * weights[n];
    fftw_execute_dft_r2c(plan_->transform, windowed, AsComplex(array));

    std::vector<double> power(length / 2 + 1);
    const double scale = 2.0 / (static_cast<double>(length) * window.SumOfSquares());
    for (std::size_t j = 0; j < power.size(); ++j) {
        const double re = windowed[2 * j];
        const double im = windowed[2 * j + 1];
        power[j] = scale * (re * re + im * im);
    }
    // 0 Hz and half the rate have no mirror image.
    power.front() *= 0.5;
    if (length % 2 == 0) power.back() *= 0.5;
    return power;
}

}  // namespace sonavex
