#include <gtest/gtest.h>

#include <cmath>
#include <numeric>
#include <vector>

#include "core/dsp/modSPL2VB.h"
#include "support/Errors.h"

namespace sonavex::modSPL2VB {
namespace {

using Values = std::vector<double>;

Values Ramp(std::size_t size, double start, double step) {
    Values values(size);
    for (std::size_t i = 0; i < size; ++i) values[i] = start + step * static_cast<double>(i);
    return values;
}

// Counts around the widths of vector instructions, and the count in use.
constexpr std::int32_t kCounts[] = {0, 1, 2, 3, 4, 7, 8, 15, 16, 17, 31, 33, 100, 2046, 4096};

TEST(Vectors, AddInPlaceTouchesOnlyTheCount) {
    for (const std::int32_t n : kCounts) {
        const Values src = Ramp(4097, 0.5, 1.0);
        Values dst = Ramp(4097, -3.0, 0.25);
        const Values before = dst;
        nspdbAdd2(src, dst, n);
        for (std::size_t i = 0; i < dst.size(); ++i)
            ASSERT_EQ(dst[i], i < static_cast<std::size_t>(n) ? before[i] + src[i] : before[i])
                << n << ' ' << i;
    }
}

TEST(Vectors, AddIntoThirdTouchesOnlyTheCount) {
    for (const std::int32_t n : kCounts) {
        const Values a = Ramp(4097, 1.0, 0.5);
        const Values b = Ramp(4097, -7.0, 2.0);
        Values dst(4097, 99.0);
        nspdbAdd3(a, b, dst, n);
        for (std::size_t i = 0; i < dst.size(); ++i)
            ASSERT_EQ(dst[i], i < static_cast<std::size_t>(n) ? a[i] + b[i] : 99.0) << n << ' ' << i;
    }
}

TEST(Vectors, ScaleTouchesOnlyTheCount) {
    for (const std::int32_t n : kCounts) {
        Values dst = Ramp(4097, -3.0, 0.25);
        const Values before = dst;
        nspdbMpy1(-1.5, dst, n);
        for (std::size_t i = 0; i < dst.size(); ++i)
            ASSERT_EQ(dst[i], i < static_cast<std::size_t>(n) ? before[i] * -1.5 : before[i])
                << n << ' ' << i;
    }
}

TEST(Vectors, MultiplyInPlaceTouchesOnlyTheCount) {
    for (const std::int32_t n : kCounts) {
        const Values src = Ramp(4097, 0.5, 1.0);
        Values dst = Ramp(4097, -3.0, 0.25);
        const Values before = dst;
        nspdbMpy2(src, dst, n);
        for (std::size_t i = 0; i < dst.size(); ++i)
            ASSERT_EQ(dst[i], i < static_cast<std::size_t>(n) ? before[i] * src[i] : before[i])
                << n << ' ' << i;
    }
}

TEST(Vectors, CopyTouchesOnlyTheCount) {
    for (const std::int32_t n : kCounts) {
        const Values src = Ramp(4097, 0.5, 1.0);
        Values dst(4097, -1.0);
        nspdbCopy(src, dst, n);
        for (std::size_t i = 0; i < dst.size(); ++i)
            ASSERT_EQ(dst[i], i < static_cast<std::size_t>(n) ? src[i] : -1.0) << n << ' ' << i;
    }
}

TEST(Vectors, ADestinationMayBeItsOwnSource) {
    Values values = Ramp(100, 1.0, 1.0);
    nspdbAdd2(values, values, 100);
    EXPECT_EQ(values[99], 200.0);
    nspdbMpy2(values, values, 100);
    EXPECT_EQ(values[99], 40000.0);
}

TEST(Vectors, MaximumIsTheLargestBySign) {
    Values negative = Ramp(4097, -5000.0, 1.0);
    for (const std::int32_t n : {1, 5, 16, 17, 100, 4096})
        EXPECT_EQ(nspdMax(negative, n), -5000.0 + n - 1) << n;
    const Values falling = Ramp(4097, -1.0, -1.0);
    EXPECT_EQ(nspdMax(falling, 4096), -1.0);
    const Values mixed{-10.0, 3.0, -40.0, 2.5};
    EXPECT_EQ(nspdMax(mixed, 4), 3.0);
}

TEST(Vectors, MaximumIsFoundAtEveryPlace) {
    for (const std::size_t n : {1U, 2U, 15U, 16U, 17U, 23U, 32U, 47U}) {
        for (std::size_t at = 0; at < n; ++at) {
            Values values(n + 1, -8.0);
            values[at] = -7.5;
            values[n] = 1e9;  // beyond the count
            ASSERT_EQ(nspdMax(values, static_cast<std::int32_t>(n)), -7.5) << n << ' ' << at;
        }
    }
}

TEST(Vectors, LargestMagnitudeIsFoundAtEveryPlace) {
    for (const std::size_t n : {1U, 2U, 15U, 16U, 17U, 23U, 32U, 47U}) {
        for (std::size_t at = 0; at < n; ++at) {
            Values re(n + 1, -2.0);
            Values im(n + 1, 1.0);
            re[at] = 3.0;
            im[at] = -4.0;
            re[n] = 1e9;
            ASSERT_EQ(LargestMagnitude(re, im, static_cast<std::int32_t>(n)), 5.0) << n << ' ' << at;
        }
    }
}

TEST(Vectors, ComplexProductMatchesTheFormula) {
    const Values factorRe = Ramp(37, -2.0, 0.25);
    const Values factorIm = Ramp(37, 4.0, -0.5);
    Values re = Ramp(37, 1.0, 0.5);
    Values im = Ramp(37, -3.0, 0.125);
    const Values re0 = re;
    const Values im0 = im;
    MultiplyComplex(factorRe, factorIm, re, im, 36);
    for (std::size_t i = 0; i < 36; ++i) {
        ASSERT_EQ(re[i], re0[i] * factorRe[i] - im0[i] * factorIm[i]) << i;
        ASSERT_EQ(im[i], re0[i] * factorIm[i] + im0[i] * factorRe[i]) << i;
    }
    EXPECT_EQ(re[36], re0[36]);
    EXPECT_EQ(im[36], im0[36]);
}

TEST(Vectors, SinesMatchTheLibrary) {
    const Values angles = Ramp(4096, -6.4, 0.003);
    Values sines(4097, 9.0);
    Sines(angles, sines, 4096);
    for (std::size_t i = 0; i < 4096; ++i) ASSERT_NEAR(sines[i], std::sin(angles[i]), 1e-15) << i;
    EXPECT_EQ(sines[4096], 9.0);
}

TEST(Vectors, AShortArrayIsASubscriptError) {
    Values shorter(9);
    Values enough(10);
    EXPECT_EQ(ErrorOf([&] { return nspdbAdd2(shorter, enough, 10), 0; }), 9);
    EXPECT_EQ(ErrorOf([&] { return nspdbAdd2(enough, shorter, 10), 0; }), 9);
    EXPECT_EQ(ErrorOf([&] { return nspdbAdd3(shorter, enough, enough, 10), 0; }), 9);
    EXPECT_EQ(ErrorOf([&] { return nspdbAdd3(enough, shorter, enough, 10), 0; }), 9);
    EXPECT_EQ(ErrorOf([&] { return nspdbAdd3(enough, enough, shorter, 10), 0; }), 9);
    EXPECT_EQ(ErrorOf([&] { return nspdbMpy1(2.0, shorter, 10), 0; }), 9);
    EXPECT_EQ(ErrorOf([&] { return nspdbMpy2(shorter, enough, 10), 0; }), 9);
    EXPECT_EQ(ErrorOf([&] { return nspdbMpy2(enough, shorter, 10), 0; }), 9);
    EXPECT_EQ(ErrorOf([&] { return nspdbCopy(shorter, enough, 10), 0; }), 9);
    EXPECT_EQ(ErrorOf([&] { return nspdbCopy(enough, shorter, 10), 0; }), 9);
    EXPECT_EQ(ErrorOf([&] { return nspdMax(shorter, 10); }), 9);
    EXPECT_EQ(ErrorOf([&] { return LargestMagnitude(enough, shorter, 10); }), 9);
    EXPECT_EQ(ErrorOf([&] { return LargestMagnitude(shorter, enough, 10); }), 9);
    EXPECT_EQ(ErrorOf([&] { return Magnitudes(enough, enough, shorter, 10), 0; }), 9);
    EXPECT_EQ(ErrorOf([&] { return MultiplyComplex(enough, shorter, enough, enough, 10), 0; }), 9);
    EXPECT_EQ(ErrorOf([&] { return Sines(enough, shorter, 10), 0; }), 9);
    EXPECT_EQ(ErrorOf([&] { return nspdbAdd2(shorter, enough, 9), 0; }), 0);
}

TEST(Vectors, PolarConversionsCheckAllFourArrays) {
    Values shorter(9);
    Values a(10);
    Values b(10);
    Values c(10);
    EXPECT_EQ(ErrorOf([&] { return nspdbrCartToPolar(shorter, a, b, c, 10), 0; }), 9);
    EXPECT_EQ(ErrorOf([&] { return nspdbrCartToPolar(a, shorter, b, c, 10), 0; }), 9);
    EXPECT_EQ(ErrorOf([&] { return nspdbrCartToPolar(a, b, shorter, c, 10), 0; }), 9);
    EXPECT_EQ(ErrorOf([&] { return nspdbrCartToPolar(a, b, c, shorter, 10), 0; }), 9);
    EXPECT_EQ(ErrorOf([&] { return nspdbrPolarToCart(shorter, a, b, c, 10), 0; }), 9);
    EXPECT_EQ(ErrorOf([&] { return nspdbrPolarToCart(a, shorter, b, c, 10), 0; }), 9);
    EXPECT_EQ(ErrorOf([&] { return nspdbrPolarToCart(a, b, shorter, c, 10), 0; }), 9);
    EXPECT_EQ(ErrorOf([&] { return nspdbrPolarToCart(a, b, c, shorter, 10), 0; }), 9);
}

TEST(Vectors, NothingHasNoMaximum) {
    const Values values(4);
    EXPECT_EQ(ErrorOf([&] { return nspdMax(values, 0); }), 5);
    EXPECT_EQ(ErrorOf([&] { return nspdMax(values, -1); }), 5);
    EXPECT_EQ(ErrorOf([&] { return LargestMagnitude(values, values, 0); }), 5);
}

TEST(Vectors, ANegativeCountTouchesNothing) {
    Values values{1.0, 2.0};
    nspdbMpy1(5.0, values, -3);
    EXPECT_EQ(values, (Values{1.0, 2.0}));
}

}  // namespace
}  // namespace sonavex::modSPL2VB
