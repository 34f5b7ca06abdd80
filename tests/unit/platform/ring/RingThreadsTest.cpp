#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <cstdint>
#include <latch>
#include <thread>
#include <vector>

#include "platform/plain/PlainEventLoop.h"
#include "platform/ring/CaptureRing.h"
#include "platform/ring/NotificationHub.h"
#include "platform/ring/PlaybackRing.h"

namespace sonavex {
namespace {

using namespace std::chrono_literals;

constexpr int kSteps = 3000;
constexpr std::size_t kPeriodFrames = 64;
constexpr std::int32_t kSharedRingFrames = 1024;
constexpr std::int32_t kSharedRingBytes = kSharedRingFrames * kFrameBytes;

// Whether all frames are whole: here both channels of a frame have the same value.
bool FramesAreWhole(const std::vector<std::int16_t>& samples) {
    for (std::size_t i = 0; i < samples.size(); i += 2)
        if (samples[i] != samples[i + 1]) return false;
    return true;
}

TEST(RingThreads, PlaybackServesTwoThreads) {
    PlaybackRing ring(kSharedRingBytes, 48000);
    std::atomic<bool> whole{true};
    std::thread audio([&] {
        std::vector<std::int16_t> period(2 * kPeriodFrames);
        for (int step = 0; step < kSteps; ++step) {
            ring.Pull(period.data(), kPeriodFrames, static_cast<std::size_t>(step) % 300);
            if (!FramesAreWhole(period)) whole = false;
        }
    });
    for (int step = 0; step < kSteps; ++step) {
        const std::vector<std::int16_t> block(2 * kPeriodFrames, static_cast<std::int16_t>(step));
        ring.Write((step % (kSharedRingFrames / 64)) * 64 * kFrameBytes, block);
        ring.SetVolume(-(step % 700));
        if (step % 5 == 0) ring.Play();
        if (step % 11 == 0) ring.SetPosition((step % kSharedRingFrames) * kFrameBytes);
        if (step % 17 == 0) ring.Stop();
        const BufferCursors cursors = ring.Cursors();
        ASSERT_TRUE(cursors.play >= 0 && cursors.play < kSharedRingBytes && cursors.play % kFrameBytes == 0);
        ASSERT_TRUE(cursors.write >= 0 && cursors.write < kSharedRingBytes &&
                    cursors.write % kFrameBytes == 0);
    }
    audio.join();
    EXPECT_TRUE(whole);
}

TEST(RingThreads, PlayCursorNeverFallsBehindAPositionSetWhilePlaying) {
    constexpr std::int32_t kPosition = 100 * kFrameBytes;
    // Longer than all pulls together, so that nothing wraps.
    PlaybackRing ring(2 * kSteps * kFrameBytes, 48000);
    ring.SetPosition(kPosition);
    ring.Play();
    std::latch start(2);
    std::thread audio([&] {
        std::vector<std::int16_t> frame(2);
        start.arrive_and_wait();
        for (int step = 0; step < kSteps; ++step) ring.Pull(frame.data(), 1, 500);
    });
    start.arrive_and_wait();
    int behind = 0;
    for (int step = 0; step < kSteps; ++step) {
        ring.SetPosition(kPosition);
        if (ring.Cursors().play < kPosition) ++behind;
    }
    audio.join();
    EXPECT_EQ(behind, 0);
}

TEST(RingThreads, CaptureServesTwoThreads) {
    PlainEventLoop loop;
    NotificationHub hub(loop);
    CaptureRing ring(kSharedRingBytes);
    std::uint64_t delivered = 0;
    std::vector<EventHandle> events;
    std::vector<CaptureRing::Position> positions;
    std::vector<std::int16_t> segment(std::size_t{2} * kSharedRingFrames / 4);
    bool whole = true;
    for (std::int32_t i = 0; i < 4; ++i) {
        const std::int32_t offset = i * kSharedRingBytes / 4;
        events.push_back(hub.Create([&, offset](EventHandle) {
            ring.Read(offset, segment);
            whole = whole && FramesAreWhole(segment);
            ++delivered;
        }));
        positions.push_back({offset + kSharedRingBytes / 4 - 1, hub.SignalOf(events.back())});
    }
    ring.SetPositions(positions);
    std::atomic<bool> finished{false};
    std::thread audio([&] {
        for (int step = 0; step < kSteps; ++step) {
            const std::vector<std::int16_t> period(2 * kPeriodFrames, static_cast<std::int16_t>(step));
            ring.Push(period.data(), kPeriodFrames);
        }
        finished = true;
    });
    for (int step = 0; !finished; ++step) {
        ring.Start();
        loop.Wait(100us);
        if (step % 10 == 9) {
            ring.Stop();
            ring.SetPositions(positions);
        }
    }
    audio.join();
    loop.Yield();
    const CaptureStatistics statistics = ring.Statistics();
    EXPECT_EQ(delivered, statistics.segmentsCompleted - statistics.segmentsLost);
    EXPECT_LE(statistics.framesCaptured, kSteps * kPeriodFrames);
    EXPECT_TRUE(whole);
}

TEST(RingThreads, NothingIsPushedAfterStop) {
    CaptureRing ring(kSharedRingBytes);
    std::atomic<bool> finished{false};
    std::thread audio([&] {
        const std::vector<std::int16_t> period(2 * kPeriodFrames, 1);
        while (!finished) ring.Push(period.data(), kPeriodFrames);
    });
    for (int step = 0; step < 200; ++step) {
        ring.Start();
        std::this_thread::yield();
        ring.Stop();
        const std::uint64_t captured = ring.Statistics().framesCaptured;
        std::this_thread::yield();
        EXPECT_EQ(ring.Statistics().framesCaptured, captured);
    }
    finished = true;
    audio.join();
}

}  // namespace
}  // namespace sonavex
