// The measurement adds no distortion or noise: pure sines in doubles at any rate and frequency.

#include <gtest/gtest.h>

#include <numbers>

#include "core/analyzer/MeasureTone.h"
#include "unit/analyzer/Signals.h"

namespace sonavex {
namespace {

class SelfResidual : public testing::TestWithParam<double> {};

TEST_P(SelfResidual, IsBelowMinus280DecibelsAtAnyFrequency) {
    const double rateHz = GetParam();
    const RecordPlan plan(DefaultRecordLength(rateHz), rateHz);
    for (const double hertz : {8.5 * plan.BinHz(), 10.5 * plan.BinHz(), 0.0083333 * rateHz, 0.0207 * rateHz,
                               64.0 * plan.BinHz(), 0.1234567 * rateHz, 0.45 * rateHz}) {
        const signals::ExactFrequency f(hertz, rateHz);
        const signals::Samples x = signals::Sine(plan.Length(), f, 0.9, 0.3);
        ToneSettings settings;
        settings.band = {1.0, 0.5 * rateHz};
        const Reading reading = AnalyzeTone(plan, {x, rateHz}, settings);
        ASSERT_TRUE(reading.Valid()) << hertz;
        EXPECT_NEAR(*reading.frequencyHz.value, f.Hertz(), 1e-12 * hertz) << hertz;
        EXPECT_NEAR(*reading.levelDbfs.value, Decibels(0.9), 1e-12) << hertz;
        EXPECT_NEAR(*reading.dc.value, 0.0, 1e-14) << hertz;
        EXPECT_LE(*reading.thdnDb.value, -280.0) << hertz;
        EXPECT_LE(reading.thdDb.value.value_or(-400.0), -280.0) << hertz;
        EXPECT_TRUE(reading.spurs.empty()) << hertz;
    }
}

// Levels and phases at any rate and frequency at which the harmonic is below half the rate.
TEST_P(SelfResidual, KnownHarmonicsAreReadAtAnyFrequency) {
    const double rateHz = GetParam();
    const RecordPlan plan(DefaultRecordLength(rateHz), rateHz);
    for (const double hertz : {8.5 * plan.BinHz(), 0.0083333 * rateHz, 64.0 * plan.BinHz(),
                               0.1234567 * rateHz, 0.2345678 * rateHz}) {
        const signals::ExactFrequency f(hertz, rateHz);
        signals::Samples x = signals::Sine(plan.Length(), f, 0.9);
        const bool third = 3.0 * hertz < 0.45 * rateHz;
        signals::AddSine(x, f.Times(2), 0.9e-2, 1.0);
        if (third) signals::AddSine(x, f.Times(3), 0.9e-5, -2.0);
        const Reading reading = AnalyzeTone(plan, {x, rateHz}, ToneSettings{});
        ASSERT_TRUE(reading.Valid()) << hertz;
        EXPECT_NEAR(*reading.frequencyHz.value, f.Hertz(), 1e-9 * hertz) << hertz;
        EXPECT_NEAR(*reading.levelDbfs.value, Decibels(0.9), 1e-5) << hertz;
        EXPECT_NEAR(*reading.harmonics[0].levelDbc.value, -40.0, 1e-5) << hertz;
        EXPECT_NEAR(*reading.harmonics[0].phaseDegrees.value, 180.0 / std::numbers::pi, 1e-3) << hertz;
        if (!third) continue;
        EXPECT_NEAR(*reading.harmonics[1].levelDbc.value, -100.0, 1e-5) << hertz;
        EXPECT_NEAR(*reading.harmonics[1].phaseDegrees.value, -360.0 / std::numbers::pi, 1e-3) << hertz;
    }
}

INSTANTIATE_TEST_SUITE_P(Rates, SelfResidual,
                         testing::Values(4000.0, 8000.0, 11025.0, 16000.0, 22050.0, 32000.0, 44100.0, 48000.0,
                                         96000.0, 192000.0));

}  // namespace
}  // namespace sonavex
