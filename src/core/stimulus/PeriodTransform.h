#pragma once

#include <complex>
#include <cstddef>
#include <vector>

namespace sonavex {

// Makes one period of a periodic signal from its spectrum. Any thread. FFTW is not used, because its plans
// must be made on one thread. Its rounding errors are below -300 dB of the signal.
class PeriodTransform {
public:
    using Complex = std::complex<double>;

    // A power of two, at least 2.
    explicit PeriodTransform(std::size_t length);

    // The samples x[n] = sum of Re(bins[k] exp(2 pi i k n / length)); `length` bins.
    std::vector<double> Synthesize(std::vector<Complex> bins) const;

private:
    void Join(std::vector<Complex>& values, std::size_t half) const;

    std::vector<Complex> phasors_;
};

}  // namespace sonavex
