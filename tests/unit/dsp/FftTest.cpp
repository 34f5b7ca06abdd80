#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <vector>

#include "core/dsp/modSPL2VB.h"
#include "support/Errors.h"
#include "support/ReferenceMath.h"

namespace sonavex::modSPL2VB {
namespace {

// Four arrays of a transform at selected positions of one buffer.
struct Arrays {
    Arrays(std::int32_t order, std::size_t spacing, std::size_t offset) : length(std::size_t{1} << order) {
        memory.assign(4 * spacing + offset + 8, 0.0);
        const auto address = reinterpret_cast<std::uintptr_t>(memory.data()) / sizeof(double);
        const std::size_t start = (8 - address % 8) % 8 + offset;
        const Vector all(memory);
        inRe = all.subspan(start, length);
        inIm = all.subspan(start + spacing, length);
        outRe = all.subspan(start + 2 * spacing, length);
        outIm = all.subspan(start + 3 * spacing, length);
        for (std::size_t t = 0; t < length; ++t) {
            inRe[t] = std::sin(1.3 * static_cast<double>(t * t) + 0.4);
            inIm[t] = std::cos(0.7 * static_cast<double>(t * t) - 1.0) * 2.0;
        }
    }

    // Largest difference from the direct sum, relative to the largest bin.
    double Error(const std::vector<reference::Complex>& expected) const {
        double error = 0.0;
        double largest = 0.0;
        for (std::size_t k = 0; k < length; ++k) {
            const reference::Complex got(outRe[k], outIm[k]);
            error = std::max(error, static_cast<double>(std::abs(expected[k] - got)));
            largest = std::max(largest, static_cast<double>(std::abs(expected[k])));
        }
        return error / largest;
    }

