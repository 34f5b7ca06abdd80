#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <vector>

#include "platform/simulated/DeviceUnderTest.h"
#include "support/Tones.h"

namespace sonavex {
namespace {

constexpr std::size_t kCurveFrames = 4096;
constexpr std::size_t kLine = 37;
// Error of one spectral line from rounding input and output to 16 bits, in steps.
constexpr double kRounding = 0.1;

using Samples = std::vector<std::int16_t>;

Samples Through(const DeviceUnderTestModel& model, const Samples& played) {
    DeviceUnderTest device(model);
    EXPECT_EQ(device.FramesNeeded(played.size() / 2), played.size() / 2);
    Samples captured(played.size());
    device.Process(played, captured);
    return captured;
}

Samples SineThrough(const DeviceUnderTestModel& model, double peak) {
    return Through(model, StereoSine(peak, kLine, kCurveFrames, kCurveFrames));
}

Samples EveryValue() {
    Samples samples;
    for (int value = -32768; value <= 32767; ++value)
        samples.insert(samples.end(),
                       {static_cast<std::int16_t>(value), static_cast<std::int16_t>(-1 - value)});
    return samples;
}

TEST(DeviceUnderTestCurve, DefaultIsAWire) {
    const Samples played = EveryValue();
    EXPECT_EQ(Through({}, played), played);
}

TEST(DeviceUnderTestCurve, GainScalesAndRoundsToEven) {
    DeviceUnderTestModel model;
    model.gain = 0.5;
    EXPECT_EQ(Through(model, {100, -100, 1, 3, 5, -1, 32767, -32768}),
              (Samples{50, -50, 0, 2, 2, 0, 16384, -16384}));
    model.gain = -1.0;
    EXPECT_EQ(Through(model, {7, -32768}), (Samples{-7, 32767}));
}

TEST(DeviceUnderTestCurve, SaturatesAtFullScale) {
    DeviceUnderTestModel model;
    model.gain = 4.0;
    EXPECT_EQ(Through(model, {8191, 8192, -8192, -8193}), (Samples{32764, 32767, -32768, -32768}));
    EXPECT_EQ(Through(model, {32767, -32768}), (Samples{32767, -32768}));
}

TEST(DeviceUnderTestCurve, EachHarmonicComesAloneWithItsAmplitude) {
    for (std::size_t order = 2; order <= 9; ++order) {
        DeviceUnderTestModel model;
        model.harmonicAmplitudes.assign(order - 1, 0.0);
        model.harmonicAmplitudes.back() = 0.01;
        const Samples captured = SineThrough(model, model.referencePeak);
        EXPECT_NEAR(LinePeak(captured, kLine), model.referencePeak, kRounding) << order;
        for (std::size_t line = 2; line <= 12; ++line)
            EXPECT_NEAR(LinePeak(captured, line * kLine), line == order ? 81.9175 : 0.0, kRounding)
                << "harmonic " << line << " for order " << order;
    }
}

TEST(DeviceUnderTestCurve, HarmonicsAddUp) {
    DeviceUnderTestModel model;
    model.harmonicAmplitudes = {0.02, 0.01, 0.005, 0.0025, 0.00125, 0.0006, 0.0003, 0.00015};
    const Samples captured = SineThrough(model, model.referencePeak);
    for (std::size_t i = 0; i < model.harmonicAmplitudes.size(); ++i)
        EXPECT_NEAR(LinePeak(captured, (i + 2) * kLine), model.harmonicAmplitudes[i] * model.referencePeak,
                    kRounding)
            << "harmonic " << i + 2;
}

TEST(DeviceUnderTestCurve, HarmonicsReferToThePeakBehindTheGain) {
    DeviceUnderTestModel model;
    model.gain = 0.5;
    model.referencePeak = 8000.0;
    model.harmonicAmplitudes = {0.0, 0.05};
    const Samples captured = SineThrough(model, 16000.0);
    EXPECT_NEAR(LinePeak(captured, kLine), 8000.0, kRounding);
    EXPECT_NEAR(LinePeak(captured, 3 * kLine), 400.0, kRounding);
}

TEST(DeviceUnderTestCurve, SquareTermMakesTheSecondHarmonic) {
    DeviceUnderTestModel model;
    model.polynomial = {0.0, 1.0, 0.1};
    const double peak = 16384.0;  // half of full scale
    const Samples captured = SineThrough(model, peak);
    EXPECT_NEAR(LinePeak(captured, kLine), peak, kRounding);
    EXPECT_NEAR(LinePeak(captured, 2 * kLine), peak * 0.1 * 0.5 / 2.0, kRounding);
    EXPECT_NEAR(LinePeak(captured, 0) / 2.0, peak * 0.1 * 0.5 / 2.0, kRounding);
    EXPECT_NEAR(LinePeak(captured, 3 * kLine), 0.0, kRounding);
}

TEST(DeviceUnderTestCurve, CubicTermMakesTheThirdHarmonic) {
    DeviceUnderTestModel model;
    model.polynomial = {0.0, 1.0, 0.0, -0.2};
    const double peak = 24576.0;
    const double relative = 0.75;
    const Samples captured = SineThrough(model, peak);
    EXPECT_NEAR(LinePeak(captured, kLine), peak * (1.0 - 0.2 * 0.75 * relative * relative), kRounding);
    EXPECT_NEAR(LinePeak(captured, 3 * kLine), peak * 0.2 * relative * relative / 4.0, kRounding);
    EXPECT_NEAR(LinePeak(captured, 2 * kLine), 0.0, kRounding);
}

TEST(DeviceUnderTestCurve, ConstantOfThePolynomialIsInFullScale) {
    DeviceUnderTestModel model;
    model.polynomial = {0.25, 0.5};
    EXPECT_EQ(Through(model, {0, 1000, -1000, -32768}), (Samples{8192, 8692, 7692, -8192}));
}

TEST(DeviceUnderTestCurve, ClippingLimitsBothSigns) {
    DeviceUnderTestModel model;
    model.clipAt = 1000.0;
    EXPECT_EQ(Through(model, {999, -999, 1000, -1000, 1001, -1001, 32767, -32768}),
              (Samples{999, -999, 1000, -1000, 1000, -1000, 1000, -1000}));
}

TEST(DeviceUnderTestCurve, HardClippingHasTheHarmonicsOfTheory) {
    DeviceUnderTestModel model;
    model.clipAt = 10000.0;
    const double peak = 20000.0;
    const Samples captured = SineThrough(model, peak);
    // A sine clipped at sin(a) of its peak; here a = 30 degrees.
    const double a = std::asin(0.5);
    const double fundamental = peak * 2.0 / std::numbers::pi * (a + 0.5 * std::cos(a));
    const double third =
        peak * (2.0 / std::numbers::pi) *
        (std::sin(2.0 * a) / 2.0 - std::sin(4.0 * a) / 4.0 + 0.5 * 2.0 * std::cos(3.0 * a) / 3.0);
    EXPECT_NEAR(LinePeak(captured, kLine), fundamental, peak * 1e-4);
    EXPECT_NEAR(LinePeak(captured, 3 * kLine), std::fabs(third), peak * 1e-3);
    EXPECT_NEAR(LinePeak(captured, 2 * kLine), 0.0, peak * 1e-4);
}

TEST(DeviceUnderTestCurve, OffsetIsAddedBehindTheClipping) {
    DeviceUnderTestModel model;
    model.clipAt = 100.0;
    model.dcOffset = -40.0;
    EXPECT_EQ(Through(model, {0, 50, 500, -500}), (Samples{-40, 10, 60, -140}));
    model.clipAt = 0.0;
    EXPECT_EQ(Through(model, {-32768, -32728}), (Samples{-32768, -32768}));
}

}  // namespace
}  // namespace sonavex
