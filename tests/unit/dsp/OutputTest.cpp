#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <numbers>
#include <vector>

#include "support/AnalysisRig.h"

namespace sonavex {
namespace {

// Playback of one muted block to which the generator adds these samples.
Block Played(const std::vector<double>& first, const std::vector<double>& second) {
    AnalysisRig rig(32000);
    rig.generator.fill = [&](std::span<double> a, std::span<double> b, std::int32_t) {
        std::copy(first.begin(), first.end(), a.begin());
        std::copy(second.begin(), second.end(), b.begin());
    };
    rig.playback.fill(1234);
    rig.Feed(Block{});
    return rig.playback;
}

TEST(Output, TheGeneratorsFirstArrayIsTheSecondSample) {
    const Block played = Played({100.0, 200.0}, {-7.0, -8.0});
    EXPECT_EQ(played[0], -7);
    EXPECT_EQ(played[1], 100);
    EXPECT_EQ(played[2], -8);
    EXPECT_EQ(played[3], 200);
    EXPECT_EQ(played[4], 0);
    EXPECT_EQ(played[4095], 0);
}

TEST(Output, RoundsHalvesToEven) {
    const Block played = Played({0.5, 1.5, 2.5, -0.5, -1.5, -2.5, 0.49, 0.51, 1000.5, 1001.5}, {});
    const std::int16_t expected[] = {0, 2, 2, 0, -2, -2, 0, 1, 1000, 1002};
    for (std::size_t i = 0; i < std::size(expected); ++i) EXPECT_EQ(played[2 * i + 1], expected[i]) << i;
}

TEST(Output, OneBlockIsRequestedFromTheGenerator) {
    AnalysisRig rig(32000);
    int calls = 0;
    rig.generator.fill = [&](std::span<double> first, std::span<double> second, std::int32_t count) {
        ++calls;
        EXPECT_EQ(count, 2048);
        EXPECT_GE(first.size(), 2048U);
        EXPECT_GE(second.size(), 2048U);
        EXPECT_EQ(*std::max_element(first.begin(), first.end()), 0.0);
        EXPECT_EQ(*std::min_element(second.begin(), second.end()), 0.0);
    };
    rig.Feed(Noise(20000, 1), 3);  // muted: the generator adds to silence
    EXPECT_EQ(calls, 3);
}

TEST(Output, TheLimitHoldsForTheVectorNotForAChannel) {
    const Block within = Played({20000.0, 1000.0}, {20000.0, -2000.0});
    EXPECT_EQ(within[0], 20000);
    EXPECT_EQ(within[1], 20000);
    // 30000 and 30000 add to 42426: all samples of the block are scaled alike.
    const Block limited = Played({30000.0, 1000.0}, {30000.0, -2000.0});
    EXPECT_EQ(limited[0], 23165);
    EXPECT_EQ(limited[1], 23165);
    EXPECT_EQ(limited[2], -1544);
    EXPECT_EQ(limited[3], 772);
}

TEST(Output, FullScaleIsNotLimited) {
    const Block full = Played({32760.0, 500.0}, {0.0, 500.0});
    EXPECT_EQ(full[1], 32760);
    EXPECT_EQ(full[3], 500);
    const Block just = Played({32762.0, 500.0}, {0.0, 500.0});
    EXPECT_EQ(just[1], 32760);
    const Block over = Played({-65520.0, 500.0}, {0.0, 500.0});
    EXPECT_EQ(over[1], -32760);
    EXPECT_EQ(over[3], 250);
}

TEST(Output, TheLimitIsTakenAfterTheGeneratorAndFromWhatIsNotScaled) {
    AnalysisRig rig(32000);
    rig.controls.chkMuteOutput.SetValue(0);
    rig.state->TailA[7] = 40000.0;
    rig.state->TailA[9] = 1000.0;
    rig.generator.fill = [](std::span<double> first, std::span<double>, std::int32_t) {
        EXPECT_EQ(first[7], 40000.0);  // the scaling affects the displayed level only
        first[7] += 25520.0;
    };
    rig.Feed(Block{});
    EXPECT_EQ(rig.state->OutputPeak, 32760.0);
    EXPECT_EQ(rig.state->SynthPeak, 65520.0);
    EXPECT_EQ(rig.playback[15], 32760);
    EXPECT_EQ(rig.playback[19], 500);
}

TEST(Output, TheInputComesThroughFilteredAndDelayed) {
    AnalysisRig rig(32000);
    rig.controls.chkMuteOutput.SetValue(0);
    const StereoSignal signal = Pair(Sine(32000, 1000, 9000), Sine(32000, 2500, 5000, 1.0));
    rig.Feed(signal, 4);
    // The centre of the filter is 1023.5 frames back.
    for (std::size_t i = 0; i < kTestBlockFrames; i += 37) {
        const double at = 3.0 * 2048.0 + static_cast<double>(i) - 1023.5;
        const double first = 9000.0 * std::sin(2.0 * std::numbers::pi * 1000.0 * at / 32000.0);
        const double second = 5000.0 * std::sin(1.0 + 2.0 * std::numbers::pi * 2500.0 * at / 32000.0);
        ASSERT_NEAR(rig.playback[2 * i], first, 5.0) << i;
        ASSERT_NEAR(rig.playback[2 * i + 1], second, 5.0) << i;
    }
}

TEST(Output, AnImpulseRingsOnIntoTheNextBlockFor2046Frames) {
    AnalysisRig rig(32000);
    rig.controls.chkMuteOutput.SetValue(0);
    Block block{};
    block[2 * 2047] = 30000;  // the last frame: all taps but one fall into the next block
    rig.Feed(block);
    for (std::size_t i = 0; i < 2046; ++i) {
        ASSERT_NEAR(rig.state->TailB[i], 30000.0 * rig.state->FilterTaps[i + 1], 1e-9) << i;
        ASSERT_NEAR(rig.state->TailA[i], 0.0, 1e-9) << i;
    }
    const auto tail = rig.state->TailB;
    rig.Feed(Block{});
    for (std::size_t i = 0; i < 2046; ++i) ASSERT_NEAR(rig.playback[2 * i], tail[i], 0.5 + 1e-9) << i;
}

TEST(Output, TheLastTwoFramesOfATailAreNotCarried) {
    AnalysisRig rig(32000);
    rig.controls.chkMuteOutput.SetValue(0);
    rig.state->TailA.fill(1000.0);
    rig.state->TailB.fill(-1000.0);
    rig.Feed(Block{});
    EXPECT_EQ(rig.playback[2 * 2045], -1000);
    EXPECT_EQ(rig.playback[2 * 2045 + 1], 1000);
    EXPECT_EQ(rig.playback[2 * 2046], 0);
    EXPECT_EQ(rig.playback[2 * 2047 + 1], 0);
    EXPECT_EQ(rig.state->TailA[0], 0.0);
    EXPECT_EQ(rig.state->TailA[2045], 0.0);
}

TEST(Output, MutingKeepsTheTails) {
    AnalysisRig muted(32000);
    AnalysisRig open(32000);
    open.controls.chkMuteOutput.SetValue(0);
    const StereoSignal signal = Sine(32000, 1000, 9000);
    muted.Feed(signal, 3);
    open.Feed(signal, 3);
    EXPECT_EQ(muted.state->TailA, open.state->TailA);
    EXPECT_EQ(muted.state->TailB, open.state->TailB);
    EXPECT_EQ(std::count(muted.playback.begin(), muted.playback.end(), 0), 4096);
    muted.controls.chkMuteOutput.SetValue(0);
    muted.Feed(signal, 1);
    open.Feed(signal, 1);
    EXPECT_EQ(muted.playback, open.playback);
}

TEST(Output, RunsWhetherLockedOrNot) {
    AnalysisRig locked(32000);
    AnalysisRig unlocked(32000);
    unlocked.controls.chkAuto.SetValue(0);
    unlocked.controls.txtFreq.SetText("5000");
    for (AnalysisRig* rig : {&locked, &unlocked}) {
        rig->controls.chkMuteOutput.SetValue(0);
        rig->Feed(Sine(32000, 1000, 9000), 3);
    }
    EXPECT_TRUE(locked.state->FreqLocked);
    EXPECT_FALSE(unlocked.state->FreqLocked);
    EXPECT_EQ(locked.playback, unlocked.playback);
}

}  // namespace
}  // namespace sonavex
