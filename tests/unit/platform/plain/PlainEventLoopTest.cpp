#include <gtest/gtest.h>

#include <chrono>
#include <stdexcept>
#include <thread>

#include "platform/plain/PlainEventLoop.h"

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

TEST(PlainEventLoop, WaitEndsEarlyForARing) {
    PlainEventLoop loop;
    bool rung = false;
    const auto signal = loop.CreateSignal([&] { rung = true; });
    signal->Raise();
    const auto start = loop.Now();
    loop.Wait(10s);
    EXPECT_TRUE(rung);
    EXPECT_LT(loop.Now() - start, 5s);
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
