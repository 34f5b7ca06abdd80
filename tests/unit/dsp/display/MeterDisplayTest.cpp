#include <gtest/gtest.h>

#include "core/dsp/display/MeterDisplay.h"

namespace sonavex {
namespace {

class MeterDisplayTest : public testing::Test {
protected:
    void Show(BlockStep reached) {
        readings.reached = reached;
        display.Show(readings, shownPct);
    }
    void ShowInput(double peak) {
        readings.inputPeak = peak;
        Show(BlockStep::kInputLevel);
    }
    void ShowOutput(double peak, bool muted = false) {
        readings.outputPeak = peak;
        readings.muted = muted;
        Show(BlockStep::kOutputLevel);
    }
    // The end of a cycle with percentages from the 2nd harmonic to this one.
    void ShowHarmonicsUpTo(std::size_t highest) {
        readings.locked = true;
        readings.harmonicsAveraged = Readings::kHarmonics;
        for (std::size_t i = 0; i < Readings::kHarmonics; ++i)
            readings.harmonics[i] = i + 2 <= highest ? HarmonicReading{0.5, 0.5, -60.0} : HarmonicReading{};
        Show(BlockStep::kHarmonics);
    }

    MeasurementControls controls;
    MeterDisplay display{controls};
    MeterDisplay::Percentages shownPct{};
    Readings readings;
    const MeterView& view = display.View();
};

TEST_F(MeterDisplayTest, ShowsNothingBeforeTheFirstBlock) {
    EXPECT_EQ(view.lockWord, "NOT LOCKED");
    EXPECT_EQ(controls.picLocked.BackColor(), kLightRed);
    EXPECT_EQ(controls.GenLocked.BackColor(), kLightRed);
    EXPECT_EQ(view.inputWord, "");
    EXPECT_EQ(view.outputWord, "");
    EXPECT_EQ(view.totalOf, "H2–H9, re total (THD_R)");
    EXPECT_EQ(controls.Cycle.Caption(), "0 of 19");
    EXPECT_EQ(view.cycleBlocks, 0);
    EXPECT_FALSE(view.noSignal);
    EXPECT_FALSE(view.inputInPercent);
    EXPECT_FALSE(view.outputInPercent);
    EXPECT_FALSE(view.totalInPercent);
    EXPECT_FALSE(view.settling);
    for (const auto& level : view.levelsDb) EXPECT_FALSE(level.has_value());
    EXPECT_EQ(display.SpokenInput(), "");
    EXPECT_EQ(display.SpokenOutput(), "");
}

TEST_F(MeterDisplayTest, ShowsTheStepsThatWereReached) {
    readings.inputPeak = 8190.0;
    readings.measuredHz = 996.0;
    readings.automatic = true;
    readings.locked = true;
    readings.outputPeak = 16380.0;
    Show(BlockStep::kNothing);
    EXPECT_EQ(controls.LblLevel.Caption(), "");
    Show(BlockStep::kInputLevel);
    EXPECT_EQ(controls.LblLevel.Caption(), "25");
    EXPECT_EQ(controls.txtFreq.Text(), "");
    Show(BlockStep::kFrequency);
    EXPECT_EQ(controls.txtFreq.Text(), "996");
    EXPECT_EQ(controls.picLocked.BackColor(), kLightRed);
    controls.lbltest[7].SetCaption("0.1000");
    Show(BlockStep::kLock);
    EXPECT_EQ(controls.picLocked.BackColor(), kLightGreen);
    EXPECT_EQ(controls.lblThd.Caption(), "");
    Show(BlockStep::kHarmonics);
    EXPECT_EQ(controls.lblThd.Caption(), "0.1000");
    EXPECT_EQ(controls.lblDACLevel.Caption(), "");
    Show(BlockStep::kOutputLevel);
    EXPECT_EQ(controls.lblDACLevel.Caption(), "50");
}

TEST_F(MeterDisplayTest, WritesTheFrequencyOnlyInAutomatic) {
    controls.txtFreq.SetText("1000");
    readings.measuredHz = 7.0;
    Show(BlockStep::kFrequency);
    EXPECT_EQ(controls.txtFreq.Text(), "1000");
    readings.automatic = true;
    readings.measuredHz = 0.0;
    Show(BlockStep::kFrequency);
    EXPECT_EQ(controls.txtFreq.Text(), "0");
}

TEST_F(MeterDisplayTest, DistinguishesOverloadFromSilence) {
    ShowInput(32760.0);
    EXPECT_EQ(controls.LblLevel.Caption(), "Ovr");
    EXPECT_EQ(view.inputWord, "OVERLOAD");
    EXPECT_FALSE(view.noSignal);
    EXPECT_FALSE(view.inputInPercent);
    EXPECT_EQ(display.SpokenInput(), "OVERLOAD");
    for (const double peak : {0.0, -12.0}) {
        ShowInput(32760.0);
        ShowInput(peak);
        EXPECT_EQ(controls.LblLevel.Caption(), "Ovr") << peak;
        EXPECT_EQ(controls.prgADC.Value(), 32760.0F) << peak;
        EXPECT_EQ(view.inputWord, "NO SIGNAL") << peak;
        EXPECT_TRUE(view.noSignal) << peak;
        EXPECT_EQ(display.SpokenInput(), "NO SIGNAL") << peak;
    }
    ShowInput(8190.0);
    EXPECT_EQ(view.inputWord, "");
    EXPECT_FALSE(view.noSignal);
    EXPECT_TRUE(view.inputInPercent);
    EXPECT_EQ(display.SpokenInput(), "25 %");
}

TEST_F(MeterDisplayTest, ALevelBelowHalfAPercentHasNoUnit) {
    ShowInput(1.0);
    EXPECT_EQ(controls.LblLevel.Caption(), "");
    EXPECT_FALSE(view.inputInPercent);
    EXPECT_EQ(display.SpokenInput(), "");
    ShowOutput(1.0);
    EXPECT_EQ(controls.lblDACLevel.Caption(), "");
    EXPECT_FALSE(view.outputInPercent);
    EXPECT_EQ(display.SpokenOutput(), "");
}

TEST_F(MeterDisplayTest, SaysWhatTheOutputDoes) {
    ShowOutput(32760.0);
    EXPECT_EQ(controls.lblDACLevel.Caption(), "Ovr");
    EXPECT_EQ(view.outputWord, "OVERLOAD");
    EXPECT_FALSE(view.outputInPercent);
    EXPECT_EQ(display.SpokenOutput(), "OVERLOAD");
    ShowOutput(32760.0, true);
    EXPECT_EQ(controls.lblDACLevel.Caption(), "Muted");
    EXPECT_EQ(controls.prgDAC.Value(), 32760.0F);
    EXPECT_EQ(view.outputWord, "");
    EXPECT_FALSE(view.outputInPercent);
    EXPECT_EQ(display.SpokenOutput(), "Muted");
    ShowOutput(16380.0);
    EXPECT_EQ(view.outputWord, "");
    EXPECT_TRUE(view.outputInPercent);
    EXPECT_EQ(display.SpokenOutput(), "50 %");
    ShowOutput(0.0);
    EXPECT_EQ(view.outputWord, "") << "silence is no overload here";
}

TEST_F(MeterDisplayTest, SaysLockedNotLockedAndStopped) {
    readings.locked = true;
    Show(BlockStep::kLock);
    EXPECT_EQ(view.lockWord, "LOCKED");
    display.ShowStopped(true);
    EXPECT_EQ(view.lockWord, "STOPPED");
    EXPECT_EQ(controls.picLocked.BackColor(), kLightRed);
    EXPECT_EQ(controls.GenLocked.BackColor(), kLightRed);
    display.ShowStopped(false);
    EXPECT_EQ(view.lockWord, "NOT LOCKED");
    display.ShowStopped(true);
    Show(BlockStep::kLock);
    EXPECT_EQ(view.lockWord, "STOPPED") << "a block does not end it";
    EXPECT_EQ(controls.picLocked.BackColor(), kLightGreen);
    display.ShowStopped(false);
    EXPECT_EQ(view.lockWord, "LOCKED");
    readings.locked = false;
    Show(BlockStep::kLock);
    EXPECT_EQ(view.lockWord, "NOT LOCKED");
}

TEST_F(MeterDisplayTest, SaysWhatTheTotalCounts) {
    const char* const words[] = {"H2", "H2–H3", "H2–H4", "H2–H5", "H2–H6", "H2–H7", "H2–H8", "H2–H9"};
    for (std::size_t highest = 2; highest <= 9; ++highest) {
        ShowHarmonicsUpTo(highest);
        EXPECT_EQ(view.totalOf, std::string(words[highest - 2]) + ", re total (THD_R)");
        EXPECT_EQ(controls.lblThd.Caption(), "0.5000");
        EXPECT_TRUE(view.totalInPercent);
    }
    ShowHarmonicsUpTo(1);
    EXPECT_EQ(view.totalOf, "H2–H9, re total (THD_R)");
    EXPECT_EQ(controls.lblThd.Caption(), "N/A");
    EXPECT_FALSE(view.totalInPercent);
    ShowHarmonicsUpTo(3);
    readings.locked = false;
    readings.harmonicsAveraged = 0;
    Show(BlockStep::kHarmonics);
    EXPECT_EQ(view.totalOf, "H2–H9, re total (THD_R)");
    EXPECT_EQ(controls.lblThd.Caption(), "N/A");
    EXPECT_FALSE(view.totalInPercent);
}

TEST_F(MeterDisplayTest, OffersLevelsAndPercentagesAsTheirCaptionsShowThem) {
    readings.locked = true;
    readings.harmonicsAveraged = Readings::kHarmonics;
    readings.harmonics[0] = {0.9, 0.83994, -41.518};
    readings.harmonics[1] = {0.9, -0.00004, 3.0};
    readings.harmonics[2] = {0.9, std::nullopt, std::nullopt};
    shownPct.fill(9.0);
    Show(BlockStep::kHarmonics);
    EXPECT_EQ(controls.lbltest[0].Caption(), "0.8399");
    EXPECT_EQ(controls.lbltest[1].Caption(), "-0.0000");
    EXPECT_EQ(controls.lbltest[2].Caption(), "N/A");
    EXPECT_EQ(controls.lblDb[0].Caption(), "-41.52");
    EXPECT_EQ(controls.lblDb[1].Caption(), "03.00");
    EXPECT_EQ(controls.lblDb[2].Caption(), "N/A");
    EXPECT_EQ(view.levelsDb[0], -41.52);
    EXPECT_EQ(view.levelsDb[1], 3.0);
    EXPECT_FALSE(view.levelsDb[2].has_value());
    EXPECT_EQ(shownPct[0], 0.8399);
    EXPECT_EQ(shownPct[1], 0.0);
    EXPECT_EQ(shownPct[2], 0.0);
    readings.locked = false;
    readings.harmonicsAveraged = 0;
    Show(BlockStep::kHarmonics);
    EXPECT_FALSE(view.levelsDb[0].has_value());
    EXPECT_EQ(controls.lblDb[0].Caption(), "");
    EXPECT_EQ(shownPct[0], 0.8399) << "an unlocked block shows no percentage";
}

TEST_F(MeterDisplayTest, ShowsTheAveragesBeforeAnErrorOnly) {
    readings.locked = true;
    readings.harmonicsAveraged = 2;
    for (HarmonicReading& harmonic : readings.harmonics) harmonic = {0.5, 0.5, -60.0};
    Show(BlockStep::kLock);
    EXPECT_EQ(controls.lbltest[1].Caption(), "0.5000");
    EXPECT_EQ(controls.lblDb[1].Caption(), "-60.00");
    EXPECT_EQ(controls.lbltest[2].Caption(), "");
    EXPECT_EQ(controls.lblDb[2].Caption(), "");
    EXPECT_EQ(controls.lblThd.Caption(), "");
    EXPECT_EQ(view.totalOf, "H2–H3, re total (THD_R)");
}

TEST_F(MeterDisplayTest, SettlesWithGoodBlocks) {
    display.ShowCycle(18, false);
    EXPECT_FALSE(view.settling) << "there is no total yet";
    ShowHarmonicsUpTo(9);
    EXPECT_TRUE(view.settling);
    display.ShowStopped(true);
    EXPECT_FALSE(view.settling) << "readings of the past";
    display.ShowStopped(false);
    EXPECT_TRUE(view.settling);
    display.ShowCycle(19, true);
    EXPECT_FALSE(view.settling);
    display.ShowCycle(19, false);
    ShowHarmonicsUpTo(1);
    EXPECT_FALSE(view.settling) << "a total that is not available";
}

TEST_F(MeterDisplayTest, CountsTheBlocksOfTheCycle) {
    display.ShowCycle(1, false);
    EXPECT_EQ(controls.Cycle.Caption(), "1 of 19");
    display.ShowCycle(12, false);
    EXPECT_EQ(controls.Cycle.Caption(), "12 of 19");
    EXPECT_EQ(view.cycleBlocks, 12);
    display.ShowCycle(0, false);
    EXPECT_EQ(controls.Cycle.Caption(), "0 of 19");
}

TEST_F(MeterDisplayTest, StatesItsLongestCaptions) {
    ShowOutput(100.0, true);
    EXPECT_EQ(controls.lblDACLevel.Caption(), meter_words::kLongestLevel);
    display.ShowCycle(19, false);
    EXPECT_EQ(controls.Cycle.Caption(), meter_words::kLongestCycle);
    readings.harmonics[0] = {100.0, 100.0, -100.0};
    readings.harmonicsAveraged = 1;
    Show(BlockStep::kLock);
    EXPECT_EQ(controls.lbltest[0].Caption(), meter_words::kLongestPercent);
    EXPECT_EQ(controls.lblDb[0].Caption(), meter_words::kLongestDb);
}

TEST_F(MeterDisplayTest, TakesTheBoxesAsInputs) {
    controls.txtFreq.SetText("440.5 Hz");
    modDSP::BlockInputs inputs = display.Inputs(48000);
    EXPECT_EQ(inputs.sampleRateHz, 48000);
    EXPECT_FALSE(inputs.automatic);
    EXPECT_FALSE(inputs.mute);
    EXPECT_FALSE(inputs.baseline);
    EXPECT_EQ(inputs.typedHz, 440);
    EXPECT_EQ(inputs.typedError, 0);
    controls.chkMuteOutput.SetValue(1);
    for (const char* text : {"1e300", "2147483648", "1e400"}) {
        controls.txtFreq.SetText(text);
        inputs = display.Inputs(48000);
        EXPECT_TRUE(inputs.mute);
        EXPECT_EQ(inputs.typedError, 6) << text;
    }
    controls.chkAuto.SetValue(1);
    controls.chkBaseline.SetValue(1);
    inputs = display.Inputs(48000);
    EXPECT_TRUE(inputs.automatic);
    EXPECT_TRUE(inputs.baseline);
    EXPECT_EQ(inputs.typedError, 0) << "the text is not needed";
}

}  // namespace
}  // namespace sonavex
