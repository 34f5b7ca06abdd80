#include <gtest/gtest.h>

#include <algorithm>

#include "core/audio/UsedBits.h"
#include "platform/simulated/SimulatedSoundSystem.h"
#include "support/EngineBench.h"

namespace sonavex {
namespace {

using namespace std::chrono_literals;

constexpr std::uint32_t kUpperMoved = 0x00010000;

class DitheringSource : public FineSource {
public:
    explicit DitheringSource(int bits) noexcept : bits_(bits) {}
    void FillFine(std::span<std::int32_t> block) override { std::fill(block.begin(), block.end(), 0); }
    int DitherBits() const override { return bits_; }

private:
    int bits_;
};

// On fakes: an input of 24 bits that moves the upper 16.
class UsedBitsTest : public testing::Test {
protected:
    UsedBitsTest() {
        bench.sound.inputBits = bench.sound.outputBits = 24;
        bench.Start();
        bench.engine.SilentBlocks = 16;
        Observe(0);
    }
    // One observation in each second.
    void Observe(int seconds, std::uint32_t moved = kUpperMoved) {
        for (int i = 0; i <= seconds; ++i) {
            if (i > 0) bench.loop.Advance(1s);
            bench.sound.movedBits = moved;
            used.Observe();
        }
    }
    EngineBench bench;
    FineStream fine{bench.loop, bench.engine};
    UsedBits used{bench.loop, bench.engine, fine};
};

TEST_F(UsedBitsTest, TakesTenSeconds) {
    Observe(9);
    EXPECT_FALSE(used.Only16());
    Observe(1);
    EXPECT_TRUE(used.Only16());
    Observe(0, kUpperMoved | 0x8000);
    EXPECT_FALSE(used.Only16());
    Observe(0);
    Observe(10);
    EXPECT_TRUE(used.Only16());
    Observe(0, 1);
    EXPECT_FALSE(used.Only16()) << "the lowest bit of a card of 32 bits";
}

TEST_F(UsedBitsTest, ALowerBitStartsTheTimeAgain) {
    Observe(8);
    Observe(0, 0x100);
    Observe(9);
    EXPECT_FALSE(used.Only16());
    Observe(2);
    EXPECT_TRUE(used.Only16());
}

TEST_F(UsedBitsTest, AConstantInputTellsNothing) {
    Observe(30, 0);
    EXPECT_FALSE(used.Only16());
}

TEST_F(UsedBitsTest, NothingFollowsFromAnInputOf16Bits) {
    bench.sound.inputBits = 16;
    Observe(30);
    EXPECT_FALSE(used.Only16());
    bench.sound.inputBits = 17;
    Observe(11);
    EXPECT_TRUE(used.Only16());
}

TEST_F(UsedBitsTest, NothingFollowsWhile16BitsPlay) {
    bench.processor.onBlock = [](auto, std::span<std::int16_t> playback) { playback[4095] = 1; };
    bench.RunBlocks(1);
    EXPECT_EQ(bench.engine.SilentBlocks, 0U);
    Observe(30);
    EXPECT_FALSE(used.Only16());
    bench.processor.onBlock = [](auto, std::span<std::int16_t> playback) { playback[4095] = 0; };
    bench.RunBlocks(15);
    Observe(30);
    EXPECT_FALSE(used.Only16()) << "may still be on its way";
    bench.RunBlocks(1);
    Observe(11);
    EXPECT_TRUE(used.Only16());
    // What was concluded remains.
    bench.engine.SilentBlocks = 0;
    Observe(1);
    EXPECT_TRUE(used.Only16());
}

TEST_F(UsedBitsTest, AStimulusMustBeDitheredAndReachTheDevice) {
    bench.engine.SilentBlocks = 0;
    DitheringSource plain(0);
    DitheringSource dithered(24);
    DitheringSource coarser(23);
    for (DitheringSource* const source : {&plain, &coarser}) {
        fine.SetSource(source);
        Observe(30);
        EXPECT_FALSE(used.Only16());
    }
    fine.SetSource(&dithered);
    bench.sound.outputBits = 23;
    Observe(30);
    EXPECT_FALSE(used.Only16());
    bench.sound.outputBits = 24;
    Observe(11);
    EXPECT_TRUE(used.Only16());
}

TEST_F(UsedBitsTest, AStartOfTheCaptureBeginsAgain) {
    Observe(11);
    ASSERT_TRUE(used.Only16());
    ASSERT_TRUE(bench.engine.ReStart());
    Observe(9);
    EXPECT_FALSE(used.Only16());
    bench.engine.Release();
    Observe(1);
    EXPECT_FALSE(used.Only16());
}

// A card of 24 bits plays a dithered source. A real path of 16 bits in between would hide the dither.
TEST(UsedBitsOnACard, DitherOf24BitsMovesTheLowerBits) {
    class Noise : public DitheringSource {
    public:
        using DitheringSource::DitheringSource;
        void FillFine(std::span<std::int32_t> block) override {
            for (std::int32_t& sample : block)
                sample = static_cast<std::int32_t>((state_ = state_ * 1664525 + 1013904223) >> mask_)
                         << mask_;
        }
        int mask_ = 8;

    private:
        std::uint32_t state_ = 1;
    };
    for (const int usedBits : {24, 16}) {
        EngineOn<SimulatedSoundSystem> bench;
        bench.store.Save("Signal Generator", "Level", "0");
        DeviceUnderTestModel model;
        model.bits = 24;
        bench.sound.Card().SetDeviceUnderTest(model);
        FineStream fine{bench.loop, bench.engine};
        UsedBits used{bench.loop, bench.engine, fine};
        Noise noise(24);
        noise.mask_ = 32 - usedBits;
        ASSERT_TRUE(bench.engine.CreateDevices());
        ASSERT_TRUE(bench.engine.SetEvents());
        bench.engine.ResetStream();
        bench.engine.StartCapture();
        fine.SetSource(&noise);
        for (int block = 0; block < 200; ++block) {  // 64 ms each
            bench.sound.Card().Step(2048);
            bench.loop.Advance(64ms);
            used.Observe();
        }
        EXPECT_EQ(used.Only16(), usedBits == 16) << usedBits;
    }
}

}  // namespace
}  // namespace sonavex