    std::size_t length;
    std::vector<double> memory;
    Vector inRe;
    Vector inIm;
    Vector outRe;
    Vector outIm;
};

// Spacing and offset in elements: as planned, unaligned, unusually spaced, both.
struct Placement {
    std::size_t gap;
    std::size_t offset;
};
constexpr Placement kPlacements[] = {{0, 0}, {0, 1}, {3, 0}, {8, 0}, {5, 3}};

TEST(Fft, ForwardIsTheDiscreteFourierTransform) {
    for (const std::int32_t order : {1, 2, 3, 5, 8, 10}) {
        const FftPlan plan(order);
        for (const Placement& place : kPlacements) {
            Arrays arrays(order, (std::size_t{1} << order) + place.gap, place.offset);
            const auto expected = reference::NaiveDft(arrays.inRe, arrays.inIm);
            nspzrFftNip(plan, arrays.inRe, arrays.inIm, arrays.outRe, arrays.outIm, kForward);
            EXPECT_LT(arrays.Error(expected), 1e-15) << order << ' ' << place.gap << ' ' << place.offset;
        }
    }
}

TEST(Fft, TheOrderInUseIsTheDiscreteFourierTransform) {
    const FftPlan plan(12, 4104);
    Arrays arrays(12, 4104, 0);
    const auto expected = reference::NaiveDft(arrays.inRe, arrays.inIm);
    nspzrFftNip(plan, arrays.inRe, arrays.inIm, arrays.outRe, arrays.outIm, kForward);
    EXPECT_LT(arrays.Error(expected), 1e-15);
    Arrays unaligned(12, 4101, 1);
    nspzrFftNip(plan, unaligned.inRe, unaligned.inIm, unaligned.outRe, unaligned.outIm, kForward);
    EXPECT_LT(unaligned.Error(expected), 1e-15);
}

TEST(Fft, InverseHasTheOtherSignAndTheFactor) {
    const FftPlan plan(6);
    Arrays arrays(6, 64, 0);
    nspzrFftNip(plan, arrays.inRe, arrays.inIm, arrays.outRe, arrays.outIm, kInverse);
    std::vector<reference::Complex> expected;
    for (std::size_t t = 0; t < 64; ++t) expected.emplace_back(arrays.inRe[t], arrays.inIm[t]);
    EXPECT_LT(arrays.Error(reference::InverseDft(expected)), 1e-15);
}

TEST(Fft, ForwardAndInverseReturnTheInput) {
    for (const std::int32_t order : {1, 4, 9, 12, 13}) {
        const FftPlan plan(order);
        for (const Placement& place : kPlacements) {
            Arrays there(order, (std::size_t{1} << order) + place.gap, place.offset);
            Arrays back(order, (std::size_t{1} << order) + place.gap, place.offset);
            nspzrFftNip(plan, there.inRe, there.inIm, there.outRe, there.outIm, kForward);
            nspzrFftNip(plan, there.outRe, there.outIm, back.outRe, back.outIm, kInverse);
            for (std::size_t t = 0; t < there.length; ++t) {
                ASSERT_NEAR(back.outRe[t], there.inRe[t], 3e-15) << order << ' ' << t;
                ASSERT_NEAR(back.outIm[t], there.inIm[t], 3e-15) << order << ' ' << t;
            }
        }
    }
}

TEST(Fft, LeavesItsInputAlone) {
    const FftPlan plan(12);
    for (const std::int32_t flags : {kForward, kInverse}) {
        Arrays arrays(12, 4096, 0);
        const Arrays before(12, 4096, 0);
        nspzrFftNip(plan, arrays.inRe, arrays.inIm, arrays.outRe, arrays.outIm, flags);
        EXPECT_TRUE(std::equal(arrays.inRe.begin(), arrays.inRe.end(), before.inRe.begin()));
        EXPECT_TRUE(std::equal(arrays.inIm.begin(), arrays.inIm.end(), before.inIm.begin()));
    }
}

TEST(Fft, AStepGivesAFlatSpectrumExactly) {
    const FftPlan plan(12);
    std::vector<double> re(4096);
    std::vector<double> outRe(4096);
    std::vector<double> outIm(4096);
    const std::vector<double> im(4096);
    re[0] = 3.0;
    nspzrFftNip(plan, re, im, outRe, outIm, kForward);
    EXPECT_EQ(outRe, std::vector<double>(4096, 3.0));
    EXPECT_EQ(outIm, std::vector<double>(4096, 0.0));
}

TEST(Fft, TouchesOnlyTheLength) {
    const FftPlan plan(3);
    const std::vector<double> in(20, 1.0);
    std::vector<double> outRe(20, 5.0);
    std::vector<double> outIm(20, 5.0);
    nspzrFftNip(plan, in, in, outRe, outIm, kInverse);
    EXPECT_EQ(std::count(outRe.begin() + 8, outRe.end(), 5.0), 12);
    EXPECT_EQ(std::count(outIm.begin() + 8, outIm.end(), 5.0), 12);
}

TEST(Fft, RefusesShortArraysAndUnknownFlags) {
    const FftPlan plan(4);
    std::vector<double> shorter(15);
    std::vector<double> a(16);
    std::vector<double> b(16);
    std::vector<double> c(16);
    EXPECT_EQ(ErrorOf([&] { return nspzrFftNip(plan, shorter, a, b, c, kForward), 0; }), 9);
    EXPECT_EQ(ErrorOf([&] { return nspzrFftNip(plan, a, shorter, b, c, kForward), 0; }), 9);
    EXPECT_EQ(ErrorOf([&] { return nspzrFftNip(plan, a, b, shorter, c, kForward), 0; }), 9);
    EXPECT_EQ(ErrorOf([&] { return nspzrFftNip(plan, a, b, c, shorter, kForward), 0; }), 9);
    std::vector<double> d(16);
    EXPECT_EQ(ErrorOf([&] { return nspzrFftNip(plan, a, b, c, d, 0), 0; }), 5);
    EXPECT_EQ(ErrorOf([&] { return nspzrFftNip(plan, a, b, c, d, kForward | kInverse), 0; }), 5);
    EXPECT_EQ(ErrorOf([&] { return nspzrFftNip(plan, a, b, c, d, kForward), 0; }), 0);
}

TEST(Fft, RefusesImpossiblePlans) {
    EXPECT_EQ(ErrorOf([] { return FftPlan(0).Order(); }), 5);
    EXPECT_EQ(ErrorOf([] { return FftPlan(21).Order(); }), 5);
    EXPECT_EQ(ErrorOf([] { return FftPlan(4, 15).Order(); }), 5);
    EXPECT_EQ(FftPlan(12).Order(), 12);
}

TEST(Fft, PlansUpToTheHighestOrderAndTheClosestSpacing) {
    EXPECT_EQ(FftPlan(1).Order(), 1);
    EXPECT_EQ(FftPlan(20).Order(), 20);
    EXPECT_EQ(FftPlan(4, 16).Order(), 4);
    EXPECT_EQ(FftPlan(4, 17).Order(), 4);
}

}  // namespace
}  // namespace sonavex::modSPL2VB
