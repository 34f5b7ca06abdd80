#include <gtest/gtest.h>

#include <functional>
#include <utility>

#include "core/ports/SoundErrors.h"
#include "support/Errors.h"
#include "support/VirtualEventLoop.h"
#include "system/endurance/FailingCard.h"
#include "system/endurance/Soak.h"

namespace sonavex {
namespace {

TEST(FailingCard, FailsEachOperationOnce) {
    VirtualEventLoop loop;
    FailingCard card(loop, SimulatedSoundSystem::Pace::kStepped);
    const auto output = card.CreatePlaybackDevice("");
    const auto input = card.CreateCaptureDevice("");
    const BufferDescription buffer{0, 65536, WaveFormat::Stereo16(48000)};
    using Operation = FailingCard::Operation;
    const std::pair<Operation, std::function<void()>> operations[] = {
        {Operation::kEnumerate, [&] { card.EnumeratePlayback(); }},
        {Operation::kEnumerate, [&] { card.EnumerateCapture(); }},
        {Operation::kPlaybackDevice, [&] { card.CreatePlaybackDevice(""); }},
        {Operation::kCaptureDevice, [&] { card.CreateCaptureDevice(""); }},
        {Operation::kPlaybackBuffer, [&] { output->CreateBuffer(buffer); }},
        {Operation::kCaptureBuffer, [&] { input->CreateBuffer(buffer); }}};
    for (const auto& operation : operations) {
        card.FailNext(operation.first, RuntimeError(sound_error::kAllocated, "in use"));
        const auto error = Raised([&] { return operation.second(), 0; });
        ASSERT_TRUE(error);
        EXPECT_EQ(error->Number(), sound_error::kAllocated);
        EXPECT_FALSE(Raised([&] { return operation.second(), 0; }));
    }
}

// Half an hour of sound with an event every few seconds. sonavex-soak runs for any number of days.
TEST(Soak, HoursOfUseAndFaultsLeaveTheReadingsRight) {
    Soak soak(20260, 100.0);
    ASSERT_NO_THROW(soak.Run(30'000, 3'000));
    const Soak::Report& report = soak.Result();
    EXPECT_GE(report.checks, 10U);
    for (std::size_t i = 0; i < Soak::kEvents; ++i)
        EXPECT_GT(report.events[i], 0U) << Soak::Name(static_cast<Soak::Event>(i));
    EXPECT_GT(report.losses, 0U);
    EXPECT_GT(report.segmentsLost, 0U);
    // Fine frames arrive during most of the blocks between the checks.
    EXPECT_GT(report.fineFrames, report.blocks * 2048 / 2);
}

TEST(Soak, LeavesTheProgramRunningWhereThatIsWanted) {
    Soak soak(20261, 100.0);
    soak.LeaveRunning();
    ASSERT_NO_THROW(soak.Run(6'000, 3'000));
    const Soak::Report& report = soak.Result();
    EXPECT_EQ(report.events[static_cast<std::size_t>(Soak::Event::kProgramRestart)], 0U);
    EXPECT_GT(report.events[static_cast<std::size_t>(Soak::Event::kUserAction)], 0U);
    EXPECT_GT(report.mostFrames, 0U);
    EXPECT_LE(report.mostFrames, report.blocks * 2048);
}

}  // namespace
}  // namespace sonavex
