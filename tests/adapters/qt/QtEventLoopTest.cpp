#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QCursor>
#include <QEventLoop>
#include <QTimer>
#include <QWindow>
#include <atomic>
#include <filesystem>
#include <iterator>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "platform/qt/QtEventLoop.h"
#include "support/AllocationCounter.h"
#include "support/Wait.h"

namespace sonavex {
namespace {

using namespace std::chrono_literals;

class QtEventLoopTest : public testing::Test {
protected:
    // Runs Qt's loop until it is quit; false after 10 s.
    static bool Run(QEventLoop& running) {
        bool inTime = true;
        QTimer guard;
        guard.setSingleShot(true);
        QObject::connect(&guard, &QTimer::timeout, &running, [&] {
            inTime = false;
            running.quit();
        });
        guard.start(10000);
        running.exec();
        return inTime;
    }

    std::vector<std::string> errors_;
    QtEventLoop loop_{[this](const std::exception_ptr& error) {
        try {
            std::rethrow_exception(error);
        } catch (const std::exception& exception) {
            errors_.emplace_back(exception.what());
        } catch (int number) {
            errors_.push_back(std::to_string(number));
        }
    }};
};

// Nothing else wakes the loop, so a signal that stays undelivered shows a lost wake-up. The raiser does not
// sleep, so that it meets the loop on its way to sleep.
TEST_F(QtEventLoopTest, EverySignalWakesASleepingLoop) {
    constexpr int kRounds = 3000;
    QEventLoop running;
    std::atomic<int> delivered{0};
    bool lost = false;
    const auto signal = loop_.CreateSignal([&] { ++delivered; });
    std::thread raiser([&] {
        for (int round = 0; round < kRounds && !lost; ++round) {
            EXPECT_TRUE(signal->Raise());
            lost = !WaitUntil(
                Spin{}, [&] { return delivered > round; }, kPatience);
        }
        QMetaObject::invokeMethod(&running, &QEventLoop::quit, Qt::QueuedConnection);
    });
    running.exec();
    raiser.join();
    EXPECT_FALSE(lost) << "after " << delivered << " signals";
}

TEST_F(QtEventLoopTest, SignalsOfSeveralThreadsAllArriveInASleepingLoop) {
    constexpr int kThreads = 3;
    constexpr int kRaises = 5000;
    QEventLoop running;
    std::atomic<int> accepted{0};
    std::atomic<int> finished{0};
    int delivered = 0;
    std::vector<std::unique_ptr<Signal>> signals;
    for (int i = 0; i < 5; ++i) signals.push_back(loop_.CreateSignal([&] { ++delivered; }));
    const auto done = loop_.CreateSignal([&] { running.quit(); });
    std::vector<std::thread> threads;
    for (int t = 0; t < kThreads; ++t)
        threads.emplace_back([&] {
            for (std::size_t i = 0; i < kRaises; ++i) {
                if (signals[i % signals.size()]->Raise()) ++accepted;
                if (i % 64 == 0) std::this_thread::sleep_for(100us);
            }
            if (++finished == kThreads) done->Raise();
        });
    EXPECT_TRUE(Run(running));
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(delivered, accepted);
    EXPECT_GE(delivered, 5);
}

TEST_F(QtEventLoopTest, YieldDeliversTheToolkitsEvents) {
    int timeouts = 0;
    int calls = 0;
    QTimer::singleShot(0, [&] { ++timeouts; });
    QMetaObject::invokeMethod(
        QCoreApplication::instance(), [&] { ++calls; }, Qt::QueuedConnection);
    loop_.Yield();
    EXPECT_EQ(calls, 1);
    EXPECT_EQ(timeouts, 1);
}

TEST_F(QtEventLoopTest, YieldReturnsWithoutWaiting) {
    const auto start = loop_.Now();
    for (int i = 0; i < 100; ++i) loop_.Yield();
    EXPECT_LT(loop_.Now() - start, 2s);
}

// Counts movements of the pointer. Qt queues those of its offscreen platform as it queues a user's; keys of
// QTest are not queued.
class PointedWindow : public QWindow {
public:
    int Moves = 0;
    std::function<void()> OnMove = [] {};

