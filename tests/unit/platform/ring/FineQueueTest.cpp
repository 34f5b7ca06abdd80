// Fine frames that do not pass through the looping buffers.

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cmath>
#include <cstdint>
#include <thread>
#include <vector>

#include "platform/ring/CaptureRing.h"
#include "platform/ring/PlaybackRing.h"

namespace sonavex {
namespace {

constexpr std::size_t kQueueFrames = 1000;
constexpr std::int32_t kSmallRingBytes = 64 * kFrameBytes;

using FineVector = std::vector<std::int32_t>;

// Frames numbered from `first`: the number on the first channel, its negative on the second.
FineVector Numbered(std::int32_t first, std::size_t frames) {
    FineVector samples;
    for (std::size_t i = 0; i < frames; ++i) {
        samples.push_back(first + static_cast<std::int32_t>(i));
        samples.push_back(-samples.back());
    }
    return samples;
}

class FineCaptureQueue : public testing::Test {
protected:
    FineCaptureQueue() { ring_.Start(); }
    void Push(std::int32_t first, std::size_t frames) { ring_.Push(Numbered(first, frames).data(), frames); }
    FineVector Take(std::size_t frames) {
        FineVector samples(2 * frames);
        samples.resize(ring_.TakeFine(samples));
        return samples;
    }
    CaptureRing ring_{kSmallRingBytes, kQueueFrames};
};

TEST_F(FineCaptureQueue, IsOffAtFirst) {
    Push(1, 10);
    EXPECT_EQ(Take(10), FineVector{});
    EXPECT_EQ(ring_.Statistics().fineFramesLost, 0U);
}

TEST_F(FineCaptureQueue, ReturnsEveryFrameInOrderHoweverItIsRead) {
    ring_.CaptureFine(true);
    FineVector taken;
    std::int32_t next = 0;
    for (const std::size_t frames : {1U, 999U, 500U, 7U, 1000U, 64U, 333U}) {
        Push(next, frames);
        next += static_cast<std::int32_t>(frames);
        for (FineVector part = Take(300); !part.empty(); part = Take(300))
            taken.insert(taken.end(), part.begin(), part.end());
    }
    EXPECT_EQ(taken, Numbered(0, static_cast<std::size_t>(next)));
    EXPECT_EQ(ring_.Statistics().fineFramesLost, 0U);
}

TEST_F(FineCaptureQueue, CountsWhatFindsItFull) {
    ring_.CaptureFine(true);
    Push(0, 900);
    Push(900, 150);
    EXPECT_EQ(ring_.Statistics().fineFramesLost, 50U);
    EXPECT_EQ(Take(2000), Numbered(0, kQueueFrames));
    Push(2000, 3);
    EXPECT_EQ(Take(10), Numbered(2000, 3));
    EXPECT_EQ(ring_.Statistics().fineFramesLost, 50U);
}

TEST_F(FineCaptureQueue, ContainsSilenceForFramesThatTheDeviceLost) {
    ring_.CaptureFine(true);
    Push(5, 1);
    ring_.PushSilence(2);
    const std::vector<std::int16_t> narrow{3, -3};
    ring_.Push(narrow.data(), 1);
    EXPECT_EQ(Take(9), (FineVector{5, -5, 0, 0, 0, 0, 0x30000, -0x30000}));
}

TEST_F(FineCaptureQueue, DiscardsTheRestWhenTurnedOnAgain) {
    ring_.CaptureFine(true);
    Push(0, 700);
    ring_.CaptureFine(true);
    EXPECT_EQ(Take(1), Numbered(0, 1));
    ring_.CaptureFine(false);
    Push(700, 5);
    EXPECT_EQ(Take(1), FineVector{});
    ring_.CaptureFine(true);
    EXPECT_EQ(Take(1), FineVector{});
    Push(800, 800);
    EXPECT_EQ(Take(2000), Numbered(800, 800));
}

TEST_F(FineCaptureQueue, DropsWhatComesWhileStopped) {
    ring_.CaptureFine(true);
    ring_.Stop();
    Push(0, 10);
    EXPECT_EQ(Take(10), FineVector{});
    EXPECT_EQ(ring_.Statistics().fineFramesLost, 0U);
}

class FinePlaybackQueue : public testing::Test {
protected:
    FinePlaybackQueue() {
        ring_.Write(0, std::vector<std::int16_t>(128, 100));
        ring_.SetBits(32);
        ring_.Play();
    }
    FineVector Pull(std::size_t frames) {
        FineVector samples(2 * frames);
        ring_.Pull(samples.data(), frames, 0);
        return samples;
    }
    PlaybackRing ring_{kSmallRingBytes, 48000};
};

TEST_F(FinePlaybackQueue, PlaysInPlaceOfTheRingWhoseCursorGoesOn) {
    ring_.PlayFine(true);
    EXPECT_EQ(ring_.QueueFine(Numbered(1, 200)), 400U);
    EXPECT_EQ(Pull(150), Numbered(1, 150));
    EXPECT_EQ(ring_.Cursors().write, 150 % 64 * kFrameBytes);
    ring_.PlayFine(false);
    EXPECT_EQ(Pull(1), (FineVector{100 << 16, 100 << 16}));
}

TEST_F(FinePlaybackQueue, PlaysAndCountsSilenceWhenItIsEmpty) {
    ring_.PlayFine(true);
    EXPECT_EQ(Pull(3), FineVector(6, 0));
    EXPECT_EQ(ring_.FineFramesMissing(), 0U);  // not fed yet
    ring_.QueueFine(Numbered(1, 2));
    EXPECT_EQ(Pull(4), (FineVector{1, -1, 2, -2, 0, 0, 0, 0}));
    EXPECT_EQ(ring_.FineFramesMissing(), 2U);
}

TEST_F(FinePlaybackQueue, DiscardsTheRestWhenTurnedOnAgain) {
    ring_.PlayFine(true);
    ring_.QueueFine(Numbered(1, 50));
    ring_.PlayFine(false);
    ring_.PlayFine(true);
    ring_.QueueFine(Numbered(90, 2));
    EXPECT_EQ(Pull(3), (FineVector{90, -90, 91, -91, 0, 0}));
}

TEST_F(FinePlaybackQueue, HoldsAtLeastATenthOfASecondAndABlock) {
    for (const std::int32_t rateHz : {4000, 48000, 192000}) {
        PlaybackRing ring(kSmallRingBytes, rateHz);
        ring.PlayFine(true);
        const std::size_t wanted = std::max(rateHz / 5, 2 * 2048);
        EXPECT_EQ(ring.QueueFine(FineVector(wanted)), wanted) << rateHz;
    }
}

TEST_F(FinePlaybackQueue, FollowsVolumeAndBits) {
    ring_.Stop();
    ring_.SetVolume(-600);
    ring_.SetBits(24);
    Pull(1);
    ring_.Play();
    ring_.PlayFine(true);
    ring_.QueueFine(FineVector{0x40000000, -0x40000000});
    const auto expected = static_cast<std::int32_t>(std::lrint(0x400000 * std::pow(10.0, -0.3)) * 256);
    EXPECT_EQ(Pull(1), (FineVector{expected, -expected}));
}

TEST(FineQueueThreads, TwoThreadsLoseNothing) {
    CaptureRing in(kSmallRingBytes, kQueueFrames);
    PlaybackRing out(kSmallRingBytes, 4000);
    in.Start();
    in.CaptureFine(true);
    out.SetBits(32);
    out.PlayFine(true);
    out.Play();
    constexpr std::int32_t kFrames = 50000;
    std::atomic<bool> finished{false};
    // The audio thread loops what it pulls; silence before the first frame and while nothing waits is left
    // out.
    std::thread audio([&] {
        FineVector period(128);
        while (!finished) {
            out.Pull(period.data(), 64, 0);
            std::size_t count = 0;
            while (count < 64 && period[2 * count] != 0) ++count;
            in.Push(period.data(), count);
            std::this_thread::yield();
        }
    });
    std::int32_t queued = 0;
    std::int32_t taken = 0;
    bool inOrder = true;
    FineVector samples(200);
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(20);
    while (taken < kFrames && std::chrono::steady_clock::now() < end) {
        // No more on the way than the queues hold.
        if (queued - taken < 500 && queued < kFrames) {
            out.QueueFine(Numbered(queued + 1, 100));
            queued += 100;
        }
        const std::size_t count = in.TakeFine(samples);
        for (std::size_t i = 0; i < count; i += 2) inOrder = inOrder && samples[i] == ++taken;
    }
    finished = true;
    audio.join();
    EXPECT_EQ(taken, kFrames);
    EXPECT_TRUE(inOrder);
    EXPECT_EQ(in.Statistics().fineFramesLost, 0U);
}

}  // namespace
}  // namespace sonavex
