#include <gtest/gtest.h>

#include <numeric>

#include "core/audio/FineStream.h"
#include "platform/simulated/SimulatedSoundSystem.h"
#include "support/EngineBench.h"

namespace sonavex {
namespace {

using namespace std::chrono_literals;
using FineList = std::vector<std::int32_t>;

// Counts up from 1, in steps of 256: samples of 24 bits.
class CountingSource : public FineSource {
public:
    void FillFine(std::span<std::int32_t> block) override {
        for (std::int32_t& sample : block) sample = 256 * ++count_;
    }

private:
    std::int32_t count_ = 0;
};

FineList CountedUp(std::size_t samples) {
    FineList list(samples);
    for (std::size_t i = 0; i < samples; ++i) list[i] = 256 * static_cast<std::int32_t>(i + 1);
    return list;
}

// On fakes.
class FineStreamTest : public testing::Test {
protected:
    FineStreamTest() { bench.Start(); }
    EngineBench bench;
    FineStream fine{bench.loop, bench.engine};
    CountingSource source;
};

TEST_F(FineStreamTest, DoesNothingAtFirst) {
    bench.loop.Advance(1s);
    EXPECT_FALSE(bench.sound.fineOn);
    EXPECT_FALSE(bench.sound.fineCaptureOn);
    EXPECT_EQ(bench.loop.Timers(), 0U);
}

TEST_F(FineStreamTest, SuppliesAsMuchAsTheQueueTakes) {
    bench.sound.fineRoom = 10000;
    fine.SetSource(&source);
    EXPECT_TRUE(bench.sound.fineOn);
    EXPECT_EQ(bench.sound.fineQueued, CountedUp(10000));
    for (const std::size_t room : {0U, 2U, 5000U, 8192U}) {
        bench.sound.fineRoom = room;
        bench.loop.Advance(20ms);
    }
    EXPECT_EQ(bench.sound.fineQueued, CountedUp(10000 + 2 + 5000 + 8192));
    fine.SetSource(nullptr);
    EXPECT_FALSE(bench.sound.fineOn);
    EXPECT_EQ(bench.loop.Timers(), 0U);
}

TEST_F(FineStreamTest, ANewSourceBeginsWithItsFirstSample) {
    bench.sound.fineRoom = 100;
    fine.SetSource(&source);
    CountingSource other;
    bench.sound.fineQueued.clear();
    bench.sound.fineRoom = 100;
    fine.SetSource(&other);
    EXPECT_EQ(bench.sound.fineQueued, CountedUp(100));
}

// As long as a message is open, notifications are dropped.
TEST_F(FineStreamTest, DrainsWhileNotificationsAreHeld) {
    FineList taken;
    fine.SetSink(
        [&](std::span<const std::int32_t> part) { taken.insert(taken.end(), part.begin(), part.end()); });
    EXPECT_TRUE(bench.sound.fineCaptureOn);
    bench.engine.HoldNotifications = true;
    bench.sound.fineCaptured = CountedUp(50000);
    bench.loop.Advance(20ms);
    EXPECT_EQ(taken, CountedUp(50000));
    fine.SetSink({});
    EXPECT_FALSE(bench.sound.fineCaptureOn);
    EXPECT_EQ(bench.loop.Timers(), 0U);
}

TEST_F(FineStreamTest, FollowsTheEngineToNewBuffers) {
    fine.SetSource(&source);
    fine.SetSink([](std::span<const std::int32_t>) {});
    ASSERT_TRUE(bench.engine.ReStart());
    bench.sound.fineOn = bench.sound.fineCaptureOn = false;
    bench.loop.Advance(20ms);
    EXPECT_TRUE(bench.sound.fineOn);
    EXPECT_TRUE(bench.sound.fineCaptureOn);
    bench.engine.Release();
    bench.loop.Advance(20ms);
}

// The whole way, on a card of 24 bits.
TEST(FineStreamOnACard, ReplacesTheBlockMetersOutputBeyondItsLimiter) {
    EngineOn<SimulatedSoundSystem> bench;
    bench.shared.SampleRate = 48000;
    bench.store.Save("Signal Generator", "Level", "0");
    DeviceUnderTestModel model;
    model.bits = 24;
    bench.sound.Card().SetDeviceUnderTest(model);
    VirtualEventLoop& loop = bench.loop;
    SimulatedSoundSystem& sound = bench.sound;
    StreamEngine& engine = bench.engine;
    FineStream fine{loop, engine};

    class FullScale : public FineSource {
    public:
        void FillFine(std::span<std::int32_t> block) override {
            for (std::int32_t& sample : block) sample = (sign_ = -sign_) * 0x7FFFFF00;
        }

    private:
        std::int32_t sign_ = -1;
    } source;
    fine.SetSource(&source);
    FineList taken;
    fine.SetSink(
        [&](std::span<const std::int32_t> part) { taken.insert(taken.end(), part.begin(), part.end()); });
    ASSERT_TRUE(engine.CreateDevices());
    ASSERT_TRUE(engine.SetEvents());
    engine.ResetStream();
    engine.StartCapture();
    for (int block = 0; block < 40; ++block) {
        sound.Card().Step(2048);
        loop.Advance(43ms);
    }
    EXPECT_EQ(engine.InputBits(), 24);
    EXPECT_EQ(engine.OutputBits(), 24);
    EXPECT_EQ(engine.Overruns, 0U);
    EXPECT_EQ(engine.SecondaryBuffer()->FineFramesMissing(), 0U);
    EXPECT_EQ(engine.CaptureCounts().fineFramesLost, 0U);
    // Playback starts after seven blocks.
    const auto first = std::find_if(taken.begin(), taken.end(), [](auto sample) { return sample != 0; });
    ASSERT_GE(taken.end() - first, 30 * 4096);
    for (auto sample = first; sample != taken.end(); sample += 2) {
        ASSERT_EQ(sample[0], 0x7FFFFF00);
        ASSERT_EQ(sample[1], -0x7FFFFF00);
    }
}

}  // namespace
}  // namespace sonavex
