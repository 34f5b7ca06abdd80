#include <gtest/gtest.h>

#include <QApplication>
#include <QMainWindow>
#include <QMessageBox>
#include <QPushButton>
#include <QTest>
#include <QTimer>
#include <atomic>
#include <chrono>
#include <functional>
#include <thread>
#include <utility>

#include "platform/qt/QtDialogs.h"
#include "platform/qt/QtEventLoop.h"
#include "support/DialogUser.h"

namespace sonavex {
namespace {

using namespace std::chrono_literals;

class QtDialogsTest : public testing::Test {
protected:
    // Runs the action and, once its message box is open, the inspection, which must close the box. A box
    // still open after 10 s is closed and fails the test.
    void WithBox(const std::function<void()>& action, const std::function<void(QMessageBox&)>& inspect) {
        const DialogSteps user({[&](QDialog& dialog) { inspect(dynamic_cast<QMessageBox&>(dialog)); }});
        action();
        EXPECT_EQ(QApplication::activeModalWidget(), nullptr);
    }

    static Qt::CursorShape Pointer() {
        const QCursor* const pointer = QGuiApplication::overrideCursor();
        return pointer != nullptr ? pointer->shape() : Qt::BitmapCursor;
    }
    static constexpr Qt::CursorShape kNoOverride = Qt::BitmapCursor;

    Ending ending_;
    QtDialogs dialogs_{"Sonavex \xC3\xBC", ending_};
};

TEST_F(QtDialogsTest, AMessageHasTitleTextIconAndOneButton) {
    const auto expect = [&](MessageIcon icon, QMessageBox::Icon shown) {
        WithBox(
            [&] { dialogs_.Message("Invalid Sampling Rate.\rResetting\r\nto <b>22050</b> \xC2\xB5.", icon); },
            [&](QMessageBox& box) {
                EXPECT_TRUE(box.isModal());
                EXPECT_EQ(box.windowTitle(), QString::fromUtf8("Sonavex \xC3\xBC"));
                EXPECT_EQ(box.text(),
                          QString::fromUtf8("Invalid Sampling Rate.\nResetting\nto <b>22050</b> \xC2\xB5."));
                EXPECT_EQ(box.textFormat(), Qt::PlainText);
                EXPECT_EQ(box.icon(), shown);
                EXPECT_EQ(box.standardButtons(), QMessageBox::Ok);
                QTest::mouseClick(box.button(QMessageBox::Ok), Qt::LeftButton);
            });
    };
    expect(MessageIcon::kNone, QMessageBox::NoIcon);
    expect(MessageIcon::kInformation, QMessageBox::Information);
    expect(MessageIcon::kCritical, QMessageBox::Critical);
}

TEST_F(QtDialogsTest, AskOkCancelIsTrueForOkOnly) {
    const auto answer = [&](const std::function<void(QMessageBox&)>& act) {
        bool result = false;
        WithBox([&] { result = dialogs_.AskOkCancel("Delete?\rReally?"); },
                [&](QMessageBox& box) {
                    EXPECT_EQ(box.text(), QStringLiteral("Delete?\nReally?"));
                    EXPECT_EQ(box.standardButtons(), QMessageBox::Ok | QMessageBox::Cancel);
                    act(box);
                });
        return result;
    };
    EXPECT_TRUE(
        answer([](QMessageBox& box) { QTest::mouseClick(box.button(QMessageBox::Ok), Qt::LeftButton); }));
    EXPECT_FALSE(
        answer([](QMessageBox& box) { QTest::mouseClick(box.button(QMessageBox::Cancel), Qt::LeftButton); }));
    EXPECT_TRUE(answer([](QMessageBox& box) { QTest::keyClick(&box, Qt::Key_Return); }));
    EXPECT_FALSE(answer([](QMessageBox& box) { QTest::keyClick(&box, Qt::Key_Escape); }));
    EXPECT_FALSE(answer([](QMessageBox& box) { box.close(); }));
}

TEST_F(QtDialogsTest, AskYesNoIsTrueForYesOnly) {
    const auto answer = [&](const std::function<void(QMessageBox&)>& act) {
        bool result = false;
        WithBox([&] { result = dialogs_.AskYesNo("Proceed?"); },
                [&](QMessageBox& box) {
                    EXPECT_EQ(box.standardButtons(), QMessageBox::Yes | QMessageBox::No);
                    act(box);
                });
        return result;
    };
    EXPECT_TRUE(
        answer([](QMessageBox& box) { QTest::mouseClick(box.button(QMessageBox::Yes), Qt::LeftButton); }));
    EXPECT_FALSE(
        answer([](QMessageBox& box) { QTest::mouseClick(box.button(QMessageBox::No), Qt::LeftButton); }));
    EXPECT_TRUE(answer([](QMessageBox& box) { QTest::keyClick(&box, Qt::Key_Return); }));
    EXPECT_FALSE(answer([](QMessageBox& box) { QTest::keyClick(&box, Qt::Key_Escape); }));
}

TEST_F(QtDialogsTest, ARequestToEndTheProgramClosesTheBox) {
    const auto expect = [&](const std::function<void()>& open) {
        WithBox([&] { EXPECT_THROW(open(), EndProgram); }, [&](QMessageBox&) { ending_.Request({}); });
    };
    expect([&] { dialogs_.Message("text", MessageIcon::kCritical); });
    expect([&] { dialogs_.AskOkCancel("Delete?"); });
    expect([&] { dialogs_.AskYesNo("Proceed?"); });
    EXPECT_FALSE(ending_.Waiting());
}

TEST_F(QtDialogsTest, NoBoxOpensAfterASignal) {
    ending_.Request({.status = 0, .atOnce = false, .bySignal = true});
    const DialogSteps noSteps({});
    EXPECT_THROW(dialogs_.Message("text", MessageIcon::kCritical), EndProgram);
}

TEST_F(QtDialogsTest, TheBoxBelongsToTheActiveWindow) {
    QWidget window;
    window.show();
    window.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window, 5000));
    WithBox([&] { dialogs_.Message("text", MessageIcon::kNone); },
            [&](QMessageBox& box) {
                EXPECT_EQ(box.parentWidget(), &window);
                box.accept();
            });
}

