#include <gtest/gtest.h>

#include <numeric>
#include <string>
#include <vector>

#include "core/ports/SoundErrors.h"
#include "support/Errors.h"
#include "unit/platform/simulated/SimulatedRig.h"

namespace sonavex {
namespace {

class SimulatedSound : public testing::Test {
protected:
    // Numbers as written by SimulatedRig::WriteNumbers.
    static std::vector<std::int16_t> Numbers(std::int16_t first, std::size_t count) {
        std::vector<std::int16_t> numbers(count);
        std::iota(numbers.begin(), numbers.end(), first);
        return numbers;
    }
    SimulatedRig rig_{SimulatedSoundSystem::Pace::kStepped};
    SimulatedSoundSystem& system_ = rig_.system;
};

TEST_F(SimulatedSound, ListsThePrimaryDeviceAndItself) {
    for (const SoundDeviceList& list : {system_.EnumeratePlayback(), system_.EnumerateCapture()}) {
        ASSERT_EQ(list.size(), 2U);
        EXPECT_EQ(list[0].identifier, "");
        EXPECT_FALSE(list[0].description.empty());
        EXPECT_EQ(list[1].identifier, "simulated");
        EXPECT_NE(list[1].description.find("not a measurement"), std::string::npos);
    }
    EXPECT_TRUE(system_.Simulated());
}

TEST_F(SimulatedSound, OpensByIdentifierAndRefusesOthers) {
    EXPECT_NE(system_.CreatePlaybackDevice("simulated"), nullptr);
    EXPECT_NE(system_.CreateCaptureDevice(""), nullptr);
    EXPECT_EQ(ErrorOf([&] { return system_.CreatePlaybackDevice("Simulated"); }), sound_error::kNoDriver);
    EXPECT_EQ(ErrorOf([&] { return system_.CreateCaptureDevice("card"); }), sound_error::kNoDriver);
}

TEST_F(SimulatedSound, RunsAtEveryExtendedRate) {
    const RateList all(kExtendedRates.begin(), kExtendedRates.end());
    EXPECT_EQ(system_.ExtendedPlaybackRates("simulated"), all);
    EXPECT_EQ(system_.ExtendedCaptureRates(""), all);
    EXPECT_EQ(ErrorOf([&] { return system_.ExtendedPlaybackRates("card"); }), sound_error::kNoDriver);
    system_.Unplug();
    EXPECT_EQ(ErrorOf([&] { return system_.ExtendedCaptureRates(""); }), sound_error::kNoDriver);
}

TEST_F(SimulatedSound, TakesSixteenBitStereoOnly) {
    const auto refuses = [&](auto change) {
        BufferDescription description = Stereo(4096, 48000);
        change(description.format);
        const auto playback = system_.CreatePlaybackDevice("");
        const auto capture = system_.CreateCaptureDevice("");
        return ErrorOf([&] { return playback->CreateBuffer(description); }) == sound_error::kBadFormat &&
               ErrorOf([&] { return capture->CreateBuffer(description); }) == sound_error::kBadFormat;
    };
    EXPECT_TRUE(refuses([](WaveFormat& format) { format.formatTag = 3; }));
    EXPECT_TRUE(refuses([](WaveFormat& format) { format.channels = 1; }));
    EXPECT_TRUE(refuses([](WaveFormat& format) { format.bitsPerSample = 24; }));
    EXPECT_TRUE(refuses([](WaveFormat& format) { format.blockAlign = 2; }));
    EXPECT_TRUE(refuses([](WaveFormat& format) { format.samplesPerSecond = 0; }));
}

TEST_F(SimulatedSound, BufferSizesAreWholeFrames) {
    const auto device = system_.CreateCaptureDevice("");
    EXPECT_EQ(ErrorOf([&] { return device->CreateBuffer(Stereo(10, 48000)); }), error_number::kInvalidCall);
}

TEST_F(SimulatedSound, WhatIsPlayedIsCaptured) {
    rig_.Open();
    rig_.WriteNumbers();
    rig_.capture->StartLooping();
    system_.Card().Step(100);
    rig_.playback->PlayLooping();
    system_.Card().Step(1000);
    EXPECT_EQ(rig_.Captured(100), std::vector<std::int16_t>(100, 0));
    const auto captured = rig_.Captured(1100);
    EXPECT_EQ(std::vector<std::int16_t>(captured.begin() + 100, captured.end()), Numbers(1, 1000));
    EXPECT_EQ(rig_.playback->GetCurrentPosition().write, 4000);
    EXPECT_EQ(rig_.capture->Statistics().framesCaptured, 1100U);
}

TEST_F(SimulatedSound, CaptureRunsWithoutPlayback) {
    rig_.Open();
    rig_.playback.reset();
    rig_.capture->StartLooping();
    system_.Card().Step(300);
    EXPECT_EQ(rig_.capture->Statistics().framesCaptured, 300U);
}

TEST_F(SimulatedSound, NotifiesPositionsThroughEvents) {
    rig_.Open();
    std::vector<EventHandle> delivered;
    std::vector<PositionNotification> positions;
    for (std::int32_t segment = 0; segment < 4; ++segment)
        positions.push_back({segment * 8192 + 8191,
                             system_.CreateEvent([&](EventHandle event) { delivered.push_back(event); })});
    rig_.capture->SetNotificationPositions(positions);
    rig_.capture->StartLooping();
    system_.Card().Step(2047);
    rig_.loop.Yield();
    EXPECT_TRUE(delivered.empty());
    system_.Card().Step(1 + 2048);
    system_.DestroyEvent(positions[1].event);
    rig_.loop.Yield();
    EXPECT_EQ(delivered, std::vector<EventHandle>{positions[0].event});
    rig_.capture->Stop();
    EXPECT_EQ(ErrorOf([&] { return rig_.capture->SetNotificationPositions(positions), 0; }),
              error_number::kInvalidCall);
}

TEST_F(SimulatedSound, ANewerBufferStaysConnectedWhenTheOlderOneGoes) {
    rig_.Open();
    rig_.playback = rig_.output->CreateBuffer(Stereo(kPlaybackBytes, 48000));
    rig_.capture = rig_.input->CreateBuffer(Stereo(kCaptureBytes, 48000));
    rig_.WriteNumbers();
    rig_.capture->StartLooping();
    rig_.playback->PlayLooping();
    system_.Card().Step(50);
    EXPECT_EQ(rig_.Captured(50), Numbers(1, 50));
}

TEST_F(SimulatedSound, DeviceUnderTestCanBeReplaced) {
    rig_.Open();
    rig_.WriteNumbers();
    DeviceUnderTestModel model;
    model.gain = 2.0;
    system_.Card().SetDeviceUnderTest(model);
    rig_.capture->StartLooping();
    rig_.playback->PlayLooping();
    system_.Card().Step(3);
    EXPECT_EQ(rig_.Captured(3), (std::vector<std::int16_t>{2, 4, 6}));
}

TEST_F(SimulatedSound, StalledCardMovesNothing) {
    rig_.Open();
    rig_.WriteNumbers();
    rig_.capture->StartLooping();
    rig_.playback->PlayLooping();
    system_.Card().Step(10);
    system_.Card().SetStalled(true);
    system_.Card().Step(1000);
    EXPECT_EQ(rig_.capture->Statistics().framesCaptured, 10U);
    EXPECT_EQ(rig_.playback->GetCurrentPosition().write, 40);
    system_.Card().SetStalled(false);
    system_.Card().Step(10);
    EXPECT_EQ(rig_.Captured(20), Numbers(1, 20));
}

TEST_F(SimulatedSound, ReportsItsCapabilities) {
    const auto device = system_.CreatePlaybackDevice("");
    EXPECT_EQ(device->GetCapabilities().freeHardwareMixingBuffers, 1);
}

}  // namespace
}  // namespace sonavex
