#include <gtest/gtest.h>

#include <chrono>
#include <vector>

#include "core/ports/SoundErrors.h"
#include "support/Errors.h"
#include "unit/platform/simulated/SimulatedRig.h"

namespace sonavex {
namespace {

using namespace std::chrono_literals;

class SimulatedUnplug : public testing::Test {
protected:
    SimulatedRig rig_{SimulatedSoundSystem::Pace::kStepped};
    SimulatedSoundSystem& system_ = rig_.system;
};

using Losses = std::vector<std::int32_t>;

TEST_F(SimulatedUnplug, IsReportedOnceForBothBuffers) {
    rig_.Open();
    system_.Unplug();
    EXPECT_EQ(rig_.LossNumbers(), Losses{});
    rig_.loop.Yield();
    EXPECT_EQ(rig_.LossNumbers(), Losses{sound_error::kBufferLost});
    system_.Unplug();
    rig_.loop.Yield();
    EXPECT_EQ(rig_.losses.size(), 1U);
}

TEST_F(SimulatedUnplug, IsNotReportedWithoutBuffers) {
    system_.Unplug();
    rig_.loop.Yield();
    EXPECT_EQ(rig_.LossNumbers(), Losses{});
}

TEST_F(SimulatedUnplug, IsNotReportedForBuffersGoneMeanwhile) {
    rig_.Open();
    system_.Unplug();
    rig_.Close();
    rig_.loop.Yield();
    EXPECT_EQ(rig_.LossNumbers(), Losses{});
}

TEST_F(SimulatedUnplug, IsNotReportedForBuffersMadeAfterReplugging) {
    rig_.Open();
    system_.Unplug();
    system_.Plug();
    rig_.Close();
    rig_.Open();
    rig_.loop.Yield();
    EXPECT_EQ(rig_.LossNumbers(), Losses{});
    EXPECT_EQ(ErrorOf([&] { return rig_.playback->GetCurrentPosition().play; }), 0);
}

TEST_F(SimulatedUnplug, MakesEveryOperationFail) {
    rig_.Open();
    rig_.capture->StartLooping();
    system_.Unplug();
    rig_.ExpectBuffersRefuse("");
    const auto gone = [](auto action) {
        return ErrorOf([&] { return action(), 0; }) == sound_error::kBufferLost;
    };
    EXPECT_TRUE(gone([&] { rig_.output->CreateBuffer(Stereo(4096, 48000)); }));
    EXPECT_TRUE(gone([&] { rig_.input->CreateBuffer(Stereo(4096, 48000)); }));
    EXPECT_EQ(ErrorOf([&] { return system_.CreatePlaybackDevice(""); }), sound_error::kNoDriver);
    EXPECT_EQ(ErrorOf([&] { return system_.CreateCaptureDevice("simulated"); }), sound_error::kNoDriver);
}

TEST_F(SimulatedUnplug, LetsBuffersStopQuietly) {
    rig_.Open();
    rig_.capture->StartLooping();
    rig_.playback->PlayLooping();
    system_.Card().Step(100);
    system_.Unplug();
    system_.Card().Step(100);
    rig_.playback->Stop();
    rig_.capture->Stop();
    EXPECT_EQ(rig_.capture->Statistics().framesCaptured, 100U);
}

TEST_F(SimulatedUnplug, TakesTheCardOffTheList) {
    system_.Unplug();
    EXPECT_EQ(system_.EnumeratePlayback().size(), 1U);
    EXPECT_EQ(system_.EnumerateCapture()[0].identifier, "");
    system_.Plug();
    EXPECT_EQ(system_.EnumeratePlayback().size(), 2U);
}

TEST_F(SimulatedUnplug, OldBuffersStayLostAfterReplugging) {
    rig_.Open();
    rig_.capture->StartLooping();
    system_.Unplug();
    system_.Plug();
    system_.Card().Step(100);
    EXPECT_EQ(rig_.capture->Statistics().framesCaptured, 0U);
    EXPECT_EQ(ErrorOf([&] { return rig_.playback->PlayLooping(), 0; }), sound_error::kBufferLost);
    EXPECT_EQ(ErrorOf([&] { return rig_.capture->StartLooping(), 0; }), sound_error::kBufferLost);
}

TEST_F(SimulatedUnplug, NewBuffersWorkAfterRepluggingAndCanBeLostAgain) {
    rig_.Open();
    system_.Unplug();
    rig_.loop.Yield();
    rig_.Close();
    system_.Plug();
    rig_.Open();
    rig_.WriteNumbers();
    rig_.capture->StartLooping();
    rig_.playback->PlayLooping();
    system_.Card().Step(2);
    EXPECT_EQ(rig_.Captured(2), (std::vector<std::int16_t>{1, 2}));
    system_.Unplug();
    rig_.loop.Yield();
    EXPECT_EQ(rig_.losses.size(), 2U);
}

TEST_F(SimulatedUnplug, TheLostHandlerMayCloseEverything) {
    rig_.Open();
    system_.OnDeviceLost([&](const RuntimeError& error) {
        rig_.Close();
        rig_.losses.push_back(error);
        system_.OnDeviceLost({});
    });
    system_.Unplug();
    rig_.loop.Yield();
    EXPECT_EQ(rig_.LossNumbers(), Losses{sound_error::kBufferLost});
}

TEST(SimulatedPace, RealTimeRunsAtAboutTheRate) {
    SimulatedRig rig(SimulatedSoundSystem::Pace::kRealTime);
    rig.Open(8000);
    rig.capture->StartLooping();
    const auto captured = [&] { return rig.capture->Statistics().framesCaptured; };
    ASSERT_TRUE(rig.loop.RunUntil([&] { return captured() > 0; }, 10s));
    const auto start = rig.loop.Now();
    const auto before = captured();
    ASSERT_TRUE(rig.loop.RunUntil([&] { return rig.loop.Now() - start >= 500ms; }, 10s));
    const double seconds = std::chrono::duration<double>(rig.loop.Now() - start).count();
    const double rateHz = static_cast<double>(captured() - before) / seconds;
    EXPECT_GT(rateHz, 4000.0);
    EXPECT_LT(rateHz, 16000.0);
}

TEST(SimulatedPace, RealTimeDeliversSegmentsInOrder) {
    SimulatedRig rig(SimulatedSoundSystem::Pace::kRealTime);
    rig.Open(48000);
    std::vector<EventHandle> delivered;
    std::vector<PositionNotification> positions;
    for (std::int32_t segment = 0; segment < 4; ++segment)
        positions.push_back({segment * 8192 + 8191,
                             rig.system.CreateEvent([&](EventHandle event) { delivered.push_back(event); })});
    rig.capture->SetNotificationPositions(positions);
    rig.capture->StartLooping();
    rig.playback->PlayLooping();
    EXPECT_TRUE(rig.loop.RunUntil([&] { return delivered.size() >= 4; }, 20s));
    for (std::size_t i = 0; i < 4; ++i) EXPECT_EQ(delivered.at(i), positions[i].event);
}

TEST(SimulatedPace, RealTimeSurvivesUnpluggingAndClosing) {
    SimulatedRig rig(SimulatedSoundSystem::Pace::kRealTime);
    for (int round = 0; round < 5; ++round) {
        rig.Open(48000);
        rig.capture->StartLooping();
        rig.playback->PlayLooping();
        EXPECT_TRUE(rig.loop.RunUntil([&] { return rig.capture->Statistics().framesCaptured > 0; }, 10s));
        rig.system.Unplug();
        EXPECT_TRUE(
            rig.loop.RunUntil([&] { return rig.losses.size() == static_cast<std::size_t>(round) + 1; }, 10s));
        rig.Close();
        rig.system.Plug();
    }
}

}  // namespace
}  // namespace sonavex
