#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <utility>
#include <vector>

#include "platform/ring/PlaybackRing.h"
#include "support/Errors.h"

namespace sonavex {
namespace {

constexpr std::int32_t kRingFrames = 64;
constexpr std::int32_t kRingBytes = kRingFrames * kFrameBytes;

// A ring of 64 frames; frame n holds n + 1 and -(n + 1).
class PlaybackRingTest : public testing::Test {
protected:
    PlaybackRingTest() {
        std::vector<std::int16_t> samples;
        for (std::int16_t n = 1; n <= kRingFrames; ++n) {
            samples.push_back(n);
            samples.push_back(static_cast<std::int16_t>(-n));
        }
        ring_.Write(0, samples);
    }

    std::vector<std::int16_t> Pull(std::size_t frames, std::size_t deviceDelay = 0) {
        std::vector<std::int16_t> samples(2 * frames, 99);
        ring_.Pull(samples.data(), frames, deviceDelay);
        return samples;
    }
    // Number of the first frame pulled.
    int NextFrame() { return Pull(1)[0] - 1; }
    std::pair<int, int> CursorFrames() const {
        const BufferCursors cursors = ring_.Cursors();
        return {cursors.play / kFrameBytes, cursors.write / kFrameBytes};
    }

    PlaybackRing ring_{kRingBytes, 48000};
};

using Frames = std::pair<int, int>;

TEST_F(PlaybackRingTest, IsSilentWhileStopped) {
    EXPECT_EQ(Pull(10), std::vector<std::int16_t>(20, 0));
    EXPECT_FALSE(ring_.Playing());
    ring_.Play();
    EXPECT_EQ(NextFrame(), 0);
    ring_.Stop();
    EXPECT_EQ(Pull(3), std::vector<std::int16_t>(6, 0));
    ring_.Play();
    EXPECT_EQ(NextFrame(), 1);
}

TEST_F(PlaybackRingTest, PlaysBothChannelsRoundAndRound) {
    ring_.Play();
    const auto samples = Pull(3 * kRingFrames + 5);
    for (std::size_t i = 0; i < samples.size() / 2; ++i) {
        const auto expected = static_cast<std::int16_t>(i % kRingFrames + 1);
        ASSERT_EQ(samples[2 * i], expected) << i;
        ASSERT_EQ(samples[2 * i + 1], -expected) << i;
    }
}

TEST_F(PlaybackRingTest, CursorsAreZeroWhileStopped) {
    ring_.SetPosition(80);
    EXPECT_EQ(CursorFrames(), (Frames{0, 0}));
    ring_.Play();
    EXPECT_EQ(CursorFrames(), (Frames{20, 20}));
    Pull(4);
    ring_.Stop();
    EXPECT_EQ(CursorFrames(), (Frames{0, 0}));
}

TEST_F(PlaybackRingTest, PlayCursorNeverLiesBeforeThePositionSetLast) {
    ring_.SetPosition(10 * kFrameBytes);
    ring_.Play();
    Pull(4, 30);
    EXPECT_EQ(CursorFrames(), (Frames{10, 14}));
    Pull(4, 30);
    EXPECT_EQ(CursorFrames(), (Frames{10, 18}));
}

TEST_F(PlaybackRingTest, PlayCursorLiesBehindByTheDeviceDelay) {
    ring_.Play();
    for (int i = 0; i < 10; ++i) Pull(4, 8);
    EXPECT_EQ(CursorFrames(), (Frames{28, 40}));
    Pull(4, 0);
    EXPECT_EQ(CursorFrames(), (Frames{40, 44}));
}

TEST_F(PlaybackRingTest, CursorsWrap) {
    ring_.Play();
    Pull(62);
    Pull(4, 8);
    EXPECT_EQ(CursorFrames(), (Frames{54, 2}));
    Pull(62);
    EXPECT_EQ(CursorFrames().second, 0);
}

TEST_F(PlaybackRingTest, ADelayLongerThanTheRingStaysInsideIt) {
    ring_.Play();
    for (int i = 0; i < 40; ++i) Pull(4, 1000);
    const auto [play, write] = CursorFrames();
    EXPECT_EQ(write, 160 % kRingFrames);
    EXPECT_EQ(play, (write + 1) % kRingFrames);
    Pull(4, std::numeric_limits<std::size_t>::max() / 2);
    EXPECT_EQ(CursorFrames().first, (CursorFrames().second + 1) % kRingFrames);
}

TEST_F(PlaybackRingTest, PositionMaySetWhilePlaying) {
    ring_.Play();
    Pull(40, 8);
    ring_.SetPosition(5 * kFrameBytes);
    EXPECT_EQ(CursorFrames(), (Frames{5, 5}));
    EXPECT_EQ(NextFrame(), 5);
    Pull(2, 8);
    EXPECT_EQ(CursorFrames(), (Frames{5, 8}));
}

TEST_F(PlaybackRingTest, WhatIsWrittenAheadIsHeard) {
    ring_.Play();
    Pull(2);
    const std::vector<std::int16_t> frame{1000, -2000};
    ring_.Write(2 * kFrameBytes, frame);
    EXPECT_EQ(Pull(1), frame);
    ring_.Write(kRingBytes - kFrameBytes, frame);
    ring_.SetPosition(kRingBytes - kFrameBytes);
    EXPECT_EQ(Pull(1), frame);
}

TEST_F(PlaybackRingTest, RefusesBadPositions) {
    for (const std::int32_t offset : {-4, 1, 2, 3, 6, kRingBytes, kRingBytes + 4})
        EXPECT_EQ(ErrorOf([&] { return ring_.SetPosition(offset), 0; }), error_number::kInvalidCall)
            << offset;
}

TEST_F(PlaybackRingTest, RefusesBadWrites) {
    const std::vector<std::int16_t> samples(4, 7);
    const std::span<const std::int16_t> all(samples);
    for (const std::int32_t offset : {-4, 2, kRingBytes - kFrameBytes, kRingBytes, 1 << 30})
        EXPECT_EQ(ErrorOf([&] { return ring_.Write(offset, all), 0; }), error_number::kInvalidCall) << offset;
    EXPECT_EQ(ErrorOf([&] { return ring_.Write(0, all.first(3)), 0; }), error_number::kInvalidCall);
    ring_.Play();
    EXPECT_EQ(NextFrame(), 0);
    ring_.Write(kRingBytes, {});
}

TEST_F(PlaybackRingTest, RefusesBadVolumes) {
    for (const std::int32_t volume : {1, 50, -10001, 10000, std::numeric_limits<std::int32_t>::min()})
        EXPECT_EQ(ErrorOf([&] { return ring_.SetVolume(volume), 0; }), error_number::kInvalidCall) << volume;
}

TEST(PlaybackRing, RefusesASizeThatIsNotWholeFrames) {
    for (const std::int32_t bytes : {0, -4, 1, 6, 65535})
        EXPECT_EQ(ErrorOf([&] { return PlaybackRing(bytes, 48000).Playing(); }), error_number::kInvalidCall)
            << bytes;
}

}  // namespace
}  // namespace sonavex
