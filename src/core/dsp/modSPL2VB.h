#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>

// Operations on vectors of doubles. The count, not the size of the array, determines how many elements are
// processed; an array shorter than the count raises error 9. A destination may be one of its sources (except
// in conversions between Cartesian and polar), but must not overlap it otherwise. Any thread.
namespace sonavex::modSPL2VB {

using Vector = std::span<double>;
using ConstVector = std::span<const double>;

// dst[i] = dst[i] + src[i]
void nspdbAdd2(ConstVector src, Vector dst, std::int32_t n);
// dst[i] = srcA[i] + srcB[i]
void nspdbAdd3(ConstVector srcA, ConstVector srcB, Vector dst, std::int32_t n);
// dst[i] = dst[i] * value
void nspdbMpy1(double value, Vector dst, std::int32_t n);
// dst[i] = dst[i] * src[i]
void nspdbMpy2(ConstVector src, Vector dst, std::int32_t n);
// dst[i] = src[i]
void nspdbCopy(ConstVector src, Vector dst, std::int32_t n);
// Largest of vec[0..n-1], by sign, not by magnitude. Error 5 for n < 1.
double nspdMax(ConstVector vec, std::int32_t n);

// mag[i] = sqrt(re[i]^2 + im[i]^2), phase[i] = atan2(im[i], re[i]) in radians
void nspdbrCartToPolar(ConstVector re, ConstVector im, Vector mag, Vector phase, std::int32_t n);
// re[i] = mag[i] cos(phase[i]), im[i] = mag[i] sin(phase[i]); the inverse up to rounding
void nspdbrPolarToCart(ConstVector mag, ConstVector phase, Vector re, Vector im, std::int32_t n);

// mag[i] = sqrt(re[i]^2 + im[i]^2): nspdbrCartToPolar without the phases.
void Magnitudes(ConstVector re, ConstVector im, Vector mag, std::int32_t n);
// Largest of sqrt(re[i]^2 + im[i]^2). Error 5 for n < 1.
double LargestMagnitude(ConstVector re, ConstVector im, std::int32_t n);
// (re + i im)[k] = (re + i im)[k] * (factorRe + i factorIm)[k]: equivalent to multiplying magnitudes and
// adding phases.
void MultiplyComplex(ConstVector factorRe, ConstVector factorIm, Vector re, Vector im, std::int32_t n);
// out[i] = sin(angle[i]), angle in radians
void Sines(ConstVector angle, Vector out, std::int32_t n);

// Direction flags of the transform.
inline constexpr std::int32_t kForward = 1;
inline constexpr std::int32_t kInverse = 2;

// Precomputed data for transforms of one length, usable any number of times. One thread at a time.
class FftPlan {
public:
    // Length 2^order, order 1 to 20. arraySpacing: distance from the start of the real part to the start of
    // the imaginary part in elements, for input and output; 0 for adjacent arrays. Aligned arrays with this
    // spacing are transformed directly, all others through a copy. Error 5 for another order, or a spacing
    // shorter than the length.
    explicit FftPlan(std::int32_t order, std::size_t arraySpacing = 0);
    ~FftPlan();
    FftPlan(FftPlan&&) noexcept;
    FftPlan& operator=(FftPlan&&) noexcept;

    std::int32_t Order() const noexcept;

private:
    friend void nspzrFftNip(const FftPlan&, ConstVector, ConstVector, Vector, Vector, std::int32_t);
    struct Plans;
    std::unique_ptr<Plans> plans_;
};

// Discrete Fourier transform of split real and imaginary arrays, natural order, out of place (the output
// arrays must differ from the input arrays).
// kForward: X[k] = sum over t of x[t] e^(-2 pi i k t / N). kInverse: e^(+...) and the factor 1/N.
void nspzrFftNip(const FftPlan& plan, ConstVector inRe, ConstVector inIm, Vector outRe, Vector outIm,
                 std::int32_t flags);

// Window of nspdFirBandpass: symmetric Blackman, 0.42 - 0.5 cos(2 pi n / (L - 1)) + 0.08 cos(4 pi n / (L -
// 1)).
inline constexpr std::int32_t kBlackman = 2;

// Impulse response of a band-pass, edges as fractions of the sampling rate (0 to 0.5): the ideal response
// centred on (tapsLen - 1) / 2, times the window. normalize 1 scales it to a magnitude of 1 in the middle of
// the band. Error 5 for another window, fewer than 2 taps or lowFraction > highFraction.
void nspdFirBandpass(double lowFraction, double highFraction, Vector taps, std::int32_t tapsLen,
                     std::int32_t windowType, std::int32_t normalize);

}  // namespace sonavex::modSPL2VB
