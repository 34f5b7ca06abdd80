#include <gtest/gtest.h>

#include <cmath>
#include <string>

#include "core/text/Numbers.h"
#include "support/AnalysisRig.h"
#include "support/Errors.h"

// A block that ends with an error shows the readings of the completed steps, and the previous readings of the
// others.
namespace sonavex {
namespace {

// A complete cycle is shown, with the input sent to the output.
class EarlyEnd : public testing::Test {
protected:
    EarlyEnd() {
        rig.controls.chkMuteOutput.SetValue(0);
        rig.FeedLines({{128, 1000.0}, {256, 100.0}}, 17);
        rig.Feed(Silence(), 1);
        rig.FeedLines({{128, 1000.0}, {256, 100.0}}, 19);
        before = Harmonics();
        level = rig.controls.prgDAC.Value();
        rig.playback.fill(77);
    }

    std::string Harmonics() const {
        return rig.Percentages() + ' ' + rig.Levels() + ' ' + rig.controls.lblThd.Caption();
    }
    void ExpectLock(bool locked) const {
        EXPECT_EQ(rig.controls.picLocked.BackColor(), locked ? kLightGreen : kLightRed);
        EXPECT_EQ(rig.controls.GenLocked.BackColor(), locked ? kLightGreen : kLightRed);
        EXPECT_EQ(rig.display.View().lockWord, locked ? "LOCKED" : "NOT LOCKED");
    }
    void ExpectNoOutput() const {
        EXPECT_EQ(rig.controls.prgDAC.Value(), level);
        EXPECT_EQ(rig.playback[0], 77);
    }
    // A step of this height, the largest sample of its block.
    static Block Step(std::int16_t height) {
        Block block{};
        block[1] = height;
        return block;
    }

