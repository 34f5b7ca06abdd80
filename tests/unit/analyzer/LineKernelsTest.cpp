#include <gtest/gtest.h>

#include <cmath>
#include <numbers>
#include <vector>

#include "core/analyzer/LineKernels.h"
#include "core/analyzer/TurnsPerSample.h"

namespace sonavex::line_kernels {
namespace {

// A length that is no multiple of the partial sums.
constexpr std::size_t kOdd = 53;

std::vector<double> Numbers(double start) {
    std::vector<double> values(kOdd);
    for (std::size_t i = 0; i < kOdd; ++i) values[i] = start + static_cast<double>((i * 37) % 11);
    return values;
}

TEST(LineKernels, SumsReachTheLastElement) {
    const std::vector<double> a = Numbers(1.0);
    const std::vector<double> b = Numbers(2.0);
    const std::vector<double> c = Numbers(-3.0);
    double sum = 0.0;
    double ab = 0.0;
    double ac = 0.0;
    double aab = 0.0;
    for (std::size_t i = 0; i < kOdd; ++i) {
        sum += a[i];
        ab += a[i] * b[i];
        ac += a[i] * c[i];
        aab += a[i] * a[i] * b[i];
    }
    EXPECT_EQ(Sum(a.data(), kOdd), sum);
    EXPECT_EQ(Dot(a.data(), b.data(), kOdd), ab);
    EXPECT_EQ(SquareDot(a.data(), b.data(), kOdd), aab);
    const Sums matched = Matched(a.data(), b.data(), c.data(), kOdd);
    EXPECT_EQ(matched.re, ab);
    EXPECT_EQ(matched.im, ac);
    double differences = 0.0;
    for (std::size_t i = 2; i < kOdd; ++i)
        differences += (a[i] - 2.0 * a[i - 1] + a[i - 2]) * (a[i] - 2.0 * a[i - 1] + a[i - 2]);
    EXPECT_EQ(SecondDifferenceSquares(&a[2], kOdd - 2), differences);
}

TEST(LineKernels, PhasorsAreExactAfterAMillionSamples) {
    const double rateHz = 44100.0;
    const TurnsPerSample f = FrequencyOf(997.0, rateHz);
    std::vector<double> re(kOdd);
    std::vector<double> im(kOdd);
    const double first = 524288.5;
    Phasors(f.coarse, f.fine, first, 9173.0, re.data(), im.data(), kOdd);
    for (std::size_t i = 0; i < kOdd; ++i) {
        const long double m = first + 9173.0L * static_cast<long double>(i);
        const long double turns = std::remainder(997.0L * m, 44100.0L) / 44100.0L;
        const long double angle = 2.0L * std::numbers::pi_v<long double> * turns;
        EXPECT_NEAR(re[i], static_cast<double>(std::cos(angle)), 3e-16) << i;
        EXPECT_NEAR(im[i], static_cast<double>(std::sin(angle)), 3e-16) << i;
    }
}

}  // namespace
}  // namespace sonavex::line_kernels
