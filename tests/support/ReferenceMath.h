#pragma once

#include <complex>
#include <cstdint>
#include <span>
#include <vector>

// Textbook mathematics in long double, independent of the instrument's, for comparison.
namespace sonavex::reference {

using Complex = std::complex<long double>;

// X[k] = sum over t of x[t] e^(-2 pi i k t / N), term by term.
std::vector<Complex> NaiveDft(std::span<const double> re, std::span<const double> im);

// The same transform by recursive halving. The length must be a power of two.
std::vector<Complex> Dft(std::vector<Complex> x);
// The inverse transform, with the factor 1 / N and the opposite sign.
std::vector<Complex> InverseDft(std::vector<Complex> x);

// One bin of the transform at any frequency (a fraction of the sampling rate).
Complex DftAt(std::span<const double> x, long double fraction);

// Windowed-sinc band-pass between two fractions of the sampling rate, magnitude 1 in mid-band.
std::vector<double> Bandpass(long double low, long double high, std::int32_t taps);

}  // namespace sonavex::reference
