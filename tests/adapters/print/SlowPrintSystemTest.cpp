#include <gmock/gmock.h>

#include <QCoreApplication>
#include <QKeyEvent>
#include <QMessageBox>
#include <QTimer>
#include <QWindow>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <initializer_list>
#include <vector>

#include "platform/qt/QtPrinter.h"
#include "support/ChildProcess.h"
#include "support/PrintRig.h"
#include "support/ScopedVariable.h"

namespace sonavex {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::IsEmpty;

// The print command with fake print programs, while a timer runs like the instrument's.
class SlowPrintSystem : public PrintRig<QtPrinter> {
protected:
    SlowPrintSystem() {
        Program("lpstat", "echo 'scheduler is running'; echo Office; echo 'no system default destination'");
        Program("lp", "cat > /dev/null; echo lp >> " + Calls());
        QObject::connect(&timer_, &QTimer::timeout, [this] { ++ticks; });
        timer_.start(10ms);
    }
    void DialogOpens(frmPrint& dialog) override {
        ticksBeforeDialog = ticks;
        note = dialog.lblNote.Caption();
    }
    void Program(const std::string& name, const std::string& script) {
        const auto file = folder_.Path() / name;
        std::ofstream(file) << "#!/bin/sh\n" << script << '\n';
        std::filesystem::permissions(file, std::filesystem::perms::owner_all);
    }
    std::string Calls() const { return (folder_.Path() / "calls").string(); }
    int Sent() const {
        std::ifstream calls(Calls());
        int sent = 0;
        for (std::string line; std::getline(calls, line);) ++sent;
        return sent;
    }
    std::chrono::steady_clock::duration Press() {
        const auto begin = std::chrono::steady_clock::now();
        cmdPrint.Press();
        return std::chrono::steady_clock::now() - begin;
    }
    static std::function<void(frmPrint&)> Copies(const std::string& copies) {
        return [copies](frmPrint& dialog) {
            dialog.txtCopies.UserTypes(copies);
            dialog.cmdOk.Press();
        };
    }

    int ticks = 0;
    int ticksBeforeDialog = 0;
    std::string note;

private:
    PrivateFolder folder_;
    const ScopedVariable path_{"PATH", folder_.Path().string() + ':' + std::getenv("PATH")};
    QTimer timer_;
};

TEST_F(SlowPrintSystem, TimersRunUntilThePrintersAreKnown) {
    Program("lpstat", "sleep 0.5; echo Office");
    EXPECT_GE(Press(), 500ms);
    EXPECT_GE(ticksBeforeDialog, 20);
    EXPECT_EQ(note, "");
}

TEST_F(SlowPrintSystem, TimersRunBetweenAndDuringTheCopies) {
    Program("lp", "cat > /dev/null; sleep 0.2; echo lp >> " + Calls());
    user = Copies("3");
    EXPECT_GE(Press(), 600ms);
    EXPECT_GE(ticks - ticksBeforeDialog, 25);
    EXPECT_EQ(Sent(), 3);
    EXPECT_THAT(log.Of("Message"), IsEmpty());
}

TEST_F(SlowPrintSystem, WaitsThreeSecondsInAllForAnAnswer) {
    Program("lpstat", "exec sleep 60");
    const auto took = Press();
    EXPECT_GE(took, 2500ms);
    EXPECT_LT(took, 4500ms);
    EXPECT_GE(ticksBeforeDialog, 100);
    EXPECT_EQ(note, "The print system does not answer. The report can be written to a PDF file.");
}

// 0 or a negative number: the program has not run.
int RunningSince(const std::string& file) {
    int pid = 0;
    std::ifstream(file) >> pid;
    return pid;
}

TEST_F(SlowPrintSystem, ARequestToEndKillsTheProgramBeingWaitedFor) {
    Program("lp", "echo $$ > " + Calls() + "; exec sleep 60");
    user = Copies("3");
    QTimer::singleShot(500ms, [this] { ending.Request({}); });
    const auto begin = std::chrono::steady_clock::now();
    EXPECT_THROW(cmdPrint.Press(), EndProgram);
    EXPECT_LT(std::chrono::steady_clock::now() - begin, 10s);
    const int pid = RunningSince(Calls());
    ASSERT_GT(pid, 0);
    EXPECT_NE(kill(pid, 0), 0);
    EXPECT_THROW(printer.Printers(), EndProgram);
}

// Stores the events that reach a window.
class EventWindow : public QWindow {
public:
    std::vector<QEvent::Type> Received;

