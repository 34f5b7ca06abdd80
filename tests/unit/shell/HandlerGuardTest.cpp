#include <gmock/gmock.h>

#include <new>

#include "core/report/HandlerGuard.h"
#include "core/shell/frmSplash.h"
#include "core/support/EndProgram.h"
#include "support/World.h"

namespace sonavex {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

struct GuardRig : World {
    HandlerGuard guard{dialogs, errorLog, ending};

    void StreamFails(const RuntimeError& error) { guard.StreamError(std::make_exception_ptr(error)); }
};

TEST(HandlerGuard, ShowsAndLogsAnEscapedError) {
    GuardRig rig;
    rig.guard.Run([] { throw RuntimeError(error_number::kTypeMismatch); });
    EXPECT_THAT(rig.log.Lines(), ElementsAre("WriteLine Run-time error '13': Type mismatch",
                                             "Message critical Run-time error '13':\r\rType mismatch"));
}

TEST(HandlerGuard, KnowsErrorsOfTheLanguageToo) {
    GuardRig rig;
    rig.guard.Run([] { throw std::bad_alloc(); });
    rig.guard.Run([] { throw std::logic_error("odd"); });
    EXPECT_THAT(rig.log.Of("WriteLine"), ElementsAre("WriteLine Run-time error '7': Out of memory",
                                                     "WriteLine Run-time error '5': odd"));
}

TEST(HandlerGuard, EndsTheProgramWhereAsked) {
    GuardRig rig;
    int status = -1;
    rig.guard.OnEnd = [&](const EndProgram& asked) { status = asked.status; };
    rig.guard.Run([] { throw EndProgram{3}; });
    EXPECT_EQ(status, 3);
    rig.guard.StreamError(std::make_exception_ptr(EndProgram{4}));
    EXPECT_EQ(status, 4);
    EXPECT_THAT(rig.log.Lines(), IsEmpty());
}

TEST(HandlerGuard, RunsNoHandlerOnceTheEndIsRequested) {
    GuardRig rig;
    rig.ending.Request({});
    bool ran = false;
    rig.guard.Run([&] { ran = true; });
    EXPECT_FALSE(ran);
    rig.StreamFails(RuntimeError(error_number::kOverflow));
    EXPECT_THAT(rig.log.Lines(), IsEmpty());
}

TEST(HandlerGuard, EndsTheProgramWhereItsOwnMessageIsClosedByARequest) {
    GuardRig rig;
    int ends = 0;
    std::vector<bool> told;
    rig.guard.OnEnd = [&](const EndProgram&) { ++ends; };
    rig.guard.OnMessageOpen = [&](bool open) { told.push_back(open); };
    rig.dialogs.WhileMessage = [] { throw EndProgram{0}; };
    rig.guard.Run([] { throw RuntimeError(error_number::kOverflow); });
    EXPECT_EQ(ends, 1);
    EXPECT_THAT(told, ElementsAre(true, false));
    EXPECT_TRUE(rig.ending.Requested());
    EXPECT_NO_THROW(rig.guard.Fatal(std::make_exception_ptr(RuntimeError(error_number::kOverflow))));
}

TEST(HandlerGuard, ShowsAStreamErrorOnceUntilABlockSucceeds) {
    GuardRig rig;
    const RuntimeError overflow(error_number::kOverflow);
    rig.StreamFails(overflow);
    rig.StreamFails(overflow);
    EXPECT_EQ(rig.log.Of("Message").size(), 1U);
    rig.StreamFails(RuntimeError(error_number::kDivisionByZero));
    EXPECT_EQ(rig.log.Of("Message").size(), 2U);
    rig.StreamFails(overflow);
    EXPECT_EQ(rig.log.Of("Message").size(), 2U);
    rig.guard.BlockSucceeded();
    rig.StreamFails(RuntimeError(error_number::kDivisionByZero));
    EXPECT_EQ(rig.log.Of("Message").size(), 3U);
}

TEST(HandlerGuard, ReportsAnOpenMessageAndShowsNoSecondOne) {
    GuardRig rig;
    std::vector<bool> told;
    rig.guard.OnMessageOpen = [&](bool open) { told.push_back(open); };
    rig.dialogs.WhileMessage = [&] { rig.StreamFails(RuntimeError(error_number::kDivisionByZero)); };
    rig.guard.Run([] { throw RuntimeError(error_number::kOverflow); });
    EXPECT_THAT(told, ElementsAre(true, false));
    EXPECT_EQ(rig.log.Of("Message").size(), 1U);
    rig.dialogs.WhileMessage = {};
    rig.StreamFails(RuntimeError(error_number::kDivisionByZero));
    EXPECT_EQ(rig.log.Of("Message").size(), 2U);
}

TEST(HandlerGuard, LogsAndShowsWhatEndedTheStartWhateverItIs) {
    GuardRig rig;
    rig.guard.Fatal(std::make_exception_ptr(RuntimeError(error_number::kOverflow)));
    rig.guard.Fatal(std::make_exception_ptr(std::bad_alloc()));
    rig.guard.Fatal(std::make_exception_ptr(17));
    EXPECT_THAT(
        rig.log.Of("WriteLine"),
        ElementsAre("WriteLine Run-time error '6': Overflow", "WriteLine Run-time error '7': Out of memory",
                    "WriteLine Run-time error '5': " + std::string(RuntimeError(5).what())));
    EXPECT_EQ(rig.log.Of("Message").size(), 3U);
}

TEST(Splash, ShowsItsVersionUnderTheBusyPointerAndYieldsOnce) {
    CallLog log;
    RecordingDialogs dialogs(log);
    VirtualEventLoop loop;
    frmSplash splash(dialogs, loop);
    splash.OnShow = [&] {
        log.Note("shown " + splash.lblVersion.Caption());
        EXPECT_EQ(loop.Yields(), 0U);
    };
    splash.Form_Load({2, 1, 14, "Bench instrument"});
    EXPECT_EQ(splash.lblVersion.Caption(), "Version 2.1.14  Bench instrument");
    EXPECT_EQ(loop.Yields(), 1U);
    EXPECT_THAT(log.Lines(), ElementsAre("SetBusyPointer on", "shown Version 2.1.14  Bench instrument",
                                         "SetBusyPointer off"));
    EXPECT_TRUE(splash.Visible());
    splash.Frame_Click();
    EXPECT_FALSE(splash.Visible());
}

}  // namespace
}  // namespace sonavex
