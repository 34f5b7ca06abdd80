#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <stdexcept>
#include <thread>

#include "platform/plain/PlainEventLoop.h"
#include "support/Wait.h"

namespace sonavex {
namespace {

using namespace std::chrono_literals;

TEST(PlainEventLoop, AnErrorOfAHandlerLeavesYield) {
    PlainEventLoop loop;
    const auto bad = loop.CreateSignal([] { throw std::runtime_error("bad"); });
    bad->Raise();
    EXPECT_THROW(loop.Yield(), std::runtime_error);
    const auto id = loop.StartTimer(1ms, [] { throw std::logic_error("bad"); });
    std::this_thread::sleep_for(5ms);
    EXPECT_THROW(loop.Yield(), std::logic_error);
    loop.StopTimer(id);
    EXPECT_NO_THROW(loop.Yield());
}

TEST(PlainEventLoop, RunUntilReturnsAtOnceWhenTheConditionHolds) {
    PlainEventLoop loop;
    const auto start = loop.Now();
    EXPECT_TRUE(loop.RunUntil([] { return true; }, 10s));
    EXPECT_TRUE(loop.RunUntil([] { return true; }, 0s));
    EXPECT_LT(loop.Now() - start, 5s);
}

TEST(PlainEventLoop, RunUntilGivesUpAtItsLimit) {
    PlainEventLoop loop;
    const auto start = loop.Now();
    EXPECT_FALSE(loop.RunUntil([] { return false; }, 30ms));
    EXPECT_GE(loop.Now() - start, 30ms);
    EXPECT_LT(loop.Now() - start, 5s);
}

TEST(PlainEventLoop, RunUntilNoticesAConditionThatNoEventAnnounces) {
    PlainEventLoop loop;
    const auto start = loop.Now();
    EXPECT_TRUE(loop.RunUntil([&] { return loop.Now() - start > 5ms; }, 30s));
    EXPECT_LT(loop.Now() - start, 10s);
}

TEST(PlainEventLoop, WaitEndsEarlyForASignal) {
    PlainEventLoop loop;
    bool delivered = false;
    const auto signal = loop.CreateSignal([&] { delivered = true; });
    signal->Raise();
    const auto start = loop.Now();
    loop.Wait(10s);
    EXPECT_TRUE(delivered);
    EXPECT_LT(loop.Now() - start, 5s);
}

TEST(PlainEventLoop, ASignalThatYieldDeliveredDoesNotEndTheNextWait) {
    PlainEventLoop loop;
    const auto signal = loop.CreateSignal([] {});
    signal->Raise();
    loop.Yield();
    const auto start = loop.Now();
    loop.Wait(20ms);
    EXPECT_GE(loop.Now() - start, 20ms);
}

TEST(PlainEventLoop, WaitEndsAtOnceForWhatAnErrorLeftWaiting) {
    PlainEventLoop loop;
    bool delivered = false;
    const auto bad = loop.CreateSignal([] { throw std::runtime_error("bad"); });
    const auto good = loop.CreateSignal([&] { delivered = true; });
    bad->Raise();
    good->Raise();
    EXPECT_THROW(loop.Wait(10s), std::runtime_error);
    const auto start = loop.Now();
    loop.Wait(10s);
    EXPECT_TRUE(delivered);
    EXPECT_LT(loop.Now() - start, 5s);
}

// Nothing else wakes the loop before the limit of its wait, so a signal that stays undelivered shows a lost
// wake-up. The raiser does not sleep, so that it meets the loop on its way to sleep.
TEST(PlainEventLoop, EverySignalWakesASleepingLoop) {
    constexpr int kRounds = 3000;
    PlainEventLoop loop;
    std::atomic<int> delivered{0};
    std::atomic<bool> lost{false};
    const auto signal = loop.CreateSignal([&] { ++delivered; });
    std::thread raiser([&] {
        for (int round = 0; round < kRounds && !lost; ++round) {
            signal->Raise();
            lost = !WaitUntil(
                Spin{}, [&] { return delivered > round; }, kPatience);
        }
    });
    while (delivered < kRounds && !lost) loop.Wait(2 * kPatience);
    raiser.join();
    EXPECT_FALSE(lost) << "after " << delivered << " signals";
}

TEST(PlainEventLoop, WaitEndsAtItsLimit) {
    PlainEventLoop loop;
    const auto start = loop.Now();
    loop.Wait(20ms);
    EXPECT_GE(loop.Now() - start, 20ms);
    EXPECT_LT(loop.Now() - start, 5s);
}

}  // namespace
}  // namespace sonavex
