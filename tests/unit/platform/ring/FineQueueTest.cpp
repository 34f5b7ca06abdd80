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

using namespace std::chrono_literals;
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
        const FineRun run = ring_.TakeFine(samples);
        firstFrame_ = run.firstFrame;
        samples.resize(run.samples);
        return samples;
    }
    CaptureRing ring_{kSmallRingBytes, kQueueFrames};
    std::uint64_t firstFrame_ = 0;  // of the last Take
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
    EXPECT_EQ(firstFrame_, 1050U);
    EXPECT_EQ(ring_.Statistics().fineFramesLost, 50U);
}

// The frames in between are not in the queue, and the number of the next frame counts them.
TEST_F(FineCaptureQueue, InterruptsARunWhereTheDeviceLostFrames) {
    Push(0, 100);
    ring_.CaptureFine(true);
    Push(5, 1);
    ring_.PushSilence(2);
    const std::vector<std::int16_t> narrow{3, -3};
    ring_.Push(narrow.data(), 1);
    EXPECT_EQ(Take(9), Numbered(5, 1));
    EXPECT_EQ(firstFrame_, 100U);
    EXPECT_EQ(Take(9), (FineVector{0x30000, -0x30000}));
    EXPECT_EQ(firstFrame_, 103U);
    EXPECT_EQ(ring_.Statistics().framesCaptured, 104U);
}

TEST_F(FineCaptureQueue, InterruptsARunWhereFramesFoundItFull) {
    ring_.CaptureFine(true);
    Push(0, 1100);
    Take(10);
    Push(1100, 4);
    EXPECT_EQ(Take(2000), Numbered(10, kQueueFrames - 10));
    EXPECT_EQ(Take(2000), Numbered(1100, 4));
    EXPECT_EQ(firstFrame_, 1100U);
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

TEST_F(FineCaptureQueue, HasRoomAtOnceWhenTurnedOnAgain) {
    ring_.CaptureFine(true);
    Push(0, kQueueFrames);
    ring_.CaptureFine(false);
    ring_.CaptureFine(true);
    Push(5000, kQueueFrames);
    EXPECT_EQ(Take(2000), Numbered(5000, kQueueFrames));
    EXPECT_EQ(ring_.Statistics().fineFramesLost, 0U);
}

TEST_F(FineCaptureQueue, DiscardsTheRestWhenTheCaptureStarts) {
    ring_.CaptureFine(true);
    Push(0, 10);
    ring_.Stop();
    ring_.Start();
    Push(10, 5);
    EXPECT_EQ(Take(100), Numbered(10, 5));
    EXPECT_EQ(firstFrame_, 10U);
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

TEST_F(FinePlaybackQueue, HasRoomAtOnceWhenTurnedOnAgain) {
    for (int i = 0; i < 5; ++i) {
        ring_.PlayFine(true);
        EXPECT_EQ(ring_.QueueFine(FineVector(200000)), 144000U) << i;
        ring_.PlayFine(false);
        if (i % 2 == 0) ring_.Stop();
        ring_.PlayFine(true);
        EXPECT_EQ(ring_.QueueFine(FineVector(200000)), 144000U) << i;
        Pull(1);
        ring_.PlayFine(false);
        Pull(1);
    }
}

TEST_F(FinePlaybackQueue, AnotherSourceFollowsWithoutAGap) {
    ring_.PlayFine(true);
    const std::size_t full = ring_.QueueFine(FineVector(200000, 7)) / 2;
    Pull(5);
    EXPECT_EQ(ring_.CutFine(0ms), full - 5);
    EXPECT_EQ(Pull(2), FineVector(4, 7));  // until the other source has arrived
    EXPECT_EQ(ring_.QueueFine(Numbered(1, full)), 2 * full);
    EXPECT_EQ(ring_.FineFramesWaiting(), full);
    EXPECT_EQ(Pull(full), Numbered(1, full));
    EXPECT_EQ(ring_.FineFramesMissing(), 0U);
}

TEST_F(FinePlaybackQueue, ACutTakesEffectWhereItWasMade) {
    ring_.PlayFine(true);
    ring_.QueueFine(Numbered(1, 10000));
    Pull(100);
    EXPECT_EQ(ring_.CutFine(50ms), 9900U - 2400U);
    ring_.QueueFine(Numbered(20001, 10));
    EXPECT_EQ(ring_.FineFramesWaiting(), 2410U);
    EXPECT_EQ(Pull(2000), Numbered(101, 2000));
    // The second cut drops what follows the first one.
    EXPECT_EQ(ring_.CutFine(50ms), 10U);
    ring_.QueueFine(Numbered(30001, 500));
    EXPECT_EQ(Pull(400), Numbered(2101, 400));
    EXPECT_EQ(Pull(500), Numbered(30001, 500));
    EXPECT_EQ(ring_.FineFramesWaiting(), 0U);
    EXPECT_EQ(ring_.FineFramesMissing(), 0U);
}

TEST_F(FinePlaybackQueue, ACutOfLessThanItKeepsChangesNothing) {
    EXPECT_EQ(ring_.CutFine(0ms), 0U);  // off
    ring_.PlayFine(true);
    ring_.QueueFine(Numbered(1, 100));
    EXPECT_EQ(ring_.CutFine(50ms), 0U);
    ring_.QueueFine(Numbered(101, 100));
    EXPECT_EQ(Pull(200), Numbered(1, 200));
}

TEST_F(FinePlaybackQueue, HoldsAtLeastOneAndAHalfSecondsAndFourBlocks) {
    for (const std::int32_t rateHz : {4000, 48000, 192000}) {
        PlaybackRing ring(kSmallRingBytes, rateHz);
        ring.PlayFine(true);
        const std::size_t wanted = std::max(3 * rateHz, 2 * 4 * 2048);
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
        const std::size_t count = in.TakeFine(samples).samples;
        for (std::size_t i = 0; i < count; i += 2) inOrder = inOrder && samples[i] == ++taken;
    }
    finished = true;
    audio.join();
    EXPECT_EQ(taken, kFrames);
    EXPECT_TRUE(inOrder);
    EXPECT_EQ(in.Statistics().fineFramesLost, 0U);
}

// Each source plays its number. A source is never heard after its successor.
TEST(FineQueueThreads, SourcesFollowEachOther) {
    PlaybackRing ring(kSmallRingBytes, 4000);
    ring.SetBits(32);
    ring.PlayFine(true);
    ring.Play();
    constexpr std::int32_t kSources = 2000;
    std::atomic<std::int32_t> heard{0};
    std::atomic<bool> finished{false};
    std::atomic<bool> inOrder{true};
    std::thread audio([&] {
        FineVector period(128);
        while (!finished) {
            ring.Pull(period.data(), 64, 0);
            for (const std::int32_t sample : period) {
                if (sample == 0) continue;  // the queue was empty
                if (sample < heard) inOrder = false;
                heard = sample;
            }
        }
    });
    for (std::int32_t source = 1; source <= kSources; ++source) {
        ring.CutFine(std::chrono::milliseconds(source % 3));
        ring.QueueFine(FineVector(2 * 100, source));
    }
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(20);
    while (heard < kSources && std::chrono::steady_clock::now() < end) {
        ring.CutFine(0ms);
        ring.QueueFine(FineVector(2, kSources));
    }
    finished = true;
    audio.join();
    EXPECT_EQ(heard, kSources);
    EXPECT_TRUE(inOrder);
}

}  // namespace
}  // namespace sonavex
