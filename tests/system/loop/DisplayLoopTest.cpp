#include <gtest/gtest.h>

#include <cmath>
#include <string>

#include "system/loop/LoopRig.h"

namespace sonavex {
namespace {

TEST(Loop, BaselineTakesTheCardsOwnDistortionAway) {
    LoopRig rig(32000);
    DeviceUnderTestModel model;
    model.harmonicAmplitudes = {0.01, 0.02};
    rig.Connect(model);
    rig.PlaySine(1000.0);
    rig.Settle();
    modDSP::State& analysis = rig.meter.Analysis();
    analysis.BaselinePct = analysis.CurrentPct;
    rig.meter.Controls.chkBaseline.SetValue(1);
    const std::string level = rig.DbText(3);
    rig.Settle();
    for (int n = 2; n <= 9; ++n) EXPECT_NEAR(rig.Percent(n), 0.0, 0.0002) << n;
    EXPECT_EQ(rig.DbText(3), level);
    // With a worse device the reading is the difference.
    model.harmonicAmplitudes = {0.03, 0.02};
    rig.Connect(model);
    rig.Settle();
    EXPECT_NEAR(rig.Percent(2), 100.0 * (0.03 / std::sqrt(1.0009) - 0.01 / std::sqrt(1.0001)),
                kRoundingPercent);
    rig.meter.Controls.chkBaseline.SetValue(0);
    rig.Settle();
    EXPECT_NEAR(rig.Percent(2), 100.0 * 0.03 / std::sqrt(1.0009), kRoundingPercent);
}

TEST(Loop, LocksOnlyOnTheRequestedFrequency) {
    LoopRig rig(32000);
    rig.PlaySine(1000.0);
    rig.Settle();
    rig.meter.Controls.chkAuto.SetValue(0);
    rig.meter.Controls.txtFreq.SetText("1500");
    rig.Step();
    EXPECT_EQ(rig.meter.Controls.picLocked.BackColor(), kLightRed);
    EXPECT_EQ(rig.PercentText(2), "");
    EXPECT_EQ(rig.meter.Controls.lblThd.Caption(), "N/A");
    rig.PlaySine(1500.0);
    rig.Step(12);  // plays what is in the playback buffer
    EXPECT_EQ(rig.meter.Controls.picLocked.BackColor(), kLightGreen);
    EXPECT_EQ(rig.PercentText(2), "");
    rig.Settle();
    EXPECT_EQ(rig.meter.Analysis().PeakBin, 192);
    EXPECT_LT(rig.Percent(9), kRoundingPercent);
}

TEST(Loop, SilenceNeverLocks) {
    LoopRig rig(32000);
    rig.Step(40);
    EXPECT_EQ(rig.meter.Controls.GenLocked.BackColor(), kLightRed);
    EXPECT_EQ(rig.meter.Controls.LblLevel.Caption(), "Ovr");
    EXPECT_EQ(rig.meter.Controls.lblThd.Caption(), "N/A");
    EXPECT_FALSE(rig.meter.Settled());
}

TEST(Loop, TooMuchGainIsAnOverload) {
    LoopRig rig(32000);
    DeviceUnderTestModel model;
    model.gain = 3.9;
    rig.Connect(model);
    rig.PlaySine(1000.0);
    rig.Settle();
    EXPECT_EQ(rig.meter.Controls.LblLevel.Caption(), "98");
    EXPECT_LT(rig.Percent(9), kRoundingPercent);
    model.gain = 5.0;
    rig.Connect(model);
    rig.Settle();
    EXPECT_EQ(rig.meter.Controls.LblLevel.Caption(), "Ovr");
    EXPECT_EQ(rig.meter.Controls.prgADC.Value(), 32760.0F);
    EXPECT_GT(rig.Percent(3), 5.0);
}

TEST(Loop, NoiseShowsInTheReadings) {
    LoopRig rig(32000);
    DeviceUnderTestModel model;
    model.noiseRms = 80.0;
    rig.Connect(model);
    rig.PlaySine(1000.0);
    rig.Settle();
    // Noise of one bin: rms sqrt(2048) x 80 in each channel, against 8191.75 x 1024 of the sine.
    const double oneBin = 100.0 * std::sqrt(2048.0) * 80.0 / (8191.75 * 1024.0);
    EXPECT_GT(rig.Percent(2), 0.5 * oneBin);
    EXPECT_LT(rig.Percent(2), 1.5 * oneBin);
    EXPECT_NEAR(rig.Percent(9), std::sqrt(8.0) * oneBin, 0.3 * std::sqrt(8.0) * oneBin);
}

}  // namespace
}  // namespace sonavex
