#include "core/ports/SoundErrors.h"
#include "core/support/EndProgram.h"
#include "support/EngineBench.h"

namespace sonavex {
namespace {

using testing::ElementsAre;

TEST(SetEvents, ArmsTheEndsOfTheFourSegments) {
    EngineBench bench;
    ASSERT_TRUE(bench.engine.CreateDevices());
    bench.log.Clear();
    EXPECT_FALSE(bench.shared.EventsReady);
    EXPECT_TRUE(bench.engine.SetEvents());
    EXPECT_TRUE(bench.shared.EventsReady);
    EXPECT_THAT(
        bench.log.Lines(),
        ElementsAre("captureBuffer.Stop", "CreateEvent 101", "CreateEvent 102", "CreateEvent 103",
                    "CreateEvent 104",
                    "captureBuffer.SetNotificationPositions 4 8191:101 16383:102 24575:103 32767:104"));
    EXPECT_THAT(bench.engine.NotifyEvents, ElementsAre(101, 102, 103, 104, 0));
}

TEST(SetEvents, DoesNotStartTheCapture) {
    EngineBench bench;
    ASSERT_TRUE(bench.engine.CreateDevices());
    ASSERT_TRUE(bench.engine.SetEvents());
    bench.engine.ResetStream();
    EXPECT_EQ(bench.log.Count("captureBuffer.StartLooping"), 0U);
    bench.engine.StartCapture();
    EXPECT_EQ(bench.log.Count("captureBuffer.StartLooping"), 1U);
}

TEST(SetEvents, BindsEveryEventToTheCallback) {
    EngineBench bench;
    bench.Start();
    for (const std::int32_t segment : {2, 0, 3, 1}) {
        bench.sound.FireSegment(static_cast<std::size_t>(segment));
        EXPECT_EQ(bench.engine.CaptureSegment, segment);
    }
    EXPECT_EQ(bench.engine.Blocks, 4U);
}

TEST(SetEvents, StopsCaptureAndDestroysWhatWasArmedBefore) {
    EngineBench bench;
    bench.Start();
    EXPECT_TRUE(bench.engine.SetEvents());
    EXPECT_THAT(
        bench.log.Lines(),
        ElementsAre("captureBuffer.Stop", "DestroyEvent 104", "DestroyEvent 103", "DestroyEvent 102",
                    "DestroyEvent 101", "CreateEvent 105", "CreateEvent 106", "CreateEvent 107",
                    "CreateEvent 108",
                    "captureBuffer.SetNotificationPositions 4 8191:105 16383:106 24575:107 32767:108"));
    EXPECT_EQ(bench.sound.LiveEvents(), 4U);
}

TEST(SetEvents, EndsTheProgramWithoutACaptureBuffer) {
    EngineBench bench;
    try {
        bench.engine.SetEvents();
        FAIL() << "the program goes on";
    } catch (const EndProgram& end) {
        EXPECT_EQ(end.status, 0);
    }
    EXPECT_EQ(bench.log.Lines().back(),
              "Message critical Only one instance of the Quenby Sonavex can be launched\r"
              "or sound card is in use.");
    EXPECT_EQ(bench.log.Count("WriteErrorLog"), 0U);
    EXPECT_FALSE(bench.shared.EventsReady);
}

TEST(SetEvents, EndsTheProgramWhenTheCallItselfMissesAnObject) {
    EngineBench bench;
    ASSERT_TRUE(bench.engine.CreateDevices());
    bench.log.Fail("captureBuffer.SetNotificationPositions", RuntimeError(91));
    EXPECT_THROW(bench.engine.SetEvents(), EndProgram);
    EXPECT_EQ(bench.log.Count("Message"), 1U);
}

struct ArmingFailure {
    const char* operation;
    std::int32_t number;
};

class SetEventsFailure : public testing::TestWithParam<ArmingFailure> {};

INSTANTIATE_TEST_SUITE_P(
    Rows, SetEventsFailure,
    testing::Values(ArmingFailure{"captureBuffer.SetNotificationPositions", sound_error::kInvalidCall},
                    ArmingFailure{"captureBuffer.SetNotificationPositions", 5},
                    ArmingFailure{"CreateEvent", sound_error::kGeneric}, ArmingFailure{"CreateEvent", 7}));

TEST_P(SetEventsFailure, GoesToTheErrorLog) {
    EngineBench bench;
    bench.Start();
    bench.log.Fail(GetParam().operation, RuntimeError(GetParam().number, "cannot be armed"));
    EXPECT_FALSE(bench.engine.SetEvents());
    EXPECT_FALSE(bench.shared.EventsReady);
    EXPECT_THAT(bench.log.Of("WriteErrorLog"),
                ElementsAre("WriteErrorLog " + std::to_string(GetParam().number) + " cannot be armed"));
    EXPECT_EQ(bench.log.Count("Message"), 0U);
}

TEST_P(SetEventsFailure, MakesReStartFail) {
    EngineBench bench;
    bench.Start();
    bench.log.Fail(GetParam().operation, RuntimeError(GetParam().number, "cannot be armed"));
    EXPECT_FALSE(bench.engine.ReStart());
    EXPECT_FALSE(bench.shared.EventsReady);
    EXPECT_EQ(bench.log.Count("captureBuffer.StartLooping"), 0U);
    EXPECT_EQ(bench.log.Lines().back(), "SetBusyPointer off");
}

TEST_P(SetEventsFailure, IsForgottenByTheNextReStart) {
    EngineBench bench;
    bench.Start();
    bench.log.Fail(GetParam().operation, RuntimeError(GetParam().number, "cannot be armed"));
    ASSERT_FALSE(bench.engine.ReStart());
    bench.log.Heal(GetParam().operation);
    EXPECT_TRUE(bench.engine.ReStart());
    EXPECT_TRUE(bench.shared.EventsReady);
    EXPECT_THAT(bench.engine.NotifyEvents[4], 0);
    bench.RunBlocks(1);
    EXPECT_EQ(bench.engine.Blocks, 1U);
}

}  // namespace
}  // namespace sonavex
