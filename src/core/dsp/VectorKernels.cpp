#include "core/dsp/VectorKernels.h"

#include <algorithm>
#include <cmath>

// Vector versions of the C library's functions, if the library has them.
#if defined(__GNUC__) && !defined(__clang__) && defined(__x86_64__) && defined(__GLIBC__)
extern "C" __attribute__((simd("notinbranch"))) double sin(double) noexcept;
extern "C" __attribute__((simd("notinbranch"))) double cos(double) noexcept;
extern "C" __attribute__((simd("notinbranch"))) double atan2(double, double) noexcept;
// SONAVEX_PLAIN_KERNELS: for tests and benchmarks of the code for SSE2 machines.
#if !defined(SONAVEX_SANITIZED) && !defined(SONAVEX_PLAIN_KERNELS)
#define SONAVEX_EVERY_MACHINE __attribute__((target_clones("default", "arch=x86-64-v3", "arch=x86-64-v4")))
#endif
#endif
#ifndef SONAVEX_EVERY_MACHINE
#define SONAVEX_EVERY_MACHINE
#endif

namespace sonavex::kernels {
namespace {

// Independent running maxima, so that the loop over them is vectorised.
constexpr std::size_t kLanes = 16;

}  // namespace

SONAVEX_EVERY_MACHINE
void Add(const double* a, const double* b, double* out, std::size_t n) {
    for (std::size_t i = 0; i < n; ++i) out[i] = a[i] + b[i];
}

SONAVEX_EVERY_MACHINE
void Scale(double value, double* data, std::size_t n) {
    for (std::size_t i = 0; i < n; ++i) data[i] *= value;
}

SONAVEX_EVERY_MACHINE
void Multiply(const double* a, const double* b, double* out, std::size_t n) {
    for (std::size_t i = 0; i < n; ++i) out[i] = a[i] * b[i];
}

SONAVEX_EVERY_MACHINE
double Max(const double* data, std::size_t n) {
    double lanes[kLanes];
    for (double& lane : lanes) lane = data[0];
    std::size_t i = 0;
    for (; i + kLanes <= n; i += kLanes)
        for (std::size_t j = 0; j < kLanes; ++j) lanes[j] = data[i + j] > lanes[j] ? data[i + j] : lanes[j];
    for (; i < n; ++i) lanes[0] = data[i] > lanes[0] ? data[i] : lanes[0];
    return *std::max_element(lanes, lanes + kLanes);
}

SONAVEX_EVERY_MACHINE
void Magnitudes(const double* re, const double* im, double* out, std::size_t n) {
    for (std::size_t i = 0; i < n; ++i) out[i] = std::sqrt(re[i] * re[i] + im[i] * im[i]);
}

SONAVEX_EVERY_MACHINE
double MaxSquaredMagnitude(const double* re, const double* im, std::size_t n) {
    double lanes[kLanes] = {};
    std::size_t i = 0;
    for (; i + kLanes <= n; i += kLanes) {
        for (std::size_t j = 0; j < kLanes; ++j) {
            const double square = re[i + j] * re[i + j] + im[i + j] * im[i + j];
            lanes[j] = square > lanes[j] ? square : lanes[j];
        }
    }
    for (; i < n; ++i) {
        const double square = re[i] * re[i] + im[i] * im[i];
        lanes[0] = square > lanes[0] ? square : lanes[0];
    }
    return *std::max_element(lanes, lanes + kLanes);
}

SONAVEX_EVERY_MACHINE
void MultiplyComplex(const double* factorRe, const double* factorIm, double* re, double* im, std::size_t n) {
    for (std::size_t i = 0; i < n; ++i) {
        const double product = re[i] * factorRe[i] - im[i] * factorIm[i];
        im[i] = re[i] * factorIm[i] + im[i] * factorRe[i];
        re[i] = product;
    }
}

SONAVEX_EVERY_MACHINE
void Atan2(const double* y, const double* x, double* out, std::size_t n) {
    for (std::size_t i = 0; i < n; ++i) out[i] = ::atan2(y[i], x[i]);
}

SONAVEX_EVERY_MACHINE
void Sin(const double* angle, double* out, std::size_t n) {
    for (std::size_t i = 0; i < n; ++i) out[i] = ::sin(angle[i]);
}

SONAVEX_EVERY_MACHINE
void Cos(const double* angle, double* out, std::size_t n) {
    for (std::size_t i = 0; i < n; ++i) out[i] = ::cos(angle[i]);
}

}  // namespace sonavex::kernels
