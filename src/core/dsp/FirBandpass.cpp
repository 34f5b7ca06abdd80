#include <cmath>
#include <complex>
#include <numbers>

#include "core/dsp/modSPL2VB.h"
#include "core/support/RuntimeError.h"

namespace sonavex::modSPL2VB {
namespace {

// Impulse response of an ideal low-pass; the edge is a fraction of the sampling rate, t in samples.
double IdealLowPass(double edge, double t) {
    return t == 0.0 ? 2.0 * edge : std::sin(2.0 * std::numbers::pi * edge * t) / (std::numbers::pi * t);
}

double Blackman(std::int32_t n, std::int32_t length) {
    const double turn = 2.0 * std::numbers::pi * n / (length - 1);
    return 0.42 - 0.5 * std::cos(turn) + 0.08 * std::cos(2.0 * turn);
}

double MagnitudeAt(double fraction, ConstVector taps) {
    std::complex<double> sum = 0.0;
    for (std::size_t n = 0; n < taps.size(); ++n)
        sum += taps[n] * std::polar(1.0, -2.0 * std::numbers::pi * fraction * static_cast<double>(n));
    return std::abs(sum);
}

}  // namespace

void nspdFirBandpass(double lowFraction, double highFraction, Vector taps, std::int32_t tapsLen,
                     std::int32_t windowType, std::int32_t normalize) {
    if (tapsLen < 2 || windowType != kBlackman || !(lowFraction <= highFraction))
        throw RuntimeError(error_number::kInvalidCall);
    if (taps.size() < static_cast<std::size_t>(tapsLen)) throw RuntimeError(error_number::kSubscript);
    const double centre = (tapsLen - 1) / 2.0;
    for (std::int32_t n = 0; n < tapsLen; ++n) {
        const double ideal = IdealLowPass(highFraction, n - centre) - IdealLowPass(lowFraction, n - centre);
        taps[static_cast<std::size_t>(n)] = ideal * Blackman(n, tapsLen);
    }
    if (normalize == 0) return;
    const double gain =
        MagnitudeAt((lowFraction + highFraction) / 2.0, taps.first(static_cast<std::size_t>(tapsLen)));
    if (gain == 0.0) throw RuntimeError(error_number::kDivisionByZero);
    nspdbMpy1(1.0 / gain, taps, tapsLen);
}

}  // namespace sonavex::modSPL2VB
