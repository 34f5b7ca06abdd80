// Samples of more than 16 bits in the rings.

#include <gtest/gtest.h>

#include <atomic>
#include <cmath>
#include <cstdint>
#include <limits>
#include <random>
#include <thread>
#include <vector>

#include "platform/ring/CaptureRing.h"
#include "platform/ring/PlaybackRing.h"

namespace sonavex {
namespace {

constexpr std::int32_t kFineRingFrames = 4096;
constexpr std::int32_t kHighest = std::numeric_limits<std::int32_t>::max();
constexpr std::int32_t kLowest = std::numeric_limits<std::int32_t>::min();

using FineSamples = std::vector<std::int32_t>;

// The extremes, then random samples of all sizes.
FineSamples AnySamples() {
    FineSamples samples{kHighest, kLowest, kHighest - 1, kLowest + 1, 0x8000, -0x8000, 0x18000, 0};
    std::mt19937 random(1);
    while (samples.size() < 2 * kFineRingFrames)
        samples.push_back(static_cast<std::int32_t>(random()) >> (random() % 32));
    return samples;
}

// Independent of the product: in double, where every 32-bit sample is exact.
std::int32_t RoundedTo(double sample, int bits) {
    const double step = std::exp2(32 - bits);
    return static_cast<std::int32_t>(std::min(std::nearbyint(sample / step), std::exp2(bits - 1) - 1.0) *
                                     step);
}

TEST(FineFrames, RoundHalfToEvenAndSaturate) {
    for (int bits = 8; bits < 32; ++bits)
        for (const std::int32_t sample : AnySamples())
            ASSERT_EQ(Rounded(sample, bits), RoundedTo(sample, bits)) << sample << ' ' << bits;
    EXPECT_EQ(Narrowed(0x18000), 2);
    EXPECT_EQ(Narrowed(0x28000), 2);
    EXPECT_EQ(Narrowed(-0x18000), -2);
    EXPECT_EQ(Narrowed(0x7FFF8000), 32767);
    EXPECT_EQ(Narrowed(kLowest), -32768);
}

class FineCapture : public testing::Test {
protected:
    FineCapture() {
        ring_.CaptureFine(true);
        ring_.Start();
    }
    CaptureRing ring_{kFineRingFrames * kFrameBytes, kFineRingFrames};
};

TEST_F(FineCapture, ReturnsEveryBit) {
    const FineSamples pushed = AnySamples();
    ring_.Push(pushed.data(), kFineRingFrames);
    FineSamples read(pushed.size());
    EXPECT_EQ(ring_.TakeFine(read).samples, pushed.size());
    EXPECT_EQ(read, pushed);
}

TEST_F(FineCapture, IsRoundedForThe16BitReader) {
    const FineSamples pushed = AnySamples();
    ring_.Push(pushed.data(), kFineRingFrames);
    std::vector<std::int16_t> read(pushed.size());
    ring_.Read(0, read);
    for (std::size_t i = 0; i < pushed.size(); ++i)
        ASSERT_EQ(read[i], RoundedTo(pushed[i], 16) / 65536) << pushed[i];
}

TEST_F(FineCapture, LeftJustifies16Bits) {
    const std::vector<std::int16_t> pushed{1, -1, 32767, -32768};
    ring_.Push(pushed.data(), 2);
    FineSamples read(4);
    EXPECT_EQ(ring_.TakeFine(read).samples, 4U);
    EXPECT_EQ(read, (FineSamples{0x10000, -0x10000, 0x7FFF0000, kLowest}));
}

TEST_F(FineCapture, NotesTheBitsThatMoved) {
    const FineSamples pushed{0x10, 0x70000, 0x10, 0x70100, 0x30, 0x70000};
    ring_.Push(pushed.data(), 3);
    ring_.TakeMovedBits();
    ring_.Push(pushed.data() + 4, 1);
    EXPECT_EQ(ring_.TakeMovedBits(), 0U);
    ring_.PushSilence(5);
    EXPECT_EQ(ring_.TakeMovedBits(), 0U) << "not from the device";
    ring_.Push(pushed.data(), 3);
    EXPECT_EQ(ring_.TakeMovedBits(), 0x120U);
    const std::vector<std::int16_t> narrow{1, 2, 3, 4};
    ring_.Push(narrow.data(), 2);
    EXPECT_EQ(ring_.TakeMovedBits(), 0U);
}

class FinePlayback : public testing::Test {
protected:
    FinePlayback() { ring_.Play(); }
    FineSamples Pull(int bits) {
        ring_.SetBits(bits);
        Queue();
        FineSamples pulled(samples_.size());
        ring_.Pull(pulled.data(), kFineRingFrames, 0);
        return pulled;
    }
    void SetLevel(std::int32_t hundredthsDb) {
        ring_.Stop();
        Pull(16);
        ring_.SetVolume(hundredthsDb);
        ring_.Play();
    }

