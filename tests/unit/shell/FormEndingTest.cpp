// Requests to end the program while dialogs are open or a tick yields.

#include <gmock/gmock.h>

#include "core/ports/SoundErrors.h"
#include "support/FakeSoundSystem.h"
#include "support/FormRig.h"

namespace sonavex {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr EndProgram kSignal{.status = 0, .atOnce = false, .bySignal = true};

class EndingForm : public World, public testing::Test {
protected:
    EndingForm() {
        form.OnClosed = [this](int) { log.Note("closed"); };
        form.Form_Load();
        log.Clear();
    }
    // A dialog that is open while `during` runs.
    void Dialog(const std::string& name, const Ending::Action& during) {
        ending.Wait(during, [this, name] { log.Note("close " + name); });
    }
    void StartSweep() {
        form.GeneratorPanel.Controls.sldSweepTime.UserMoves(1000);
        form.GeneratorPanel.Controls.sldSweepTime.UserReleases();
        form.GeneratorPanel.Controls.Command1.Press();
    }
    // Runs a tick. The action is called once, in its first yield.
    void TickWith(const std::function<void()>& action) {
        bool done = false;
        loop.OnYield([&] {
            if (!std::exchange(done, true)) action();
        });
        form.Instrument.HiTimer1.Tick();
        loop.OnYield({});
        EXPECT_TRUE(done);
    }

    FakeSoundSystem sound{log};
    frmMain form{On(sound)};
};

// The request is handled once: nothing polls until the dialog has closed.
TEST_F(EndingForm, ClosesTheErrorDialogInsideARestartAndShutsDownAfterIt) {
    log.Fail("CreateCaptureDevice", RuntimeError(sound_error::kNoDriver, "gone"));
    errorLog.onWrite = [&] {
        Dialog("error", [&] {
            form.End(kSignal);
            EXPECT_EQ(log.Count("SaveAndRestoreInitial"), 0U);
            EXPECT_EQ(loop.WaitingSignals(), 0U);
        });
        ADD_FAILURE() << "the call must not return";
    };
    form.Guard.Run([this] { form.Instrument.Engine.ReStart(); });
    EXPECT_EQ(log.Count("close"), 1U);
    EXPECT_EQ(log.Count("SaveAndRestoreInitial"), 1U);
    EXPECT_EQ(log.Count("closed"), 1U);
}

TEST_F(EndingForm, ShutsDownWhenTheOutermostDialogHasUnwound) {
    const auto inner = [this] { Dialog("inner", [this] { form.End({}); }); };
    form.Guard.Run([&] {
        Dialog("outer", [&] {
            form.Guard.Run(inner);
            EXPECT_EQ(log.Count("closed"), 0U);
        });
    });
    EXPECT_THAT(log.Lines(),
                testing::IsSupersetOf({"close inner", "close outer", "SaveAndRestoreInitial", "closed"}));
    EXPECT_LT(log.Lines().size(), 60U);
    EXPECT_EQ(log.Count("closed"), 1U);
}

TEST_F(EndingForm, ADialogInsideATickIsClosedAndTheShutdownWaitsForTheTick) {
    StartSweep();
    TickWith([this] {
        form.Guard.Run([this] { Dialog("message", [this] { form.End(kSignal); }); });
        EXPECT_EQ(log.Count("close"), 1U);
        EXPECT_EQ(log.Count("closed"), 0U);
    });
    loop.DeliverSignals();
    EXPECT_EQ(log.Count("closed"), 1U);
}

TEST(TickOfASweep, DeliversNoUserInput) {
    class InputLoop : public VirtualEventLoop {
    public:
        int yieldsWithoutInput = 0;
        void YieldWithoutInput() override {
            ++yieldsWithoutInput;
            VirtualEventLoop::YieldWithoutInput();
        }
    };
    SharedState shared;
    InputLoop loop;
    Generator generator(shared);
    generator.NumTones = 3;
    SweepTimer timer(loop, generator, [] { return false; });
    timer.SetEnabled(true);
    timer.Tick();
    EXPECT_EQ(loop.yieldsWithoutInput, 4);
    EXPECT_EQ(loop.Yields(), 4U);
}

TEST_F(EndingForm, ErrorsDuringATickAreShownAfterIt) {
    StartSweep();
    TickWith([this] {
        form.StreamError(std::make_exception_ptr(RuntimeError(error_number::kOverflow)));
        EXPECT_THAT(log.Of("Message"), IsEmpty());
    });
    loop.DeliverSignals();
    EXPECT_THAT(log.Of("Message"), ElementsAre("Message critical Run-time error '6':\r\rOverflow"));
}

TEST_F(EndingForm, ALossDuringATickIsMarkedAndReportedAfterIt) {
    StartSweep();
    sound.Lose({sound_error::kBufferLost, "The server is gone."});
    EXPECT_TRUE(form.Instrument.Watch.Stopped());
    // Every check of the watch falls into a tick.
    TickWith([this] {
        loop.Skip(200ms);
        loop.Advance(0ms);
        EXPECT_EQ(log.Count("WriteErrorLog"), 0U);
        EXPECT_TRUE(form.Instrument.Watch.Postponed());
    });
    loop.DeliverSignals();
    EXPECT_EQ(log.Count("WriteErrorLog"), 1U);
}

}  // namespace
}  // namespace sonavex