    AnalysisRig rig{32000};  // bins of 7.8125 Hz; bin 128 is 1000 Hz
    std::string before;
    float level = 0.0F;
};

TEST_F(EarlyEnd, StartsFromAShownCycle) {
    EXPECT_EQ(rig.state->HistIndex, 18);
    EXPECT_EQ(rig.controls.lblDb[0].Caption(), "-20.00");
    EXPECT_EQ(rig.controls.txtFreq.Text(), "1000");
    EXPECT_EQ(rig.controls.prgADC.Value(), 1.0F);
    ExpectLock(true);
}

TEST_F(EarlyEnd, AtShortArraysShowsNothing) {
    const Block loud = Step(16380);
    EXPECT_EQ(ErrorOf([&] { return rig.Feed(std::span(loud).first(4095)), 0; }), 9);
    EXPECT_EQ(rig.readings.reached, BlockStep::kNothing);
    EXPECT_EQ(rig.controls.LblLevel.Caption(), "");
    EXPECT_EQ(rig.controls.prgADC.Value(), 1.0F);
    EXPECT_EQ(Harmonics(), before);
    ExpectLock(true);
    ExpectNoOutput();
}

TEST_F(EarlyEnd, AtAPeakThatNoWholeNumberHoldsShowsTheInputLevel) {
    rig.state->FilterRe[128] = 1e9;
    EXPECT_EQ(ErrorOf([&] { return rig.Feed(Step(16380)), 0; }), 6);
    EXPECT_EQ(rig.readings.reached, BlockStep::kInputLevel);
    EXPECT_EQ(rig.controls.LblLevel.Caption(), "50");
    EXPECT_EQ(rig.controls.prgADC.Value(), 16380.0F);
    EXPECT_EQ(rig.controls.txtFreq.Text(), "1000");
    EXPECT_EQ(Harmonics(), before);
    ExpectLock(true);
    ExpectNoOutput();
}

TEST_F(EarlyEnd, AtTheFrequencyTextShowsTheInputLevel) {
    rig.controls.chkAuto.SetValue(0);
    rig.controls.txtFreq.SetText("1e300");
    EXPECT_EQ(ErrorOf([&] { return rig.Feed(Step(16380)), 0; }), 6);
    EXPECT_EQ(rig.readings.reached, BlockStep::kFrequency);
    EXPECT_EQ(rig.controls.LblLevel.Caption(), "50");
    EXPECT_EQ(rig.controls.txtFreq.Text(), "1e300");
    EXPECT_EQ(rig.state->FundamentalHz, 1000);
    EXPECT_EQ(Harmonics(), before);
    ExpectLock(true);
    ExpectNoOutput();
}

TEST_F(EarlyEnd, AtAFundamentalOfNothingShowsTheLock) {
    rig.controls.chkAuto.SetValue(0);
    rig.controls.txtFreq.SetText("500");
    rig.Feed(Silence(), 18);
    ExpectLock(false);
    const std::string unlocked = Harmonics();
    EXPECT_EQ(unlocked, "- - - - - - - - - - - - - - - - N/A");
    level = rig.controls.prgDAC.Value();
    rig.playback.fill(77);
    rig.controls.txtFreq.SetText("5");
    EXPECT_EQ(ErrorOf([&] { return rig.Feed(Silence(), 1), 0; }), 11);
    EXPECT_EQ(rig.state->HistIndex, 18);
    EXPECT_EQ(rig.readings.reached, BlockStep::kLock);
    EXPECT_EQ(rig.readings.harmonicsAveraged, 0U);
    EXPECT_EQ(rig.controls.LblLevel.Caption(), "Ovr");
    ExpectLock(true);
    EXPECT_EQ(Harmonics(), unlocked);
    ExpectNoOutput();
}

TEST_F(EarlyEnd, AtTheGeneratorShowsTheOutputLevel) {
    rig.generator.fill = [](std::span<double>, std::span<double>, std::int32_t) {
        throw RuntimeError(error_number::kDivisionByZero);
    };
    rig.state->TailA.fill(0.0);
    rig.state->TailB.fill(0.0);
    rig.state->TailA[7] = 16380.0;
    EXPECT_EQ(ErrorOf([&] { return rig.Feed(Silence(), 1), 0; }), 11);
    EXPECT_EQ(rig.readings.reached, BlockStep::kOutputLevel);
    EXPECT_EQ(rig.controls.lblDACLevel.Caption(), "50");
    EXPECT_EQ(rig.controls.prgDAC.Value(), 16380.0F);
    EXPECT_EQ(rig.controls.lblThd.Caption(), "N/A");
    ExpectLock(false);
    EXPECT_EQ(rig.playback[0], 77);
}

// The rate has changed, but the analysis is not yet set up for it: the 5th harmonic is outside the spectrum.
TEST(EarlyEndInTheHarmonics, ShowsThoseBefore) {
    AnalysisRig rig(4000);
    rig.FeedLines({{1000, 1000.0}, {2000, 10.0}}, 17);
    EXPECT_EQ(rig.controls.lblThd.Caption(), "");
    rig.shared.SampleRate = 48000;
    EXPECT_EQ(ErrorOf([&] { return rig.FeedLines({{1000, 1000.0}, {2000, 10.0}}), 0; }), 9);
    EXPECT_EQ(rig.readings.reached, BlockStep::kLock);
    EXPECT_EQ(rig.readings.harmonicsAveraged, 3U);
    const double pct = 100.0 * 10.0 / std::sqrt(1e6 + 100.0);
    const std::string second = Format(pct * 18.0 / 19.0, Pattern::kPercent);
    const std::string once = Format(pct / 19.0, Pattern::kPercent);
    EXPECT_EQ(rig.Percentages(), second + ' ' + once + ' ' + once + " - - - - -");
    EXPECT_EQ(rig.Levels(),
              Format(20.0 * std::log10(0.01 / 19.0), Pattern::kTwoByTwo) + " N/A N/A - - - - -");
    EXPECT_EQ(rig.controls.lblThd.Caption(), "");
    EXPECT_EQ(rig.state->CurrentPct[0], Val(second));
    EXPECT_EQ(rig.state->CurrentPct[2], Val(once));
    EXPECT_EQ(rig.state->CurrentPct[3], 0.0);
    EXPECT_EQ(rig.state->CurrentHz, 0);
    EXPECT_EQ(rig.controls.picLocked.BackColor(), kLightGreen);
}

}  // namespace
}  // namespace sonavex
