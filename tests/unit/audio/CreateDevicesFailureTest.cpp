#include "core/ports/SoundErrors.h"
#include "core/support/EndProgram.h"
#include "support/EngineBench.h"

namespace sonavex {
namespace {

using testing::ElementsAre;

constexpr const char* kNoOutput =
    "Unable to find Output Sound Card and/or DirectX. Check proper sound card installation";
constexpr const char* kNoInput =
    "Unable to find Inpout Sound Card and/or DirectX. Check proper sound card installation";

std::string Logged(std::int32_t number, const std::string& text) {
    return "WriteErrorLog " + std::to_string(number) + ' ' + text;
}

struct FailureRow {
    const char* operation;
    const char* message;
    const char* lastPortCall;  // only the record follows it
};

class CreateDevicesFailure : public testing::TestWithParam<std::tuple<std::int32_t, FailureRow>> {};

INSTANTIATE_TEST_SUITE_P(
    Rows, CreateDevicesFailure,
    testing::Combine(
        testing::Values(5, 6, 10),
        testing::Values(FailureRow{"CreatePlaybackDevice", kNoOutput, "CreatePlaybackDevice []"},
                        FailureRow{"CreateCaptureDevice", kNoInput, "CreateCaptureDevice []"},
                        FailureRow{"captureDevice.CreateBuffer",
                                   "Error Creating Input Capture Device\ror sound card is in use.",
                                   "captureDevice.CreateBuffer"},
                        FailureRow{"playbackDevice.CreateBuffer", "Error Creating Output Sound Device",
                                   "playbackDevice.CreateBuffer"},
                        FailureRow{"playbackDevice.SetCooperativeLevel", "Error Creating Output Sound Device",
                                   "playbackDevice.SetCooperativeLevel 2"},
                        FailureRow{"playbackDevice.GetCapabilities", "Error Creating Output Sound Device",
                                   "playbackDevice.GetCapabilities"},
                        FailureRow{"playbackBuffer.SetVolume", "Error Creating Output Sound Device",
                                   "playbackBuffer.SetVolume -50"})));

TEST_P(CreateDevicesFailure, IsRecordedAndAnsweredWithFalse) {
    const auto& [osMajorVersion, row] = GetParam();
    EngineBench bench(osMajorVersion);
    bench.log.Fail(row.operation, RuntimeError(sound_error::kAllocated, "in use"));
    EXPECT_FALSE(bench.engine.CreateDevices());
    const auto& lines = bench.log.Lines();
    ASSERT_GE(lines.size(), 2U);
    EXPECT_EQ(lines[lines.size() - 2], row.lastPortCall);
    EXPECT_EQ(lines.back(), Logged(sound_error::kAllocated, row.message));
    EXPECT_EQ(bench.log.Count("WriteErrorLog"), 1U);
    EXPECT_EQ(bench.log.Count("SetFatalError"), 0U);
}

TEST(CreateDevicesFailure, OfTheCaptureListNamesTheInput) {
    EngineBench bench;
    bench.log.Fail("EnumerateCapture", RuntimeError(sound_error::kUninitialized, "no server"));
    EXPECT_FALSE(bench.engine.CreateDevices());
    EXPECT_THAT(bench.log.Lines(),
                ElementsAre("EnumeratePlayback", "EnumerateCapture", "CreatePlaybackDevice []",
                            Logged(sound_error::kUninitialized, kNoInput)));
}

TEST(CreateDevicesFailure, OfThePrimaryInputWithoutADeviceBehindIt) {
    for (const std::size_t entries : {1U, 0U}) {
        EngineBench bench;
        bench.sound.captureDevices.resize(entries);
        EXPECT_FALSE(bench.engine.CreateDevices()) << entries;
        EXPECT_THAT(bench.log.Lines(), ElementsAre("EnumeratePlayback", "EnumerateCapture",
                                                   "CreatePlaybackDevice []", Logged(9, kNoInput)));
    }
}

TEST(CreateDevicesFailure, OfTheOutputComesBeforeThatOfTheInput) {
    EngineBench bench;
    bench.sound.captureDevices.resize(1);
    bench.log.Fail("CreatePlaybackDevice", RuntimeError(sound_error::kNoDriver, "gone"));
    EXPECT_FALSE(bench.engine.CreateDevices());
    EXPECT_THAT(bench.log.Of("WriteErrorLog"), ElementsAre(Logged(sound_error::kNoDriver, kNoOutput)));
}

TEST(CreateDevicesFailure, LeavesNothingOfTheFailedAttemptInTheWay) {
    EngineBench bench;
    bench.log.Fail("playbackDevice.CreateBuffer", RuntimeError(sound_error::kAllocated, "in use"));
    ASSERT_FALSE(bench.engine.CreateDevices());
    bench.log.Heal("playbackDevice.CreateBuffer");
    EXPECT_TRUE(bench.engine.CreateDevices());
    EXPECT_NE(bench.engine.SecondaryBuffer(), nullptr);
}

// Status of the EndProgram that the action throws; -1 if it throws none.
template <class Action>
int EndStatus(Action action) {
    try {
        action();
    } catch (const EndProgram& end) {
        return end.status;
    }
    return -1;
}

TEST(CreateDevicesEnd, ComesWithoutADeviceAfterThePrimary) {
    for (const std::size_t entries : {1U, 0U}) {
        EngineBench bench;
        bench.sound.playbackDevices.resize(entries);
        EXPECT_EQ(EndStatus([&] { bench.engine.CreateDevices(); }), 1) << entries;
        EXPECT_THAT(bench.log.Lines(),
                    ElementsAre("EnumeratePlayback", "SetFatalError true", Logged(0, kNoOutput)));
    }
}

TEST(CreateDevicesEnd, ComesWhenDevicesCannotBeListed) {
    EngineBench bench;
    bench.log.Fail("EnumeratePlayback", RuntimeError(sound_error::kUninitialized, "no server"));
    EXPECT_EQ(EndStatus([&] { bench.engine.CreateDevices(); }), 1);
    EXPECT_THAT(bench.log.Lines(), ElementsAre("EnumeratePlayback", "SetFatalError true",
                                               Logged(sound_error::kUninitialized, kNoOutput)));
}

}  // namespace
}  // namespace sonavex
