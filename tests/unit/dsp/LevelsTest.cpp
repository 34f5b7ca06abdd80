#include <gtest/gtest.h>

#include <string>

#include "support/AnalysisRig.h"

namespace sonavex {
namespace {

struct Shown {
    float bar;
    std::string caption;
};

// Displayed input level of a block that is silent except for one sample per channel.
Shown InputOf(std::int16_t first, std::int16_t second) {
    AnalysisRig rig(32000);
    Block block{};
    block[400] = first;
    block[1001] = second;
    rig.Feed(block);
    return {rig.controls.prgADC.Value(), rig.controls.LblLevel.Caption()};
}

void ExpectInput(std::int16_t first, std::int16_t second, float bar, const char* caption) {
    const Shown shown = InputOf(first, second);
    EXPECT_EQ(shown.bar, bar) << first << ' ' << second;
    EXPECT_EQ(shown.caption, caption) << first << ' ' << second;
}

TEST(InputLevel, IsTheLargestSampleOfBothChannels) {
    ExpectInput(8190, 100, 8190.0F, "25");
    ExpectInput(100, 8190, 8190.0F, "25");
    ExpectInput(16380, 16379, 16380.0F, "50");
    ExpectInput(32759, 0, 32759.0F, "100");
}

TEST(InputLevel, ANegativeSampleDoesNotCount) {
    ExpectInput(-30000, 3276, 3276.0F, "10");
    ExpectInput(3276, -32768, 3276.0F, "10");
}

TEST(InputLevel, AFullSampleIsAnOverload) {
    ExpectInput(32760, 0, 32760.0F, "Ovr");
    ExpectInput(0, 32760, 32760.0F, "Ovr");
    ExpectInput(32767, -5, 32760.0F, "Ovr");
}

TEST(InputLevel, NothingPositiveCountsAsAnOverload) {
    ExpectInput(0, 0, 32760.0F, "Ovr");
    ExpectInput(-1, -32768, 32760.0F, "Ovr");
    // Even if no sample is zero.
    AnalysisRig rig(32000);
    Block block;
    block.fill(-12);
    rig.Feed(block);
    EXPECT_EQ(rig.controls.prgADC.Value(), 32760.0F);
    EXPECT_EQ(rig.controls.LblLevel.Caption(), "Ovr");
}

TEST(InputLevel, PercentagesAreWholeAndHalvesGoUp) {
    ExpectInput(1, 0, 1.0F, "");
    ExpectInput(163, 0, 163.0F, "");
    ExpectInput(164, 0, 164.0F, "1");
    ExpectInput(18837, 0, 18837.0F, "58");  // 57.5
    ExpectInput(819, 0, 819.0F, "3");       // 2.5
}

// Displayed output level for one vector of two samples, with silence elsewhere.
Shown OutputOf(double first, double second, bool mute = false) {
    AnalysisRig rig(32000);
    rig.controls.chkMuteOutput.SetValue(mute ? 1 : 0);
    rig.state->TailA[7] = second;
    rig.state->TailB[7] = first;
    rig.Feed(Block{});
    return {rig.controls.prgDAC.Value(), rig.controls.lblDACLevel.Caption()};
}

TEST(OutputLevel, IsTheLengthOfTheTwoChannelVector) {
    EXPECT_EQ(OutputOf(3000.0, 4000.0).bar, 5000.0F);
    EXPECT_EQ(OutputOf(-3000.0, -4000.0).bar, 5000.0F);
    EXPECT_EQ(OutputOf(9828.0, 13104.0).caption, "50");
    EXPECT_EQ(OutputOf(0.0, 0.0).bar, 0.0F);
    EXPECT_EQ(OutputOf(0.0, 0.0).caption, "");
    EXPECT_EQ(OutputOf(32759.0, 0.0).caption, "100");
}

TEST(OutputLevel, IsHeldAtFullScale) {
    EXPECT_EQ(OutputOf(32760.0, 0.0).caption, "Ovr");
    EXPECT_EQ(OutputOf(32760.0, 0.0).bar, 32760.0F);
    EXPECT_EQ(OutputOf(30000.0, 30000.0).caption, "Ovr");
    EXPECT_EQ(OutputOf(30000.0, 30000.0).bar, 32760.0F);
    EXPECT_EQ(OutputOf(-40000.0, 0.0).caption, "Ovr");
}

TEST(OutputLevel, OutputPeakIsExactlyFullScaleWhenScaled) {
    for (const double value : {32760.5, 33333.3, 40000.1, 46339.7}) {
        AnalysisRig rig(32000);
        rig.controls.chkMuteOutput.SetValue(0);
        rig.state->TailA[7] = value;
        rig.state->TailA[8] = 123.0;
        rig.Feed(Block{});
        EXPECT_EQ(rig.state->OutputPeak, 32760.0) << value;
    }
}

TEST(OutputLevel, MutedIsSaidWhateverArrives) {
    EXPECT_EQ(OutputOf(3000.0, 4000.0, true).caption, "Muted");
    EXPECT_EQ(OutputOf(40000.0, 0.0, true).caption, "Muted");
    EXPECT_EQ(OutputOf(3000.0, 4000.0, true).bar, 0.0F);
}

TEST(OutputLevel, DoesNotCountTheGenerator) {
    AnalysisRig rig(32000);
    rig.controls.chkMuteOutput.SetValue(0);
    rig.generator.fill = [](std::span<double> first, std::span<double> second, std::int32_t) {
        first[3] += 20000.0;
        second[3] += 10000.0;
    };
    rig.state->TailA[7] = 3276.0;
    rig.Feed(Block{});
    EXPECT_EQ(rig.controls.prgDAC.Value(), 3276.0F);
    EXPECT_EQ(rig.controls.lblDACLevel.Caption(), "10");
}

}  // namespace
}  // namespace sonavex