    PointedWindow() {
        setGeometry(0, 0, 100, 100);
        show();
        QCursor::setPos(10, 10);
        QCoreApplication::processEvents();
        Moves = 0;
    }
    void QueueMove() const { QCursor::setPos(20, 20); }

protected:
    void mouseMoveEvent(QMouseEvent*) override {
        ++Moves;
        OnMove();
    }
};

TEST_F(QtEventLoopTest, YieldWithoutInputLeavesInputForTheNextYield) {
    PointedWindow window;
    int calls = 0;
    window.QueueMove();
    QMetaObject::invokeMethod(
        &window, [&] { ++calls; }, Qt::QueuedConnection);
    loop_.YieldWithoutInput();
    EXPECT_EQ(calls, 1);
    EXPECT_EQ(window.Moves, 0);
    loop_.Yield();
    EXPECT_EQ(window.Moves, 1);
}

TEST_F(QtEventLoopTest, InputThatAYieldHasLeftIsDeliveredByTheRunningLoop) {
    PointedWindow window;
    QEventLoop running;
    window.OnMove = [&] { running.quit(); };
    window.QueueMove();
    loop_.YieldWithoutInput();
    EXPECT_EQ(window.Moves, 0);
    EXPECT_TRUE(Run(running));
    EXPECT_EQ(window.Moves, 1);
}

TEST_F(QtEventLoopTest, SignalsArriveInTheLoopThatAHandlerOpened) {
    bool inTime = false;
    std::string log;
    QEventLoop inner;
    const auto other = loop_.CreateSignal([&] {
        log += "other ";
        inner.quit();
    });
    const auto first = loop_.CreateSignal([&] {
        log += "first ";
        QTimer::singleShot(10, [&] { other->Raise(); });
        inTime = Run(inner);
        log += "end";
    });
    first->Raise();
    loop_.Yield();
    EXPECT_TRUE(inTime);
    EXPECT_EQ(log, "first other end");
}

TEST_F(QtEventLoopTest, SignalsArriveInTheLoopThatAnEventOpensDuringYield) {
    bool inTime = false;
    int delivered = 0;
    QEventLoop inner;
    std::unique_ptr<Signal> signal;
    signal = loop_.CreateSignal([&] {
        loop_.Yield();
        if (++delivered == 5)
            inner.quit();
        else
            signal->Raise();
    });
    QTimer::singleShot(0, [&] {
        signal->Raise();
        inTime = Run(inner);
    });
    loop_.Yield();
    EXPECT_TRUE(inTime);
    EXPECT_EQ(delivered, 5);
}

TEST_F(QtEventLoopTest, ARingOfAHandlerDuringYieldIsDeliveredByTheRunningLoop) {
    QEventLoop running;
    int delivered = 0;
    std::unique_ptr<Signal> signal;
    signal = loop_.CreateSignal([&] {
        if (++delivered == 1)
            signal->Raise();
        else
            running.quit();
    });
    signal->Raise();
    loop_.Yield();
    EXPECT_EQ(delivered, 1);
    EXPECT_TRUE(Run(running));
    EXPECT_EQ(delivered, 2);
}

TEST_F(QtEventLoopTest, ErrorsGoToTheProcedureAndTheLoopContinues) {
    QEventLoop running;
    const auto bad = loop_.CreateSignal([] { throw std::runtime_error("signal"); });
    const auto worse = loop_.CreateSignal([] { throw 13; });
    const auto good = loop_.CreateSignal([&] { running.quit(); });
    int ticks = 0;
    const auto timer = loop_.StartTimer(1ms, [&] {
        if (++ticks == 1) throw std::runtime_error("timer");
        if (ticks == 3) good->Raise();
    });
    bad->Raise();
    worse->Raise();
    EXPECT_TRUE(Run(running));
    loop_.StopTimer(timer);
    EXPECT_EQ(errors_, (std::vector<std::string>{"signal", "13", "timer"}));
    bad->Raise();
    loop_.Yield();
    EXPECT_EQ(errors_.size(), 4U);
}

TEST_F(QtEventLoopTest, TimersKeepTheirPace) {
    QEventLoop running;
    int ticks = 0;
    const auto start = loop_.Now();
    const auto timer = loop_.StartTimer(10ms, [&] {
        if (++ticks == 50) running.quit();
    });
    EXPECT_TRUE(Run(running));
    loop_.StopTimer(timer);
    // Ticks may be late or dropped on a busy machine, but are never early.
    EXPECT_GE(loop_.Now() - start, 498ms);
}

TEST_F(QtEventLoopTest, TakesIntervalsThatTheToolkitCannotCount) {
    int ticks = 0;
    const auto longTimer = loop_.StartTimer(std::chrono::hours(24 * 365), [&] { ++ticks; });
    EXPECT_NE(longTimer, 0);
    loop_.Yield();
    EXPECT_EQ(ticks, 0);
    const auto shortTimer = loop_.StartTimer(-5ms, [&] { ++ticks; });
    loop_.Yield();
    EXPECT_GE(ticks, 1);
    loop_.StopTimer(longTimer);
    loop_.StopTimer(shortTimer);
}

TEST_F(QtEventLoopTest, RaisingNeedsNoMemory) {
    int delivered = 0;
    const auto a = loop_.CreateSignal([&] { ++delivered; });
    const auto b = loop_.CreateSignal([&] { ++delivered; });
    std::size_t other = 0;
    const AllocationCounter counter;
    for (int i = 0; i < 10; ++i) {
        a->Raise();
        b->Raise();
        a->Raise();
    }
    EXPECT_EQ(counter.Count(), 0U);
    // The counter works.
    const std::string text(100, 'x');
    EXPECT_GT(counter.Count(), 0U);
    std::thread([&] {
        const AllocationCounter counted;
        a->Raise();
        b->Raise();
        other = counted.Count();
    }).join();
    EXPECT_EQ(other, 0U);
    loop_.Yield();
    EXPECT_EQ(delivered, 2);
}

TEST_F(QtEventLoopTest, LeavesNoDescriptorOpen) {
    const auto open = [] { return std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {}); };
    const auto before = open();
    for (int i = 0; i < 50; ++i) {
        QtEventLoop loop({});
        const auto signal = loop.CreateSignal([] {});
        signal->Raise();
        loop.Yield();
    }
    EXPECT_EQ(open(), before);
}

}  // namespace
}  // namespace sonavex
