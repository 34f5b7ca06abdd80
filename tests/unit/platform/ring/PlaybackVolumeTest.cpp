#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <vector>

#include "platform/ring/PlaybackRing.h"

namespace sonavex {
namespace {

constexpr std::int32_t kRateHz = 48000;
constexpr std::size_t kRampFrames = kRateHz / 200;  // 5 ms
constexpr std::int32_t kLongRingFrames = 65536;

std::vector<std::int16_t> Pull(PlaybackRing& ring, std::size_t frames) {
    std::vector<std::int16_t> samples(2 * frames);
    ring.Pull(samples.data(), frames, 0);
    return samples;
}

// Every 16-bit value once on the first channel, and in reverse order on the second.
std::vector<std::int16_t> EverySample() {
    std::vector<std::int16_t> samples;
    for (int value = -32768; value <= 32767; ++value) {
        samples.push_back(static_cast<std::int16_t>(value));
        samples.push_back(static_cast<std::int16_t>(-1 - value));
    }
    return samples;
}

class PlaybackVolume : public testing::Test {
protected:
    void Fill(std::int16_t value) {
        ring_.Write(0, std::vector<std::int16_t>(std::size_t{2} * kLongRingFrames, value));
    }
    PlaybackRing ring_{kLongRingFrames * kFrameBytes, kRateHz};
};

TEST_F(PlaybackVolume, ZeroLeavesEveryBit) {
    const auto samples = EverySample();
    ring_.Write(0, samples);
    ring_.SetVolume(0);
    ring_.Play();
    EXPECT_EQ(Pull(ring_, kLongRingFrames), samples);
}

TEST_F(PlaybackVolume, ZeroIsBitExactAgainAfterARamp) {
    const auto samples = EverySample();
    ring_.Write(0, samples);
    ring_.Play();
    for (const std::int32_t level : {-1, -333, -600, -9999, -10000}) {
        ring_.SetVolume(level);
        Pull(ring_, kRampFrames + 1);
        ring_.SetVolume(0);
        Pull(ring_, kRampFrames + 1);
        ring_.SetPosition(0);
        EXPECT_EQ(Pull(ring_, kLongRingFrames), samples) << level;
    }
}

TEST_F(PlaybackVolume, HundredthsOfADecibel) {
    Fill(32000);
    for (const std::int32_t level : {-50, -600, -2000, -4000, -9999}) {
        ring_.Stop();
        Pull(ring_, 1);
        ring_.SetVolume(level);
        ring_.Play();
        EXPECT_EQ(Pull(ring_, 1)[0], std::lrint(32000.0 * std::pow(10.0, level / 2000.0))) << level;
    }
}

TEST_F(PlaybackVolume, MinusSixDecibelsIsAboutHalf) {
    Fill(20000);
    ring_.SetVolume(-600);
    ring_.Play();
    EXPECT_EQ(Pull(ring_, 1)[1], 10024);
}

TEST_F(PlaybackVolume, LowestIsSilence) {
    Fill(-32768);
    ring_.SetVolume(-10000);
    ring_.Play();
    EXPECT_EQ(Pull(ring_, 100), std::vector<std::int16_t>(200, 0));
}

TEST_F(PlaybackVolume, ChangeWhileStoppedHoldsFromTheFirstFrame) {
    Fill(20000);
    ring_.SetVolume(-600);
    ring_.Play();
    EXPECT_EQ(Pull(ring_, 1)[0], 10024);
    ring_.Stop();
    Pull(ring_, 1);
    ring_.SetVolume(0);
    ring_.Play();
    EXPECT_EQ(Pull(ring_, 1)[0], 20000);
}

TEST_F(PlaybackVolume, FullChangeTakesFiveMillisecondsInEvenSteps) {
    constexpr std::int16_t kPeak = 24000;
    constexpr int kStep = kPeak / static_cast<int>(kRampFrames);
    Fill(kPeak);
    ring_.Play();
    Pull(ring_, 10);
    for (const bool down : {true, false}) {
        ring_.SetVolume(down ? -10000 : 0);
        int before = down ? kPeak : 0;
        const auto samples = Pull(ring_, kRampFrames);
        for (std::size_t i = 0; i < kRampFrames; ++i) {
            const int change = (down ? -1 : 1) * (samples[2 * i] - before);
            ASSERT_GE(change, kStep - 1) << i;
            ASSERT_LE(change, kStep + 1) << i;
            ASSERT_EQ(samples[2 * i], samples[2 * i + 1]);
            before = samples[2 * i];
        }
        EXPECT_EQ(Pull(ring_, 1)[0], down ? 0 : kPeak);
    }
}

TEST_F(PlaybackVolume, RampContinuesAcrossSmallPeriods) {
    Fill(24000);
    ring_.Play();
    Pull(ring_, 1);
    ring_.SetVolume(-10000);
    int before = 24000;
    for (std::size_t i = 0; i < kRampFrames; ++i) {
        const int now = Pull(ring_, 1)[0];
        ASSERT_LE(std::abs(now - before), 101);
        before = now;
    }
    EXPECT_EQ(Pull(ring_, 1)[0], 0);
}

TEST_F(PlaybackVolume, SmallChangeTakesAsLongAsALargeOne) {
    Fill(24000);
    ring_.Play();
    Pull(ring_, 1);
    ring_.SetVolume(-50);
    const auto samples = Pull(ring_, kRampFrames);
    const auto expected = static_cast<std::int16_t>(std::lrint(24000.0 * std::pow(10.0, -0.025)));
    const double step = (24000.0 - expected) / kRampFrames;
    for (std::size_t i = 0; i < kRampFrames; ++i)
        ASSERT_NEAR(samples[2 * i], 24000.0 - step * static_cast<double>(i + 1), 2.0) << i;
    EXPECT_EQ(Pull(ring_, 1)[0], expected);
}

}  // namespace
}  // namespace sonavex
