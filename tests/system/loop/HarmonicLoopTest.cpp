#include <gmock/gmock.h>

#include <algorithm>
#include <cmath>
#include <numbers>
#include <ostream>

#include "core/report/Report.h"
#include "core/text/Numbers.h"
#include "support/RecordingPrinter.h"
#include "system/loop/LoopRig.h"

namespace sonavex {
namespace {

// A rate and a frequency on an even bin, so that harmonics do not leak into each other.
struct Case {
    std::int32_t rateHz;
    int bin;
    int harmonics;  // below the highest usable bin

    double FrequencyHz() const { return bin * rateHz / 4096.0; }
};

void PrintTo(const Case& testCase, std::ostream* out) {
    *out << testCase.rateHz << " Hz, bin " << testCase.bin;
}

class HarmonicLoop : public testing::TestWithParam<Case> {};

TEST_P(HarmonicLoop, CaptionsMatchTheDevicesHarmonics) {
    const Case& param = GetParam();
    LoopRig rig(param.rateHz);
    DeviceUnderTestModel model;
    model.harmonicAmplitudes = {0.01, 0.02, 0.005, 0.03, 0.002, 0.008, 0.004, 0.015};
    rig.Connect(model);
    rig.PlaySine(param.FrequencyHz());
    rig.Settle();
    EXPECT_EQ(rig.meter.Analysis().PeakBin, param.bin);
    EXPECT_EQ(rig.meter.Controls.txtFreq.Text(), CStr(std::floor(param.FrequencyHz())));
    double sum = 0.0;
    for (int n = 2; n <= 9; ++n) {
        const double h = model.harmonicAmplitudes[static_cast<std::size_t>(n - 2)];
        sum += h * h;
        if (n > param.harmonics) {
            EXPECT_EQ(rig.PercentText(n), "N/A") << n;
            EXPECT_EQ(rig.DbText(n), "N/A") << n;
            continue;
        }
        EXPECT_NEAR(rig.Percent(n), 100.0 * std::sqrt(sum) / std::sqrt(1.0 + sum), kRoundingPercent) << n;
        EXPECT_NEAR(rig.Db(n), 20.0 * std::log10(h), 0.1) << n;
    }
    EXPECT_EQ(rig.meter.Controls.lblThd.Caption(), rig.PercentText(param.harmonics));
    EXPECT_EQ(rig.meter.Controls.LblLevel.Caption().empty(), false);
}

// Bins up to 128 x 9 fit at every rate; the last two cases show the limit.
INSTANTIATE_TEST_SUITE_P(Rates, HarmonicLoop,
                         testing::Values(Case{32000, 128, 9}, Case{48000, 96, 9}, Case{44100, 94, 9},
                                         Case{22050, 186, 9}, Case{16000, 64, 9}, Case{8000, 130, 9},
                                         Case{4000, 100, 9}, Case{32000, 300, 6}, Case{48000, 480, 3},
                                         Case{96000, 64, 9}, Case{192000, 32, 9}, Case{192000, 640, 3}));

TEST(Loop, AWireAddsOnlyTheRoundingTo16Bit) {
    LoopRig rig(32000);
    rig.PlaySine(1000.0);
    rig.Settle();
    EXPECT_EQ(rig.meter.Controls.txtFreq.Text(), "1000");
    EXPECT_LT(rig.Percent(9), kRoundingPercent);
    EXPECT_EQ(rig.meter.Controls.prgADC.Value(), 8192.0F);
    EXPECT_EQ(rig.meter.Controls.LblLevel.Caption(), "25");
    EXPECT_EQ(rig.meter.Controls.lblDACLevel.Caption(), "Muted");
}

TEST(Loop, TheReportPrintsAReadingAbove48kHz) {
    LoopRig rig(192000);
    DeviceUnderTestModel model;
    model.harmonicAmplitudes = {0.01, 0.02};
    rig.Connect(model);
    rig.PlaySine(30000.0);
    rig.Settle();
    CallLog log;
    RecordingPrinter printer(log);
    PrintInformation(rig.meter.Controls, {2026, 11, 21}, printer);
    EXPECT_THAT(printer.items,
                testing::IsSupersetOf({std::string("0.80 0.88 Frequency : 30000 Hz"),
                                       "0.80 1.83 " + rig.PercentText(2) + ' ', "0.80 2.21 " + rig.DbText(2),
                                       "7.41 1.83 " + rig.PercentText(3)}));
    EXPECT_NEAR(rig.Percent(2), 1.0, kRoundingPercent);
    EXPECT_NEAR(rig.Db(3), 20.0 * std::log10(0.02), 0.1);
}

TEST(Loop, APolynomialMakesTheHarmonicsOfItsPowers) {
    // y = x + a x^2 + b x^3 with x = A cos: 2nd a A^2 / 2, 3rd b A^3 / 4, 1st A + 3 b A^3 / 4.
    LoopRig rig(48000);
    DeviceUnderTestModel model;
    const double a = 0.2;
    const double b = 0.9;
    model.polynomial = {0.0, 1.0, a, b};
    rig.Connect(model);
    rig.PlaySine(1125.0);
    rig.Settle();
    const double peak = 8191.75 / 32768.0;
    const double first = peak + 0.75 * b * std::pow(peak, 3);
    const double second = a * peak * peak / 2.0 / first;
    const double third = b * std::pow(peak, 3) / 4.0 / first;
    const double sum = second * second + third * third;
    EXPECT_NEAR(rig.Percent(2), 100.0 * second / std::sqrt(1.0 + second * second), kRoundingPercent);
    EXPECT_NEAR(rig.Percent(3), 100.0 * std::sqrt(sum / (1.0 + sum)), kRoundingPercent);
    EXPECT_NEAR(rig.Db(2), 20.0 * std::log10(second), 0.02);
    EXPECT_NEAR(rig.Db(3), 20.0 * std::log10(third), 0.02);
    EXPECT_LT(rig.Db(4), -90.0);
}

// Amplitude of harmonic n of a sine of peak 1 clipped at +/- level: the Fourier integral over one period in
// fine steps.
double ClippedHarmonic(int n, double level) {
    constexpr int kSteps = 200000;
    double sum = 0.0;
    for (int i = 0; i < kSteps; ++i) {
        const double angle = 2.0 * std::numbers::pi * (i + 0.5) / kSteps;
        sum += std::clamp(std::sin(angle), -level, level) * std::sin(n * angle);
    }
    return 2.0 * sum / kSteps;
}

TEST(Loop, ClippingMakesOddHarmonics) {
    LoopRig rig(32000);
    DeviceUnderTestModel model;
    model.clipAt = 6000.0;
    rig.Connect(model);
    // About 171 samples per cycle resolve the corners well, and aliases are small.
    rig.PlaySine(187.5);
    rig.Settle();
    const double level = 6000.0 / 8191.75;
    const double first = ClippedHarmonic(1, level);
    double sum = 0.0;
    for (const int n : {3, 5, 7, 9}) {
        const double h = std::fabs(ClippedHarmonic(n, level)) / first;
        sum += h * h;
        EXPECT_NEAR(rig.Percent(n), 100.0 * std::sqrt(sum / (1.0 + sum)), 0.1) << n;
        EXPECT_TRUE(rig.DbText(n - 1) == "N/A" || rig.Db(n - 1) < -60.0) << rig.DbText(n - 1);
    }
    EXPECT_NEAR(rig.Db(3), 20.0 * std::log10(std::fabs(ClippedHarmonic(3, level)) / first), 0.1);
}

}  // namespace
}  // namespace sonavex