    // Each key, button, wheel and menu of a user, and a request to close.
    void SendAll() {
        const QPointF at;
        for (const auto type : {QEvent::KeyPress, QEvent::KeyRelease, QEvent::ShortcutOverride}) {
            QKeyEvent key(type, Qt::Key_A, Qt::NoModifier);
            QCoreApplication::sendEvent(this, &key);
        }
        for (const auto type : {QEvent::MouseButtonPress, QEvent::MouseMove, QEvent::MouseButtonRelease,
                                QEvent::MouseButtonDblClick}) {
            QMouseEvent button(type, at, at, Qt::LeftButton, Qt::LeftButton, Qt::NoModifier);
            QCoreApplication::sendEvent(this, &button);
        }
        QWheelEvent wheel(at, at, {}, {0, 120}, Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
        QTouchEvent touch(QEvent::TouchBegin);
        QShortcutEvent shortcut(QKeySequence(Qt::Key_A), 1);
        QContextMenuEvent menu(QContextMenuEvent::Keyboard, {}, {});
        QInputMethodEvent text;
        QCloseEvent close;
        for (QEvent* const event :
             std::initializer_list<QEvent*>{&wheel, &touch, &shortcut, &menu, &text, &close})
            QCoreApplication::sendEvent(this, event);
    }

protected:
    bool event(QEvent* event) override {
        Received.push_back(event->type());
        return true;
    }
};

TEST_F(SlowPrintSystem, OnlyClosingReachesAWindowUntilThePrintersAreKnown) {
    Program("lpstat", "sleep 0.5; echo Office");
    EventWindow window;
    QTimer::singleShot(0, [&] { window.SendAll(); });
    Press();
    EXPECT_THAT(window.Received, ElementsAre(QEvent::Close));
    window.SendAll();
    EXPECT_EQ(window.Received.size(), 14U);
}

// The key passes through the window of the box, like a key of the user. Calling accept() would close the box
// without input.
TEST_F(SlowPrintSystem, ABoxThatOpensMeanwhileIsAnsweredAndTheLimitStillKills) {
    Program("lpstat", "echo $$ > " + Calls() + "; exec sleep 60");
    QMessageBox box(QMessageBox::Critical, "Error", "The card is gone.",
                    QMessageBox::Ok | QMessageBox::Cancel);
    box.setDefaultButton(QMessageBox::Ok);
    bool killed = false;
    QTimer untilKilled;
    QObject::connect(&untilKilled, &QTimer::timeout, [&] {
        if (kill(RunningSince(Calls()), 0) == 0) return;
        killed = true;
        untilKilled.stop();
        QKeyEvent key(QEvent::KeyPress, Qt::Key_Return, Qt::NoModifier);
        QCoreApplication::sendEvent(box.windowHandle(), &key);
        QKeyEvent release(QEvent::KeyRelease, Qt::Key_Return, Qt::NoModifier);
        QCoreApplication::sendEvent(box.windowHandle(), &release);
    });
    QTimer::singleShot(500ms, [&] {
        untilKilled.start(50ms);
        QTimer::singleShot(8s, &box, &QDialog::reject);
        box.exec();
    });
    Press();
    EXPECT_TRUE(killed);
    EXPECT_EQ(box.result(), QMessageBox::Ok);
    EXPECT_EQ(note, "The print system does not answer. The report can be written to a PDF file.");
}

TEST_F(SlowPrintSystem, StopsAtTheFirstCopyThatFails) {
    Program("lp", "echo lp >> " + Calls() + "; echo \"$0: Out of paper.\" >&2; exit 1");
    user = Copies("99");
    Press();
    EXPECT_EQ(Sent(), 1);
    EXPECT_THAT(log.Of("Message"),
                ElementsAre("Message critical The report could not be printed.\r\rOut of paper."));
}

TEST_F(SlowPrintSystem, PassesOnWhatThePrintSystemSaysInsteadOfPrinters) {
    Program("lpstat", "echo \"$0: Forbidden.\" >&2; exit 1");
    Press();
    EXPECT_EQ(note, "Forbidden. The report can be written to a PDF file.");
}

TEST(PageTest, ThatCannotBeBegunIsReportedAtTheEndOfTheDocument) {
    Ending ending;
    QtPrinter printer(ending);
    PageSetUp page;
    page.width = -1.0;
    EXPECT_THROW(printer.BeginPage(page), RuntimeError);
    printer.Text(1.0, 1.0, "text");
    try {
        printer.EndDoc();
        FAIL() << "no failure";
    } catch (const RuntimeError& error) {
        EXPECT_STREQ(error.what(), "The page cannot be drawn.");
        EXPECT_EQ(error.Number(), kPrinterError);
    }
    EXPECT_NO_THROW(printer.EndDoc()) << "told once";
}

}  // namespace
}  // namespace sonavex
