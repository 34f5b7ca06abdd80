#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <stdexcept>
#include <thread>

#include "platform/plain/PlainEventLoop.h"

namespace sonavex {
namespace {

using namespace std::chrono_literals;

TEST(PlainEventLoopTimer, TicksUntilStopped) {
    PlainEventLoop loop;
    int ticks = 0;
    const auto start = loop.Now();
    const auto id = loop.StartTimer(5ms, [&] { ++ticks; });
    EXPECT_NE(id, 0);
    EXPECT_TRUE(loop.RunUntil([&] { return ticks == 3; }, 10s));
    EXPECT_GE(loop.Now() - start, 15ms);
    loop.StopTimer(id);
    EXPECT_FALSE(loop.RunUntil([&] { return ticks > 3; }, 30ms));
}

TEST(PlainEventLoopTimer, DoesNotTickBeforeItsInterval) {
    PlainEventLoop loop;
    int ticks = 0;
    loop.StartTimer(1h, [&] { ++ticks; });
    loop.Yield();
    EXPECT_FALSE(loop.RunUntil([&] { return ticks > 0; }, 20ms));
}

TEST(PlainEventLoopTimer, DoesNotMakeUpForLateTicks) {
    PlainEventLoop loop;
    int ticks = 0;
    loop.StartTimer(200ms, [&] { ++ticks; });
    std::this_thread::sleep_for(900ms);
    loop.Yield();
    loop.Yield();
    EXPECT_EQ(ticks, 1);
}

TEST(PlainEventLoopTimer, AHandlerMayStopItsOwnTimer) {
    PlainEventLoop loop;
    int ticks = 0;
    EventLoop::TimerId id = 0;
    id = loop.StartTimer(1ms, [&] {
        loop.StopTimer(id);
        ++ticks;
    });
    EXPECT_FALSE(loop.RunUntil([&] { return ticks > 1; }, 30ms));
    EXPECT_EQ(ticks, 1);
}

TEST(PlainEventLoopTimer, AHandlerMayStopAnotherTimerThatIsDue) {
    PlainEventLoop loop;
    int ticks = 0;
    EventLoop::TimerId ids[2] = {0, 0};
    for (int i = 0; i < 2; ++i)
        ids[i] = loop.StartTimer(1ms, [&ids, &loop, &ticks, i] {
            ++ticks;
            loop.StopTimer(ids[1 - i]);
            loop.StopTimer(ids[i]);
        });
    std::this_thread::sleep_for(5ms);
    loop.Yield();
    EXPECT_EQ(ticks, 1);
}

TEST(PlainEventLoopTimer, AHandlerThatYieldsIsNotCalledInsideItself) {
    PlainEventLoop loop;
    int depth = 0;
    int deepest = 0;
    int ticks = 0;
    loop.StartTimer(1ms, [&] {
        deepest = std::max(deepest, ++depth);
        std::this_thread::sleep_for(3ms);
        loop.Yield();
        --depth;
        ++ticks;
    });
    EXPECT_TRUE(loop.RunUntil([&] { return ticks >= 3; }, 10s));
    EXPECT_EQ(deepest, 1);
}

TEST(PlainEventLoopTimer, GoesOnAfterAnErrorInItsHandler) {
    PlainEventLoop loop;
    int ticks = 0;
    loop.StartTimer(1ms, [&] {
        if (++ticks == 1) throw std::runtime_error("once");
    });
    std::this_thread::sleep_for(5ms);
    EXPECT_THROW(loop.Yield(), std::runtime_error);
    EXPECT_TRUE(loop.RunUntil([&] { return ticks == 2; }, 10s));
}

TEST(PlainEventLoopTimer, StoppingAnUnknownTimerIsIgnored) {
    PlainEventLoop loop;
    int ticks = 0;
    const auto id = loop.StartTimer(1ms, [&] { ++ticks; });
    loop.StopTimer(id + 1);
    loop.StopTimer(0);
    EXPECT_TRUE(loop.RunUntil([&] { return ticks > 0; }, 10s));
    loop.StopTimer(id);
    loop.StopTimer(id);
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
