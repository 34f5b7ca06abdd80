#include "core/analyzer/LineKernels.h"

#if defined(__GNUC__) && !defined(__clang__) && defined(__x86_64__) && defined(__GLIBC__) && \
    !defined(SONAVEX_SANITIZED)
#define SONAVEX_EVERY_MACHINE __attribute__((target_clones("default", "arch=x86-64-v3", "arch=x86-64-v4")))
#else
#define SONAVEX_EVERY_MACHINE
#endif

namespace sonavex::line_kernels {
namespace {

// Independent partial sums, so that the loop over them is vectorised.
constexpr std::size_t kLanes = 16;

// Pairwise, which every machine adds in the same order.
inline double Total(double* lanes) {
    for (std::size_t half = kLanes / 2; half > 0; half /= 2)
        for (std::size_t j = 0; j < half; ++j) lanes[j] += lanes[j + half];
    return lanes[0];
}

}  // namespace

SONAVEX_EVERY_MACHINE
Sums Matched(const double* x, const double* re, const double* im, std::size_t n) {
    double lanesRe[kLanes] = {};
    double lanesIm[kLanes] = {};
    std::size_t i = 0;
    for (; i + kLanes <= n; i += kLanes) {
        for (std::size_t j = 0; j < kLanes; ++j) lanesRe[j] += x[i + j] * re[i + j];
        for (std::size_t j = 0; j < kLanes; ++j) lanesIm[j] += x[i + j] * im[i + j];
    }
    for (; i < n; ++i) {
        lanesRe[0] += x[i] * re[i];
        lanesIm[0] += x[i] * im[i];
    }
    return {Total(lanesRe), Total(lanesIm)};
}

SONAVEX_EVERY_MACHINE
void Subtract(double factorRe, double factorIm, const double* re, const double* im, double* x,
              std::size_t n) {
    for (std::size_t i = 0; i < n; ++i) x[i] -= re[i] * factorRe - im[i] * factorIm;
}

SONAVEX_EVERY_MACHINE
void Weigh(const double* x, const double* w, double* out, std::size_t n) {
    for (std::size_t i = 0; i < n; ++i) out[i] = x[i] * w[i];
}

SONAVEX_EVERY_MACHINE
double Sum(const double* x, std::size_t n) {
    double lanes[kLanes] = {};
    std::size_t i = 0;
    for (; i + kLanes <= n; i += kLanes)
        for (std::size_t j = 0; j < kLanes; ++j) lanes[j] += x[i + j];
    for (; i < n; ++i) lanes[0] += x[i];
    return Total(lanes);
}

}  // namespace sonavex::line_kernels