// Other windows may close while the box is open.
TEST_F(QtDialogsTest, TheBoxBelongsToTheMainWindowWhateverOtherWindowIsActive) {
    QMainWindow main;
    main.show();
    QWidget other;
    other.show();
    other.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&other, 5000));
    WithBox([&] { dialogs_.Message("text", MessageIcon::kNone); },
            [&](QMessageBox& box) {
                EXPECT_EQ(box.parentWidget(), &main);
                box.accept();
            });
}

TEST_F(QtDialogsTest, TheBusyPointerCounts) {
    EXPECT_EQ(Pointer(), kNoOverride);
    dialogs_.SetBusyPointer(false);
    dialogs_.SetBusyPointer(true);
    dialogs_.SetBusyPointer(true);
    EXPECT_EQ(Pointer(), Qt::WaitCursor);
    dialogs_.SetBusyPointer(false);
    EXPECT_EQ(Pointer(), Qt::WaitCursor);
    dialogs_.SetBusyPointer(false);
    EXPECT_EQ(Pointer(), kNoOverride);
    dialogs_.SetBusyPointer(false);
    dialogs_.SetBusyPointer(true);
    EXPECT_EQ(Pointer(), Qt::WaitCursor);
    dialogs_.SetBusyPointer(false);
    EXPECT_EQ(Pointer(), kNoOverride);
}

TEST_F(QtDialogsTest, TheBusyPointerGoesWithTheDialogs) {
    {
        QtDialogs others("Sonavex", ending_);
        others.SetBusyPointer(true);
        others.SetBusyPointer(true);
    }
    EXPECT_EQ(Pointer(), kNoOverride);
}

TEST_F(QtDialogsTest, ABoxHasTheUsualPointerWhileBusy) {
    dialogs_.SetBusyPointer(true);
    WithBox([&] { dialogs_.Message("text", MessageIcon::kInformation); },
            [&](QMessageBox& box) {
                EXPECT_EQ(Pointer(), Qt::ArrowCursor);
                box.accept();
            });
    EXPECT_EQ(Pointer(), Qt::WaitCursor);
    dialogs_.SetBusyPointer(false);
}

TEST_F(QtDialogsTest, SignalsAndTimersRunWhileABoxIsOpen) {
    QtEventLoop loop({});
    std::atomic<bool> ended{false};
    int rings = 0;
    int ticks = 0;
    QMessageBox* open = nullptr;
    const auto closeWhenSeen = [&] {
        if (open != nullptr && rings >= 20 && ticks >= 20) std::exchange(open, nullptr)->accept();
    };
    const auto signal = loop.CreateSignal([&] {
        ++rings;
        closeWhenSeen();
    });
    const auto timer = loop.StartTimer(1ms, [&] {
        ++ticks;
        closeWhenSeen();
    });
    std::thread ringer([&] {
        while (!ended) {
            signal->Raise();
            std::this_thread::sleep_for(1ms);
        }
    });
    WithBox([&] { dialogs_.Message("text", MessageIcon::kCritical); },
            [&](QMessageBox& box) {
                rings = ticks = 0;
                open = &box;
            });
    ended = true;
    ringer.join();
    loop.StopTimer(timer);
    EXPECT_GE(rings, 20);
    EXPECT_GE(ticks, 20);
}

}  // namespace
}  // namespace sonavex
