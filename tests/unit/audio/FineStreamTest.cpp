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
    struct Place {
        std::uint64_t first;
        std::size_t frames;
        std::uint64_t lost;
        bool restarted;
        bool operator==(const Place&) const = default;
    };
    // Delivers frames with this number and returns the blocks that the sink received.
    std::vector<Place> Deliver(std::uint64_t firstFrame, std::size_t frames) {
        blocks.clear();
        bench.sound.fineFirstFrame = firstFrame;
        bench.sound.fineCaptured = FineList(2 * frames);
        bench.loop.Advance(100ms);
        return blocks;
    }
    std::vector<Place> blocks;
    const FineStream::Sink noting = [this](const FineFrames& block) {
        blocks.push_back({block.firstFrame, block.samples.size() / 2, block.lostBefore, block.restarted});
    };
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
        bench.loop.Advance(100ms);
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
    EXPECT_EQ(bench.sound.fineCuts, (std::vector<std::int64_t>{0}));  // of an empty queue
    fine.SetSource(&other);
    EXPECT_EQ(bench.sound.fineQueued, CountedUp(100));
    EXPECT_EQ(bench.sound.fineCuts, (std::vector<std::int64_t>{0, 0}));
    EXPECT_TRUE(bench.sound.fineOn);
}

TEST_F(FineStreamTest, ARefillRewindsTheSourceByWhatIsNotPlayed) {
    class Rewound : public CountingSource {
    public:
        void Rewind(std::uint64_t frames) override { rewound += frames; }
        std::uint64_t rewound = 0;
    } other;
    fine.Refill();
    bench.sound.fineRoom = 4096 + 1000;
    fine.SetSource(&other);
    bench.sound.fineWaiting = 2000;
    EXPECT_EQ(fine.FramesAhead(), 2000U + 2048U - 500U);
    bench.sound.fineCuts.clear();
    bench.sound.fineRoom = 4;
    fine.Refill();
    EXPECT_EQ(other.rewound, 2000U + 2048U - 500U);
    EXPECT_EQ(bench.sound.fineCuts, (std::vector<std::int64_t>{50}));
    // The first sample of the third block.
    EXPECT_EQ(bench.sound.fineQueued.at(4096 + 1000), 256 * (2 * 4096 + 1));
}

TEST_F(FineStreamTest, ASourceThatThrowsIsRemoved) {
    class Throwing : public FineSource {
    public:
        void FillFine(std::span<std::int32_t>) override { throw RuntimeError(7); }
    } throwing;
    EXPECT_THROW(fine.SetSource(&throwing), RuntimeError);
    EXPECT_FALSE(bench.sound.fineOn);
    EXPECT_EQ(bench.loop.Timers(), 0U);
    bench.sound.fineRoom = 10;
    fine.SetSource(&source);
    EXPECT_EQ(bench.sound.fineQueued, CountedUp(10));
}

TEST_F(FineStreamTest, ASourceMayReplaceItselfAndReleaseTheDevices) {
    class Replacing : public FineSource {
    public:
        Replacing(FineStream& fine, FineSource& next) : fine_(fine), next_(next) {}
        void FillFine(std::span<std::int32_t> block) override {
            std::fill(block.begin(), block.end(), -1);
            fine_.SetSource(&next_);
        }

    private:
        FineStream& fine_;
        FineSource& next_;
    } replacing(fine, source);
    bench.sound.fineRoom = 10;
    fine.SetSource(&replacing);
    EXPECT_EQ(bench.sound.fineQueued, CountedUp(10));

    class Releasing : public FineSource {
    public:
        explicit Releasing(StreamEngine& engine) : engine_(engine) {}
        void FillFine(std::span<std::int32_t>) override { engine_.Release(); }

    private:
        StreamEngine& engine_;
    } releasing(bench.engine);
    bench.sound.fineQueued.clear();
    fine.SetSource(&releasing);
    bench.loop.Advance(100ms);
    EXPECT_EQ(bench.sound.fineQueued, FineList{});
}

// A queue that never fills must not stop the user-interface thread.
TEST_F(FineStreamTest, ATickEndsInAnyCase) {
    bench.sound.fineRoom = std::size_t{1} << 40U;
    fine.SetSource(&source);
    EXPECT_EQ(bench.sound.fineQueued.size(), 200U * 4096U);
    int delivered = 0;
    fine.SetSink([&](const FineFrames&) {
        ++delivered;
        bench.sound.fineCaptured.resize(4096);
    });
    bench.sound.fineCaptured.resize(4096);
    bench.loop.Advance(40ms);
    EXPECT_EQ(delivered, 200);
}

