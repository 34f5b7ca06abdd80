#include <gtest/gtest.h>

#include <cmath>
#include <string>

#include "core/text/Numbers.h"
#include "support/AnalysisRig.h"

namespace sonavex {
namespace {

using Line = AnalysisRig::Line;

const std::vector<Line> kTenth{{128, 1000.0}, {256, 100.0}};
const std::vector<Line> kThird{{128, 1000.0}, {384, 50.0}};

double Pct(double ratio) {
    return 100.0 * ratio / std::sqrt(1.0 + ratio * ratio);
}
std::string PctText(double pct) {
    return Format(pct, Pattern::kPercent);
}
std::string DbText(double ratio) {
    return Format(20.0 * std::log10(ratio), Pattern::kTwoByTwo);
}

TEST(Display, EverythingStartsEmpty) {
    const AnalysisRig rig(32000);
    EXPECT_EQ(rig.Percentages(), "- - - - - - - -");
    EXPECT_EQ(rig.Levels(), "- - - - - - - -");
    EXPECT_EQ(rig.controls.lblThd.Caption(), "");
    EXPECT_EQ(rig.controls.LblLevel.Caption(), "");
    EXPECT_EQ(rig.controls.lblDACLevel.Caption(), "");
    EXPECT_EQ(rig.controls.txtFreq.Text(), "");
    EXPECT_EQ(rig.state->HistIndex, 0);
}

TEST(Display, TheFirstCycleAverages18BlocksOver19) {
    AnalysisRig rig(32000);
    rig.FeedLines(kTenth, 17);
    EXPECT_EQ(rig.controls.lbltest[0].Caption(), "");
    EXPECT_EQ(rig.controls.lblThd.Caption(), "");
    rig.FeedLines(kTenth);
    EXPECT_EQ(rig.controls.lbltest[0].Caption(), PctText(Pct(0.1) * 18.0 / 19.0));
    EXPECT_EQ(rig.controls.lblDb[0].Caption(), DbText(0.1 * 18.0 / 19.0));
    EXPECT_EQ(rig.controls.lblThd.Caption(), PctText(Pct(0.1) * 18.0 / 19.0));
    rig.FeedLines(kTenth, 19);
    EXPECT_EQ(rig.controls.lbltest[0].Caption(), PctText(Pct(0.1)));
    EXPECT_EQ(rig.controls.lblDb[0].Caption(), "-20.00");
}

TEST(Display, CaptionsChangeOnlyAtTheEndOfACycle) {
    AnalysisRig rig(32000);
    rig.FeedLines(kTenth, 18 + 19);
    const std::string before = rig.Percentages() + rig.Levels() + rig.controls.lblThd.Caption();
    for (int block = 0; block < 18; ++block) {
        rig.FeedLines(kThird);
        ASSERT_EQ(rig.Percentages() + rig.Levels() + rig.controls.lblThd.Caption(), before) << block;
    }
    rig.FeedLines(kThird);
    EXPECT_EQ(rig.Percentages().substr(0, 4), "N/A ");
    EXPECT_EQ(rig.controls.lbltest[1].Caption(), PctText(Pct(0.05)));
    EXPECT_EQ(rig.controls.lblThd.Caption(), PctText(Pct(0.05)));
}

TEST(Display, ACycleKnowsNothingOfTheOneBefore) {
    AnalysisRig rig(32000);
    rig.FeedLines(kTenth, 18);
    rig.FeedLines(kThird, 19);
    EXPECT_EQ(rig.Levels(), "N/A " + DbText(0.05) + " N/A N/A N/A N/A N/A N/A");
}

TEST(Display, UnlockedBlocksCountAsZero) {
    AnalysisRig rig(32000);
    rig.FeedLines(kTenth, 18);
    rig.Feed(Silence(), 7);
    rig.FeedLines(kTenth, 12);
    EXPECT_EQ(rig.controls.lbltest[0].Caption(), PctText(Pct(0.1) * 12.0 / 19.0));
    EXPECT_EQ(rig.controls.lblDb[0].Caption(), DbText(0.1 * 12.0 / 19.0));
}

TEST(Display, AfterRelockingCaptionsAndTotalStayEmptyUntilTheUpdate) {
    AnalysisRig rig(32000);
    rig.FeedLines(kTenth, 18 + 3);
    rig.Feed(Silence(), 1);
    EXPECT_EQ(rig.controls.lblThd.Caption(), "N/A");
    for (int block = 0; block < 14; ++block) {
        rig.FeedLines(kTenth);
        ASSERT_TRUE(rig.state->FreqLocked) << block;
        ASSERT_EQ(rig.Percentages(), "- - - - - - - -") << block;
        ASSERT_EQ(rig.Levels(), "- - - - - - - -") << block;
        ASSERT_EQ(rig.controls.lblThd.Caption(), "") << block;
    }
    rig.FeedLines(kTenth);
    EXPECT_EQ(rig.controls.lblThd.Caption(), PctText(Pct(0.1) * 18.0 / 19.0));
}

TEST(Display, UnlockedAtTheUpdateShowsNothing) {
    AnalysisRig rig(32000);
    rig.FeedLines(kTenth, 17);
    rig.Feed(Silence(), 1);
    EXPECT_EQ(rig.state->HistIndex, 18);
    EXPECT_EQ(rig.Percentages(), "- - - - - - - -");
    EXPECT_EQ(rig.state->CurrentPct[0], 0.0);
}

TEST(Display, LevelsChangeWithEveryBlock) {
    AnalysisRig rig(32000);
    rig.controls.chkMuteOutput.SetValue(0);
    for (const int peak : {3000, 9000, 15000, 21000}) {
        rig.Feed(Pair(Sine(32000, 1000, peak), Silence()), 2);
        EXPECT_NEAR(rig.controls.prgADC.Value(), peak, 1.0);
        EXPECT_NEAR(Val(rig.controls.LblLevel.Caption()), peak / 327.6, 0.51);
        EXPECT_NEAR(rig.controls.prgDAC.Value(), peak, 0.02 * peak);
    }
}

TEST(Baseline, IsSubtractedFromThePercentages) {
    AnalysisRig rig(32000);
    rig.controls.chkBaseline.SetValue(1);
    rig.state->BaselinePct.fill(2.5);
    rig.state->BaselineDb.fill(-3.0);
    rig.FeedLines(kTenth, 18 + 19);
    for (std::size_t i = 0; i < 8; ++i)
        EXPECT_EQ(rig.controls.lbltest[i].Caption(), PctText(Pct(0.1) - 2.5)) << i;
    EXPECT_EQ(rig.controls.lblThd.Caption(), PctText(Pct(0.1) - 2.5));
    EXPECT_EQ(rig.state->CurrentPct[0], Val(PctText(Pct(0.1) - 2.5)));
    // The dB are not corrected.
    EXPECT_EQ(rig.controls.lblDb[0].Caption(), "-20.00");
    EXPECT_NEAR(rig.state->CurrentDb[0], -20.0, 1e-12);
}

TEST(Baseline, KeepsTheAverageOfACorrectedUpdate) {
    AnalysisRig rig(32000);
    rig.controls.chkBaseline.SetValue(1);
    rig.state->BaselinePct.fill(2.5);
    rig.FeedLines(kTenth, 18);
    for (const std::optional<double>& average : rig.state->UncorrectedPct) {
        ASSERT_TRUE(average);
        EXPECT_EQ(PctText(*average), PctText(Pct(0.1) * 18 / 19));
    }
    rig.controls.chkBaseline.SetValue(0);
    rig.FeedLines(kTenth, 18);
    EXPECT_TRUE(rig.state->UncorrectedPct[0]) << "no cycle has ended";
    rig.FeedLines(kTenth);
    for (const std::optional<double>& average : rig.state->UncorrectedPct) EXPECT_FALSE(average);
}

TEST(Baseline, ANegativeResultIsShownWithItsSign) {
    AnalysisRig rig(32000);
    rig.controls.chkBaseline.SetValue(1);
    rig.state->BaselinePct.fill(12.0);
    rig.FeedLines(kTenth, 18 + 19);
    EXPECT_EQ(rig.controls.lbltest[0].Caption(), "-2.0496");
    EXPECT_EQ(rig.controls.lblThd.Caption(), "-2.0496");
    EXPECT_EQ(rig.state->CurrentPct[0], -2.0496);
}

TEST(Baseline, AnExactZeroIsNotAvailable) {
    AnalysisRig rig(32000);
    // 4 and 3 add to 5: every slot holds exactly 60.
    rig.controls.chkBaseline.SetValue(1);
    rig.state->BaselinePct.fill(60.0);
    rig.state->BaselinePct[7] = 59.5;
    rig.FeedLines({{128, 4.0}, {256, 3.0}}, 18 + 19);
    EXPECT_EQ(rig.Percentages(), "N/A N/A N/A N/A N/A N/A N/A 0.5000");
    EXPECT_EQ(rig.controls.lblThd.Caption(), "0.5000");
    EXPECT_EQ(rig.state->CurrentPct[0], 0.0);
    EXPECT_NE(rig.controls.lblDb[0].Caption(), "N/A");
}

TEST(Baseline, TurnsNotAvailableIntoANumber) {
    AnalysisRig rig(32000);
    rig.controls.chkBaseline.SetValue(1);
    rig.state->BaselinePct.fill(0.25);
    rig.FeedLines({{1500, 1000.0}}, 18);
    EXPECT_EQ(rig.Percentages(), "-0.2500 -0.2500 -0.2500 -0.2500 -0.2500 -0.2500 -0.2500 -0.2500");
    EXPECT_EQ(rig.controls.lblThd.Caption(), "-0.2500");
    EXPECT_EQ(rig.Levels(), "N/A N/A N/A N/A N/A N/A N/A N/A");
}

TEST(Baseline, CountsOnlyWhenOnAndFromTheNextUpdate) {
    AnalysisRig rig(32000);
    rig.state->BaselinePct.fill(5.0);
    rig.FeedLines(kTenth, 18 + 19);
    const std::string plain = PctText(Pct(0.1));
    EXPECT_EQ(rig.controls.lblThd.Caption(), plain);
    rig.controls.chkBaseline.SetValue(1);
    rig.FeedLines(kTenth, 18);
    EXPECT_EQ(rig.controls.lblThd.Caption(), plain);
    rig.FeedLines(kTenth, 1);
    EXPECT_EQ(rig.controls.lblThd.Caption(), PctText(Pct(0.1) - 5.0));
    rig.controls.chkBaseline.SetValue(0);
    rig.FeedLines(kTenth, 19);
    EXPECT_EQ(rig.controls.lblThd.Caption(), plain);
}

}  // namespace
}  // namespace sonavex
