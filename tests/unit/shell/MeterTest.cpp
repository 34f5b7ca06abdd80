#include <gtest/gtest.h>

#include <vector>

#include "core/audio/Meter.h"
#include "support/Blocks.h"
#include "support/Errors.h"

namespace sonavex {
namespace {

class MeterTest : public testing::Test {
protected:
    MeterTest() {
        meter.Controls.chkAuto.SetValue(1);
        meter.Controls.chkMuteOutput.SetValue(1);
        meter.SetUpAnalysis(25, 15900);
    }

    void Feed(const StereoSignal& signal, int blocks) {
        for (int i = 0; i < blocks; ++i) {
            const Block captured = MakeBlock(signal, 0);
            meter.ProcessCapturedBlock(captured, playback);
        }
    }
    void FeedTone(int blocks) { Feed(Sine(32000, 1000, 9000), blocks); }

    SharedState shared;
    Meter meter{shared};
    Block playback{};
};

TEST_F(MeterTest, CountsBlocksAndPlaces) {
    EXPECT_EQ(meter.Blocks(), 0);
    EXPECT_FALSE(meter.Updated());
    FeedTone(1);
    EXPECT_EQ(meter.Blocks(), 1);
    EXPECT_EQ(meter.CyclePosition(), 2);
    FeedTone(17);
    EXPECT_EQ(meter.CyclePosition(), 19);
    FeedTone(1);
    EXPECT_EQ(meter.CyclePosition(), 1);
    EXPECT_EQ(meter.Blocks(), 19);
}

TEST_F(MeterTest, UpdatesAtBlocks18And37And56) {
    std::vector<std::int64_t> updates;
    std::vector<std::int64_t> settled;
    meter.OnBlock = [&] {
        if (meter.Updated()) updates.push_back(meter.Blocks());
        if (meter.Settled()) settled.push_back(meter.Blocks());
    };
    FeedTone(60);
    EXPECT_EQ(updates, (std::vector<std::int64_t>{18, 37, 56}));
    EXPECT_EQ(settled, (std::vector<std::int64_t>{37, 56}));
}

TEST_F(MeterTest, TheFirstUpdateIsNeverSettled) {
    FeedTone(18);
    EXPECT_TRUE(meter.Updated());
    EXPECT_FALSE(meter.Settled());
    EXPECT_NE(meter.Controls.lblThd.Caption(), "");
}

TEST_F(MeterTest, OneUnlockedBlockSpoilsItsCycleOnly) {
    for (const int before : {0, 1, 9, 18}) {
        while (meter.CyclePosition() != 19) FeedTone(1);
        FeedTone(before);
        Feed(Silence(), 1);
        FeedTone(18 - before);
        EXPECT_TRUE(meter.Updated()) << before;
        EXPECT_FALSE(meter.Settled()) << before;
        FeedTone(19);
        EXPECT_TRUE(meter.Settled()) << before;
    }
}

TEST_F(MeterTest, ADisturbanceSpoilsTheCycleOfTheBlockAfterIt) {
    FeedTone(37);
    EXPECT_TRUE(meter.Settled());
    meter.StreamDisturbed();
    EXPECT_TRUE(meter.Settled());  // the shown readings were settled
    FeedTone(19);
    EXPECT_FALSE(meter.Settled());
    FeedTone(10);
    meter.StreamDisturbed();
    FeedTone(9);
    EXPECT_TRUE(meter.Updated());
    EXPECT_FALSE(meter.Settled());
    FeedTone(19);
    EXPECT_TRUE(meter.Settled());
}

TEST_F(MeterTest, ABlockThatFailsSpoilsItsCycle) {
    for (const int before : {0, 10}) {
        while (meter.CyclePosition() != 19) FeedTone(1);
        FeedTone(19 + before);
        const std::int64_t blocks = meter.Blocks();
        meter.Controls.chkAuto.SetValue(0);
        meter.Controls.txtFreq.SetText("1e300");
        EXPECT_EQ(ErrorOf([&] { return FeedTone(1), 0; }), 6);
        EXPECT_EQ(meter.Blocks(), blocks);
        meter.Controls.chkAuto.SetValue(1);
        while (meter.CyclePosition() != 19) FeedTone(1);
        EXPECT_FALSE(meter.Settled()) << before;
        FeedTone(19);
        EXPECT_TRUE(meter.Settled()) << before;
    }
}

TEST_F(MeterTest, ABlockThatFailsShowsWhatItHasMeasured) {
    meter.Controls.chkAuto.SetValue(0);
    meter.Controls.txtFreq.SetText("1e300");
    EXPECT_EQ(ErrorOf([&] { return FeedTone(1), 0; }), 6);
    EXPECT_EQ(meter.Controls.LblLevel.Caption(), "27");
    EXPECT_EQ(meter.Controls.lblDACLevel.Caption(), "");
    EXPECT_EQ(meter.Controls.Cycle.Caption(), "0 of 19");
}

TEST_F(MeterTest, ShowsWhereItIsInTheCycleAndWhetherItSettles) {
    FeedTone(18);
    EXPECT_EQ(meter.Controls.Cycle.Caption(), "19 of 19");
    EXPECT_TRUE(meter.Display.View().settling);
    FeedTone(19);
    EXPECT_EQ(meter.Controls.Cycle.Caption(), "19 of 19");
    EXPECT_FALSE(meter.Display.View().settling);
    FeedTone(1);
    EXPECT_EQ(meter.Controls.Cycle.Caption(), "1 of 19");
}

TEST_F(MeterTest, PlaysItsGenerator) {
    meter.Generator.NumTones = 1;
    meter.Generator.Tones[0].Frequency = 1000;
    meter.Generator.ResetTonePhases();
    meter.Generator.SetGeneratorRunning(true);
    Feed(Silence(), 1);
    EXPECT_EQ(playback[0], 1598);  // 8191.75 sin(2 pi / 32)
    EXPECT_EQ(playback[1], 1598);
    meter.Generator.SetGeneratorRunning(false);
    Feed(Silence(), 1);
    EXPECT_EQ(playback[0], 0);
}

}  // namespace
}  // namespace sonavex
