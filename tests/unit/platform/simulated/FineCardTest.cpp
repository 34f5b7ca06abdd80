// The simulated card with other than 16 bits.

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdint>
#include <numeric>
#include <thread>
#include <vector>

#include "platform/simulated/SimulatedSoundSystem.h"
#include "unit/platform/simulated/SimulatedRig.h"

namespace sonavex {
namespace {

using FineBlock = std::vector<std::int32_t>;
constexpr std::size_t kFineBlockFrames = 2048;

DeviceUnderTestModel WithBits(int bits, bool dither = false) {
    DeviceUnderTestModel model;
    model.bits = bits;
    model.dither = dither;
    return model;
}

class FineCard : public testing::Test {
protected:
    FineCard() { rig_.Open(); }
    // Plays the samples once and returns what is captured meanwhile.
    FineBlock Through(const DeviceUnderTestModel& model, const FineBlock& played) {
        rig_.system.Card().SetDeviceUnderTest(model);
        rig_.capture->Stop();
        for (const bool on : {false, true}) {
            rig_.playback->PlayFine(on);
            rig_.capture->CaptureFine(on);
        }
        EXPECT_EQ(rig_.playback->QueueFine(played), played.size());
        rig_.Start();
        rig_.system.Card().Step(played.size() / 2);
        FineBlock captured(played.size());
        EXPECT_EQ(rig_.capture->TakeFine(captured).samples, captured.size());
        return captured;
    }
    SimulatedRig rig_{SimulatedSoundSystem::Pace::kStepped};
};

TEST_F(FineCard, ReturnsEveryBitThatItHas) {
    for (const int bits : {8, 16, 20, 24, 32}) {
        FineBlock played;
        for (std::size_t i = 0; i < 2 * kFineBlockFrames; ++i)
            played.push_back(static_cast<std::int32_t>((i * 2654435761U) & (0xFFFFFFFFU << (32 - bits))));
        EXPECT_EQ(Through(WithBits(bits), played), played) << bits;
        EXPECT_EQ(rig_.playback->Bits(), bits);
        EXPECT_EQ(rig_.capture->Bits(), bits);
    }
}

TEST_F(FineCard, RoundsToItsBits) {
    const FineBlock played{0x01234567, -0x01234567, 0x7FFFFFFF, -0x7FFFFFFF - 1};
    EXPECT_EQ(Through(WithBits(24), played),
              (FineBlock{0x01234500, -0x01234500, 0x7FFFFF00, -0x7FFFFFFF - 1}));
    EXPECT_EQ(Through(WithBits(16), played),
              (FineBlock{0x01230000, -0x01230000, 0x7FFF0000, -0x7FFFFFFF - 1}));
}

// A gain of a third leaves no 16-bit step: the device computes in double and rounds to 24 bits.
TEST_F(FineCard, ComputesInDouble) {
    DeviceUnderTestModel model = WithBits(24);
    model.gain = 1.0 / 3.0;
    const FineBlock played(2 * kFineBlockFrames, 0x10000000);
    EXPECT_EQ(Through(model, played), FineBlock(played.size(), 0x05555500));
}

TEST_F(FineCard, DitherIsTriangularAndOfTwoStepsPeakToPeak) {
    const FineBlock captured = Through(WithBits(20, true), FineBlock(2 * kFineBlockFrames, 0x800));
    constexpr double kStep = 4096.0;  // of 20 bits; the played samples are rounded to 0
    double sum = 0.0;
    double squares = 0.0;
    for (const std::int32_t sample : captured) {
        ASSERT_LE(std::abs(sample), kStep);
        sum += sample / kStep;
        squares += sample / kStep * (sample / kStep);
    }
    const auto count = static_cast<double>(captured.size());
    EXPECT_NEAR(sum / count, 0.0, 0.04);
    // An eighth of the samples rounds to each neighbour.
    EXPECT_NEAR(squares / count, 0.25, 0.03);
}

// The user-interface thread runs nothing for a second; no event is delivered meanwhile.
TEST(FineCardInRealTime, ABlockedThreadLosesNoFineFrame) {
    SimulatedRig rig(SimulatedSoundSystem::Pace::kRealTime);
    constexpr std::int32_t kFineRateHz = 192000;
    rig.Open(kFineRateHz);
    rig.system.Card().SetDeviceUnderTest(WithBits(24));
    std::vector<std::int16_t> pattern(kPlaybackBytes / 2);
    for (std::size_t i = 0; i < pattern.size(); ++i) pattern[i] = static_cast<std::int16_t>(i % 30000 + 1);
    rig.playback->WriteBuffer(0, pattern);
    rig.capture->CaptureFine(true);
    rig.Start();
    std::this_thread::sleep_for(std::chrono::seconds(1));
    FineBlock captured(4 * kFineRateHz);
    captured.resize(rig.capture->TakeFine(captured).samples);
    EXPECT_GE(captured.size(), 2 * kFineRateHz * 9 / 10);
    EXPECT_EQ(rig.capture->Statistics().fineFramesLost, 0U);
    const auto first =
        std::find_if(captured.begin(), captured.end(), [](auto sample) { return sample != 0; });
    std::size_t at = 0;
    std::size_t different = 0;
    for (auto sample = first; sample != captured.end(); ++sample, at = (at + 1) % pattern.size())
        if (*sample != pattern[at] * 65536) ++different;
    EXPECT_EQ(different, 0U);
    EXPECT_LT(first - captured.begin(), kFineRateHz / 5);
}

TEST(FineCardInRealTime, ABlockedThreadPlaysEveryFineFrame) {
    SimulatedRig rig(SimulatedSoundSystem::Pace::kRealTime);
    constexpr std::int32_t kPlayedHz = 192000;
    rig.Open(kPlayedHz);
    rig.system.Card().SetDeviceUnderTest(WithBits(32));
    FineBlock counted(3 * kPlayedHz);
    std::iota(counted.begin(), counted.end(), 1);
    rig.playback->PlayFine(true);
    ASSERT_EQ(rig.playback->QueueFine(counted), counted.size());
    rig.capture->CaptureFine(true);
    rig.Start();
    std::this_thread::sleep_for(std::chrono::seconds(1));
    FineBlock captured(4 * kPlayedHz);
    captured.resize(rig.capture->TakeFine(captured).samples);
    EXPECT_EQ(rig.playback->FineFramesMissing(), 0U);
    captured.erase(captured.begin(),
                   std::find_if(captured.begin(), captured.end(), [](auto sample) { return sample != 0; }));
    ASSERT_GE(captured.size(), 2 * kPlayedHz * 9 / 10);
    EXPECT_TRUE(std::equal(captured.begin(), captured.end(), counted.begin()));
}

}  // namespace
}  // namespace sonavex
