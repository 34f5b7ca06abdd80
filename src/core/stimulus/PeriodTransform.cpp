#include "core/stimulus/PeriodTransform.h"

#include <cmath>
#include <numbers>
#include <utility>

namespace sonavex {
namespace {

using Complex = std::complex<double>;

void ReverseBits(std::vector<Complex>& values) {
    for (std::size_t i = 1, j = 0; i < values.size(); ++i) {
        std::size_t bit = values.size() / 2;
        for (; (j & bit) != 0; bit /= 2) j ^= bit;
        j ^= bit;
        if (i < j) std::swap(values[i], values[j]);
    }
}

}  // namespace

PeriodTransform::PeriodTransform(std::size_t length) : phasors_(length / 2) {
    for (std::size_t k = 0; k < phasors_.size(); ++k)
        phasors_[k] =
            std::polar(1.0, 2.0 * std::numbers::pi * static_cast<double>(k) / static_cast<double>(length));
}

// Joins pairs of sums of `half` values to sums of twice as many.
void PeriodTransform::Join(std::vector<Complex>& values, std::size_t half) const {
    const std::size_t stride = phasors_.size() / half;
    for (std::size_t begin = 0; begin < values.size(); begin += 2 * half) {
        for (std::size_t k = 0; k < half; ++k) {
            Complex& even = values[begin + k];
            Complex& odd = values[begin + k + half];
            const Complex& phasor = phasors_[k * stride];
            const Complex turned{odd.real() * phasor.real() - odd.imag() * phasor.imag(),
                                 odd.real() * phasor.imag() + odd.imag() * phasor.real()};
            odd = even - turned;
            even += turned;
        }
    }
}

std::vector<double> PeriodTransform::Synthesize(std::vector<Complex> bins) const {
    ReverseBits(bins);
    for (std::size_t half = 1; half < bins.size(); half *= 2) Join(bins, half);
    std::vector<double> samples(bins.size());
    for (std::size_t n = 0; n < samples.size(); ++n) samples[n] = bins[n].real();
    return samples;
}

}  // namespace sonavex
