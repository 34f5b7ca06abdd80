// Moving samples through the rings allocates nothing, on either thread, and takes no lock.

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <cstdint>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

#include "platform/plain/PlainEventLoop.h"
#include "platform/ring/CaptureRing.h"
#include "platform/ring/PlaybackRing.h"
#include "platform/ring/RingBuffers.h"
#include "support/AllocationCounter.h"

namespace sonavex {
namespace {

template <class Sample>
void ExpectNoAllocation(bool fine) {
    constexpr std::size_t kPeriodFrames = 500;
    CaptureRing in(32768, 48000);
    PlaybackRing out(65536, 48000);
    in.Start();
    out.Play();
    in.CaptureFine(fine);
    out.PlayFine(fine);
    std::vector<Sample> period(2 * kPeriodFrames);
    const AllocationCounter counter;
    for (int round = 0; round < 200; ++round) {
        out.SetVolume(-round);
        out.Pull(period.data(), kPeriodFrames, 1000);
        in.Push(period.data(), kPeriodFrames);
        in.PushSilence(3);
    }
    EXPECT_EQ(counter.Count(), 0U);
    EXPECT_EQ(counter.Locks(), 0U);
}

TEST(AllocationCounter, SeesLocksAndOtherThreads) {
    std::mutex mutex;
    std::atomic<bool> go{false};
    std::thread other([&] {
        while (!go) std::this_thread::yield();
        std::vector<int>(100).swap(*std::make_unique<std::vector<int>>());
    });
    const AllocationCounter counter;
    mutex.lock();
    mutex.unlock();
    EXPECT_EQ(counter.OfOtherThreads(), 0U);
    go = true;
    other.join();
    EXPECT_GE(counter.OfOtherThreads(), 2U);
    EXPECT_EQ(counter.Locks(), AllocationCounter::SeesTheCLibrary() ? 1U : 0U);
}

TEST(RingAllocation, AudioThreadsAllocateNothing) {
    for (const bool fine : {false, true}) {
        ExpectNoAllocation<std::int16_t>(fine);
        ExpectNoAllocation<std::int32_t>(fine);
    }
}

class DeviceOf24Bits : public RingDevice {
public:
    void RequireDevice() const override {}
    int Bits() const noexcept override { return 24; }
};

class PlaybackOf24Bits : public RingPlaybackBuffer {
public:
    explicit PlaybackOf24Bits(const BufferDescription& description) : RingPlaybackBuffer(description) {}
    using RingPlaybackBuffer::Pull;

private:
    const RingDevice& Device() const noexcept override { return device_; }
    DeviceOf24Bits device_;
};

class CaptureOf24Bits : public RingCaptureBuffer {
public:
    using RingCaptureBuffer::Push;
    CaptureOf24Bits(const NotificationHub& hub, const BufferDescription& description)
        : RingCaptureBuffer(hub, description) {}

private:
    const RingDevice& Device() const noexcept override { return device_; }
    DeviceOf24Bits device_;
};

// What a sound server's callback runs outside the server's library.
TEST(RingAllocation, BuffersOfDevicesAllocateNothing) {
    constexpr std::size_t kFrames = 500;
    PlainEventLoop loop;
    const NotificationHub hub(loop);
    const BufferDescription description{0, 65536, WaveFormat::Stereo16(96000)};
    PlaybackOf24Bits out(description);
    CaptureOf24Bits in(hub, description);
    out.PlayFine(true);
    out.PlayLooping();
    in.CaptureFine(true);
    in.StartLooping();
    std::vector<std::int32_t> period(2 * kFrames, 256);
    out.QueueFine(period);
    const AllocationCounter counter;
    for (int round = 0; round < 10; ++round) {
        out.Pull(period.data(), kFrames, 1000);
        in.Push(period.data(), kFrames);
    }
    EXPECT_EQ(counter.Count(), 0U);
    EXPECT_EQ(counter.Locks(), 0U);
    EXPECT_EQ(out.FineFramesMissing(), 9 * kFrames);
    EXPECT_EQ(in.Statistics().framesCaptured, 10 * kFrames);
}

// The user-interface thread's part of the block path and of the fine path.
TEST(RingAllocation, ReadingAndWritingAllocateNothing) {
    CaptureRing in(32768, 48000);
    PlaybackRing out(65536, 48000);
    in.CaptureFine(true);
    out.PlayFine(true);
    std::vector<std::int16_t> block(4096);
    std::vector<std::int32_t> fine(4096);
    const AllocationCounter counter;
    in.Read(0, block);
    out.Write(0, block);
    out.QueueFine(fine);
    out.CutFine(std::chrono::milliseconds(1));
    out.QueueFine(fine);
    in.TakeFine(fine);
    EXPECT_EQ(counter.Count(), 0U);
    EXPECT_EQ(counter.Locks(), 0U);
}

}  // namespace
}  // namespace sonavex
