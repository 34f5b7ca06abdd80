#include "core/analyzer/LineKernels.h"

#include <cmath>
#include <cstring>

#if defined(__GNUC__) && !defined(__clang__) && defined(__x86_64__) && defined(__GLIBC__) && \
    !defined(SONAVEX_SANITIZED)
#define SONAVEX_EVERY_MACHINE __attribute__((target_clones("default", "arch=x86-64-v3", "arch=x86-64-v4")))
#else
#define SONAVEX_EVERY_MACHINE
#endif

namespace sonavex::line_kernels {
namespace {

// Four numbers that the compiler keeps in one register, or in two. Written out, because GCC 12 vectorises
// loops over partial sums in the wrong direction.
using Four = double __attribute__((vector_size(32)));

inline void Load(const double* x, Four& four) {
    std::memcpy(&four, x, sizeof four);
}

inline void AddProduct(const double* a, const double* b, Four& sum) {
    Four fourA;
    Four fourB;
    Load(a, fourA);
    Load(b, fourB);
    sum += fourA * fourB;
}

// Independent partial sums, which every machine adds in the same order.
constexpr std::size_t kFours = 4;
constexpr std::size_t kLanes = 4 * kFours;

inline double Total(const Four* fours) {
    const Four sum = (fours[0] + fours[1]) + (fours[2] + fours[3]);
    return (sum[0] + sum[2]) + (sum[1] + sum[3]);
}

// To the nearest whole number, for |x| below 2^51. The C library's functions are not vectorised for every
// machine.
inline double Rounded(double x) {
    constexpr double kNoFraction = 0x1.8p52;
    return (x + kNoFraction) - kNoFraction;
}

// Sine and cosine of at most 45 degrees, as Taylor series whose first omitted term is below 1e-18.
inline double SmallSine(double x) {
    const double y = x * x;
    double sum = -1.0 / 121645100408832000.0;
    sum = sum * y + 1.0 / 355687428096000.0;
    sum = sum * y - 1.0 / 1307674368000.0;
    sum = sum * y + 1.0 / 6227020800.0;
    sum = sum * y - 1.0 / 39916800.0;
    sum = sum * y + 1.0 / 362880.0;
    sum = sum * y - 1.0 / 5040.0;
    sum = sum * y + 1.0 / 120.0;
    sum = sum * y - 1.0 / 6.0;
    return x + x * (y * sum);
}

inline double SmallCosine(double x) {
    const double y = x * x;
    double sum = -1.0 / 6402373705728000.0;
    sum = sum * y + 1.0 / 20922789888000.0;
    sum = sum * y - 1.0 / 87178291200.0;
    sum = sum * y + 1.0 / 479001600.0;
    sum = sum * y - 1.0 / 3628800.0;
    sum = sum * y + 1.0 / 40320.0;
    sum = sum * y - 1.0 / 720.0;
    sum = sum * y + 1.0 / 24.0;
    sum = sum * y - 0.5;
    return 1.0 + y * sum;
}

}  // namespace

SONAVEX_EVERY_MACHINE
Sums Matched(const double* x, const double* re, const double* im, std::size_t n) {
    Four foursRe[kFours] = {};
    Four foursIm[kFours] = {};
    std::size_t i = 0;
    for (; i + kLanes <= n; i += kLanes) {
        for (std::size_t j = 0; j < kFours; ++j) {
            AddProduct(x + i + 4 * j, re + i + 4 * j, foursRe[j]);
            AddProduct(x + i + 4 * j, im + i + 4 * j, foursIm[j]);
        }
    }
    Sums sums{Total(foursRe), Total(foursIm)};
    for (; i < n; ++i) {
        sums.re += x[i] * re[i];
        sums.im += x[i] * im[i];
    }
    return sums;
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
    Four fours[kFours] = {};
    std::size_t i = 0;
    for (; i + kLanes <= n; i += kLanes)
        for (std::size_t j = 0; j < kFours; ++j) {
            Four four;
            Load(x + i + 4 * j, four);
            fours[j] += four;
        }
    double sum = Total(fours);
    for (; i < n; ++i) sum += x[i];
    return sum;
}

SONAVEX_EVERY_MACHINE
double Dot(const double* a, const double* b, std::size_t n) {
    Four fours[kFours] = {};
    std::size_t i = 0;
    for (; i + kLanes <= n; i += kLanes)
        for (std::size_t j = 0; j < kFours; ++j) AddProduct(a + i + 4 * j, b + i + 4 * j, fours[j]);
    double sum = Total(fours);
    for (; i < n; ++i) sum += a[i] * b[i];
    return sum;
}

SONAVEX_EVERY_MACHINE
double SquareDot(const double* a, const double* b, std::size_t n) {
    Four fours[kFours] = {};
    std::size_t i = 0;
    for (; i + kLanes <= n; i += kLanes)
        for (std::size_t j = 0; j < kFours; ++j) {
            Four fourA;
            Four fourB;
            Load(a + i + 4 * j, fourA);
            Load(b + i + 4 * j, fourB);
            fours[j] += fourA * fourA * fourB;
        }
    double sum = Total(fours);
    for (; i < n; ++i) sum += a[i] * a[i] * b[i];
    return sum;
}

SONAVEX_EVERY_MACHINE
double FourthPowers(const double* x, std::size_t n) {
    Four fours[kFours] = {};
    std::size_t i = 0;
    for (; i + kLanes <= n; i += kLanes) {
        for (std::size_t j = 0; j < kFours; ++j) {
            Four four;
            Load(x + i + 4 * j, four);
            const Four square = four * four;
            fours[j] += square * square;
        }
    }
    double sum = Total(fours);
    for (; i < n; ++i) sum += x[i] * x[i] * x[i] * x[i];
    return sum;
}

SONAVEX_EVERY_MACHINE
double SecondDifferenceSquares(const double* x, std::size_t n) {
    Four fours[kFours] = {};
    std::size_t i = 0;
    for (; i + kLanes <= n; i += kLanes)
        for (std::size_t j = 0; j < kFours; ++j) {
            Four here;
            Four before;
            Four twoBefore;
            Load(x + i + 4 * j, here);
            Load(x + i + 4 * j - 1, before);
            Load(x + i + 4 * j - 2, twoBefore);
            const Four difference = here - 2.0 * before + twoBefore;
            fours[j] += difference * difference;
        }
    double sum = Total(fours);
    for (; i < n; ++i) {
        const double difference = x[i] - 2.0 * x[i - 1] + x[i - 2];
        sum += difference * difference;
    }
    return sum;
}

SONAVEX_EVERY_MACHINE
void Phasors(double coarse, double fine, double first, double step, double* re, double* im, std::size_t n) {
    constexpr double kTwoPi = 6.283185307179586;
    const double fraction = coarse - Rounded(coarse);
    const auto count = static_cast<int>(n);
    for (int i = 0; i < count; ++i) {
        const double m = first + step * i;
        const double exact = fraction * m;
        double turns = exact - Rounded(exact) + fine * m;
        turns -= Rounded(turns);
        const double quarters = Rounded(4.0 * turns);
        const double angle = kTwoPi * (turns - 0.25 * quarters);
        const double sine = SmallSine(angle);
        const double cosine = SmallCosine(angle);
        // Cosine and sine of -2 to 2 quarters of a turn.
        const double straight = 1.0 - std::abs(quarters);
        const double across = quarters * (2.0 - std::abs(quarters));
        re[i] = straight * cosine - across * sine;
        im[i] = straight * sine + across * cosine;
    }
}

}  // namespace sonavex::line_kernels