TEST_F(FineStreamTest, SaysWhereFramesWereLost) {
    fine.SetSink(noting);
    EXPECT_EQ(Deliver(100, 2048 + 7), (std::vector<Place>{{100, 2048, 0, true}, {2148, 7, 0, false}}));
    EXPECT_EQ(Deliver(2155, 1), (std::vector<Place>{{2155, 1, 0, false}}));
    EXPECT_EQ(Deliver(2160, 10), (std::vector<Place>{{2160, 10, 4, false}}));
    EXPECT_EQ(Deliver(2170, 1), (std::vector<Place>{{2170, 1, 0, false}}));
}

TEST_F(FineStreamTest, SaysWhenTheCaptureStartsAgain) {
    fine.SetSink(noting);
    Deliver(0, 5);
    ASSERT_TRUE(bench.engine.ReStart());
    EXPECT_EQ(Deliver(0, 3), (std::vector<Place>{{0, 3, 0, true}}));
    bench.engine.StartCapture();
    EXPECT_EQ(Deliver(3, 3), (std::vector<Place>{{3, 3, 0, true}}));
    fine.SetSink(noting);
    EXPECT_EQ(Deliver(6, 3), (std::vector<Place>{{6, 3, 0, true}}));
}

TEST_F(FineStreamTest, ASinkThatThrowsIsRemoved) {
    fine.SetSink([](const FineFrames&) { throw RuntimeError(7); });
    bench.sound.fineCaptured.resize(9000);
    EXPECT_THROW(bench.loop.Advance(100ms), RuntimeError);
    EXPECT_FALSE(bench.sound.fineCaptureOn);
    EXPECT_EQ(bench.loop.Timers(), 0U);
    bench.loop.Advance(1s);
}

TEST_F(FineStreamTest, ASinkMayReplaceItselfAndTheDevices) {
    fine.SetSink([this](const FineFrames& block) {
        bench.engine.Release();
        fine.SetSource(&source);
        fine.SetSink(noting);
        noting(block);  // the closure still exists
    });
    EXPECT_EQ(Deliver(0, 9000), (std::vector<Place>{{0, 2048, 0, true}}));
    ASSERT_TRUE(bench.engine.ReStart());
    EXPECT_EQ(Deliver(5, 2), (std::vector<Place>{{5, 2, 0, true}}));
}

// As long as a sink shows a message.
TEST_F(FineStreamTest, TheOutputIsSuppliedWhileASinkWaits) {
    fine.SetSource(&source);
    fine.SetSink([this](const FineFrames& block) {
        noting(block);
        bench.sound.fineRoom = 10;
        bench.loop.Advance(100ms);
    });
    EXPECT_EQ(Deliver(0, 3000).size(), 2U);
    EXPECT_EQ(bench.sound.fineQueued, CountedUp(20));
}

// As long as a message is open, notifications are dropped.
TEST_F(FineStreamTest, DrainsWhileNotificationsAreHeld) {
    FineList taken;
    fine.SetSink([&](const FineFrames& block) {
        taken.insert(taken.end(), block.samples.begin(), block.samples.end());
    });
    EXPECT_TRUE(bench.sound.fineCaptureOn);
    bench.engine.HoldNotifications = true;
    bench.sound.fineCaptured = CountedUp(50000);
    bench.loop.Advance(100ms);
    EXPECT_EQ(taken, CountedUp(50000));
    fine.SetSink({});
    EXPECT_FALSE(bench.sound.fineCaptureOn);
    EXPECT_EQ(bench.loop.Timers(), 0U);
}

TEST_F(FineStreamTest, FollowsTheEngineToNewBuffers) {
    fine.SetSource(&source);
    fine.SetSink([](const FineFrames&) {});
    ASSERT_TRUE(bench.engine.ReStart());
    bench.sound.fineOn = bench.sound.fineCaptureOn = false;
    bench.loop.Advance(100ms);
    EXPECT_TRUE(bench.sound.fineOn);
    EXPECT_TRUE(bench.sound.fineCaptureOn);
    bench.engine.Release();
    bench.loop.Advance(100ms);
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
    fine.SetSink([&](const FineFrames& block) {
        taken.insert(taken.end(), block.samples.begin(), block.samples.end());
    });
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