    void Queue() {
        ring_.PlayFine(false);
        ring_.PlayFine(true);
        EXPECT_EQ(ring_.QueueFine(samples_), samples_.size());
    }

    FineSamples samples_ = AnySamples();
    PlaybackRing ring_{kFineRingFrames * kFrameBytes, 48000};
};

TEST_F(FinePlayback, PassesEveryBitToA32BitDevice) {
    EXPECT_EQ(Pull(32), samples_);
}

TEST_F(FinePlayback, IsRoundedToTheBitsOfTheDevice) {
    for (int bits = 8; bits < 32; ++bits) {
        const FineSamples pulled = Pull(bits);
        for (std::size_t i = 0; i < samples_.size(); ++i)
            ASSERT_EQ(pulled[i], RoundedTo(samples_[i], bits)) << samples_[i] << ' ' << bits;
    }
}

TEST_F(FinePlayback, IsRoundedOnceAfterTheVolume) {
    for (const std::int32_t level : {-1, -600, -3333, -9999}) {
        SetLevel(level);
        const double gain = std::pow(10.0, level / 2000.0);
        for (const int bits : {8, 16, 20, 24, 32}) {
            const FineSamples pulled = Pull(bits);
            for (std::size_t i = 0; i < samples_.size(); ++i)
                ASSERT_EQ(pulled[i], RoundedTo(gain * samples_[i], bits)) << samples_[i] << ' ' << bits;
        }
    }
}

// The 16-bit and the 32-bit stream carry the same samples when the device has 16 bits.
TEST_F(FinePlayback, IsTheSameOn16BitStreams) {
    for (const std::int32_t level : {0, -600}) {
        SetLevel(level);
        const FineSamples wide = Pull(16);
        Queue();
        std::vector<std::int16_t> narrow(samples_.size());
        ring_.Pull(narrow.data(), kFineRingFrames, 0);
        for (std::size_t i = 0; i < samples_.size(); ++i) ASSERT_EQ(narrow[i], wide[i] / 65536) << i;
    }
}

TEST_F(FinePlayback, A16BitStreamIsRoundedTo16BitsAtMost) {
    ring_.SetBits(24);
    Queue();
    std::vector<std::int16_t> pulled(samples_.size());
    ring_.Pull(pulled.data(), kFineRingFrames, 0);
    for (std::size_t i = 0; i < samples_.size(); ++i)
        ASSERT_EQ(pulled[i], RoundedTo(samples_[i], 16) / 65536) << samples_[i];
}

TEST_F(FinePlayback, Widens16BitBlocks) {
    const std::vector<std::int16_t> block{1, -1, 32767, -32768};
    ring_.Write(0, block);
    ring_.SetBits(24);
    FineSamples pulled(4);
    ring_.Pull(pulled.data(), 2, 0);
    EXPECT_EQ(pulled, (FineSamples{0x10000, -0x10000, 0x7FFF0000, kLowest}));
}

TEST(FineMemory, KeepsEveryBit) {
    const FineSamples samples = AnySamples();
    RingFrames frames(kFrameBytes);
    for (std::size_t i = 0; i < samples.size(); i += 2) {
        frames.Store(0, FineFrame{samples[i], samples[i + 1]});
        ASSERT_EQ(frames.LoadFine(0), (FineFrame{samples[i], samples[i + 1]}));
    }
}

// Both samples of a frame have the same 32 bits, whose halves differ from step to step.
TEST(FineThreads, AFrameIsNeverAMixture) {
    constexpr std::size_t kShared = 256;
    RingFrames frames(kShared * kFrameBytes);
    std::atomic<bool> finished{false};
    std::thread audio([&] {
        for (std::int32_t step = 1; step < 20000; ++step)
            for (std::size_t i = 0; i < kShared; ++i)
                frames.Store(i, FineFrame{step * 0x10001, step * 0x10001});
        finished = true;
    });
    bool whole = true;
    while (!finished)
        for (std::size_t i = 0; i < kShared; ++i) {
            const FineFrame read = frames.LoadFine(i);
            whole = whole && read[0] == read[1] && (read[0] >> 16) == (read[0] & 0xFFFF);
        }
    audio.join();
    EXPECT_TRUE(whole);
}

}  // namespace
}  // namespace sonavex
