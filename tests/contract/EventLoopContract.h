#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "core/ports/EventLoop.h"

namespace sonavex {

using namespace std::chrono_literals;

// Contract of every event loop. A Platform is default constructible, lives for one test, and offers
// EventLoop& Loop()
// void Yield() like the loop's, but errors of handlers do not leave it
// int Errors() number of errors that left handlers so far
// bool RunUntil(condition, limit) runs the loop until the condition holds; false after the limit; also
// notices a condition that changes without an event
template <class Platform>
class EventLoopContract : public testing::Test {
protected:
    EventLoop& Loop() { return platform_->Loop(); }
    bool RunUntil(const std::function<bool()>& condition, std::chrono::nanoseconds limit) {
        return platform_->RunUntil(condition, limit);
    }
    std::unique_ptr<Signal> Writing(const std::string& name) {
        return Loop().CreateSignal([this, name] { log_ += name; });
    }

    std::unique_ptr<Platform> platform_ = std::make_unique<Platform>();
    std::string log_;
};

TYPED_TEST_SUITE_P(EventLoopContract);

TYPED_TEST_P(EventLoopContract, SignalsAreDeliveredInTheOrderInWhichTheyWereRaised) {
    const auto a = this->Writing("a");
    const auto b = this->Writing("b");
    const auto c = this->Writing("c");
    c->Raise();
    a->Raise();
    b->Raise();
    EXPECT_EQ(this->log_, "");
    this->platform_->Yield();
    EXPECT_EQ(this->log_, "cab");
    this->platform_->Yield();
    EXPECT_EQ(this->log_, "cab");
}

TYPED_TEST_P(EventLoopContract, ASecondRaiseWhileWaitingIsTheSameRequest) {
    const auto a = this->Writing("a");
    const auto b = this->Writing("b");
    EXPECT_TRUE(a->Raise());
    EXPECT_TRUE(b->Raise());
    EXPECT_FALSE(a->Raise());
    this->platform_->Yield();
    EXPECT_EQ(this->log_, "ab");
    EXPECT_TRUE(a->Raise());
    this->platform_->Yield();
    EXPECT_EQ(this->log_, "aba");
}

TYPED_TEST_P(EventLoopContract, DestroyingDiscardsAWaitingSignal) {
    const auto a = this->Writing("a");
    auto b = this->Writing("b");
    const auto c = this->Writing("c");
    a->Raise();
    b->Raise();
    c->Raise();
    b.reset();
    this->platform_->Yield();
    EXPECT_EQ(this->log_, "ac");
}

TYPED_TEST_P(EventLoopContract, AHandlerMayDestroyItsOwnSignal) {
    const auto kept = std::make_shared<int>(0);
    std::unique_ptr<Signal> own;
    own = this->Loop().CreateSignal([&own, kept] {
        own.reset();
        ++*kept;
    });
    own->Raise();
    this->platform_->Yield();
    EXPECT_EQ(*kept, 1);
    EXPECT_EQ(kept.use_count(), 1);
}

TYPED_TEST_P(EventLoopContract, AHandlerMayDestroyTheNextSignal) {
    auto b = this->Writing("b");
    const auto a = this->Loop().CreateSignal([&] { b.reset(); });
    a->Raise();
    b->Raise();
    this->platform_->Yield();
    EXPECT_EQ(this->log_, "");
}

TYPED_TEST_P(EventLoopContract, YieldLeavesSignalsOfItsHandlersForTheNextYield) {
    std::unique_ptr<Signal> again;
    again = this->Loop().CreateSignal([&] {
        this->log_ += "x";
        again->Raise();
    });
    again->Raise();
    this->platform_->Yield();
    EXPECT_EQ(this->log_, "x");
    this->platform_->Yield();
    EXPECT_EQ(this->log_, "xx");
}

TYPED_TEST_P(EventLoopContract, YieldInsideAHandlerDeliversTheRestOnce) {
    const auto c = this->Writing("c");
    const auto b = this->Loop().CreateSignal([&] {
        this->log_ += "b";
        c->Raise();
    });
    const auto a = this->Loop().CreateSignal([&] {
        this->log_ += "a";
        this->Loop().Yield();
        this->log_ += ")";
    });
    a->Raise();
    b->Raise();
    this->platform_->Yield();
    EXPECT_EQ(this->log_, "ab)");
    this->platform_->Yield();
    EXPECT_EQ(this->log_, "ab)c");
}

TYPED_TEST_P(EventLoopContract, AnErrorInAHandlerLeavesTheOthersWaiting) {
    const auto bad = this->Loop().CreateSignal([] { throw std::runtime_error("bad"); });
    const auto good = this->Writing("good");
    bad->Raise();
    good->Raise();
    this->platform_->Yield();
    EXPECT_EQ(this->platform_->Errors(), 1);
    this->platform_->Yield();
    EXPECT_EQ(this->platform_->Errors(), 1);
    EXPECT_EQ(this->log_, "good");
    EXPECT_TRUE(bad->Raise());
}

TYPED_TEST_P(EventLoopContract, ASignalFromAnotherThreadWakesTheLoop) {
    bool delivered = false;
    std::thread::id on;
    const auto signal = this->Loop().CreateSignal([&] {
        delivered = true;
        on = std::this_thread::get_id();
    });
    std::thread other([&] {
        std::this_thread::sleep_for(20ms);
        signal->Raise();
    });
    EXPECT_TRUE(this->RunUntil([&] { return delivered; }, 10s));
    other.join();
    EXPECT_EQ(on, std::this_thread::get_id());
}

TYPED_TEST_P(EventLoopContract, EveryAcceptedSignalOfManyThreadsIsDeliveredOnce) {
    constexpr int kThreads = 3;
    constexpr int kRaises = 2000;
    std::vector<std::unique_ptr<Signal>> signals;
    std::atomic<int> accepted{0};
    std::atomic<int> finished{0};
    int delivered = 0;
    for (int i = 0; i < 2; ++i) signals.push_back(this->Loop().CreateSignal([&] { ++delivered; }));
    std::vector<std::thread> threads;
    for (int t = 0; t < kThreads; ++t)
        threads.emplace_back([&] {
            for (int i = 0; i < kRaises; ++i)
                if (signals[static_cast<std::size_t>(i) % 2]->Raise()) ++accepted;
            ++finished;
        });
    EXPECT_TRUE(this->RunUntil([&] { return finished == kThreads; }, 30s));
    for (std::thread& thread : threads) thread.join();
    this->platform_->Yield();
    EXPECT_EQ(delivered, accepted);
    EXPECT_GE(delivered, 2);
}

TYPED_TEST_P(EventLoopContract, AWaitingSignalEndsWithTheLoop) {
    const auto kept = std::make_shared<int>(0);
    auto first = this->Loop().CreateSignal([kept] { ++*kept; });
    auto second = this->Loop().CreateSignal([kept] { ++*kept; });
    first->Raise();
    second->Raise();
    first.reset();
    second.reset();
    this->platform_.reset();
    EXPECT_EQ(*kept, 0);
    EXPECT_EQ(kept.use_count(), 1);
}

TYPED_TEST_P(EventLoopContract, TimerTicksUntilStopped) {
    EventLoop& loop = this->Loop();
    int ticks = 0;
    const auto start = loop.Now();
    const auto id = loop.StartTimer(5ms, [&] { ++ticks; });
    EXPECT_NE(id, 0);
    EXPECT_TRUE(this->RunUntil([&] { return ticks >= 3; }, 10s));
    EXPECT_GE(loop.Now() - start, 15ms);
    loop.StopTimer(id);
    const int atStop = ticks;
    EXPECT_FALSE(this->RunUntil([&] { return ticks > atStop; }, 30ms));
}

TYPED_TEST_P(EventLoopContract, TimerDoesNotTickBeforeItsInterval) {
    EventLoop& loop = this->Loop();
    int ticks = 0;
    loop.StartTimer(1h, [&] { ++ticks; });
    loop.Yield();
    EXPECT_FALSE(this->RunUntil([&] { return ticks > 0; }, 20ms));
}

TYPED_TEST_P(EventLoopContract, TimerDoesNotMakeUpForLateTicks) {
    EventLoop& loop = this->Loop();
    int ticks = 0;
    loop.StartTimer(200ms, [&] { ++ticks; });
    std::this_thread::sleep_for(900ms);
    loop.Yield();
    loop.Yield();
    EXPECT_EQ(ticks, 1);
}

TYPED_TEST_P(EventLoopContract, TimerAHandlerMayStopItsOwnTimer) {
    EventLoop& loop = this->Loop();
    int ticks = 0;
    EventLoop::TimerId id = 0;
    id = loop.StartTimer(1ms, [&] {
        loop.StopTimer(id);
        ++ticks;
    });
    EXPECT_FALSE(this->RunUntil([&] { return ticks > 1; }, 30ms));
    EXPECT_EQ(ticks, 1);
}

TYPED_TEST_P(EventLoopContract, TimerAHandlerMayStopAnotherTimerThatIsDue) {
    EventLoop& loop = this->Loop();
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

TYPED_TEST_P(EventLoopContract, TimerAHandlerThatYieldsIsNotCalledInsideItself) {
    EventLoop& loop = this->Loop();
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
    EXPECT_TRUE(this->RunUntil([&] { return ticks >= 3; }, 10s));
    EXPECT_EQ(deepest, 1);
}

TYPED_TEST_P(EventLoopContract, TimerContinuesAfterAnErrorInItsHandler) {
    EventLoop& loop = this->Loop();
    int ticks = 0;
    loop.StartTimer(1ms, [&] {
        if (++ticks == 1) throw std::runtime_error("once");
    });
    std::this_thread::sleep_for(5ms);
    this->platform_->Yield();
    EXPECT_EQ(this->platform_->Errors(), 1);
    EXPECT_TRUE(this->RunUntil([&] { return ticks >= 2; }, 10s));
}

TYPED_TEST_P(EventLoopContract, TimerStoppingAnUnknownTimerIsIgnored) {
    EventLoop& loop = this->Loop();
    int ticks = 0;
    const auto id = loop.StartTimer(1ms, [&] { ++ticks; });
    loop.StopTimer(id + 1);
    loop.StopTimer(0);
    EXPECT_TRUE(this->RunUntil([&] { return ticks > 0; }, 10s));
    loop.StopTimer(id);
    loop.StopTimer(id);
}

REGISTER_TYPED_TEST_SUITE_P(EventLoopContract, SignalsAreDeliveredInTheOrderInWhichTheyWereRaised,
                            ASecondRaiseWhileWaitingIsTheSameRequest, DestroyingDiscardsAWaitingSignal,
                            AHandlerMayDestroyItsOwnSignal, AHandlerMayDestroyTheNextSignal,
                            YieldLeavesSignalsOfItsHandlersForTheNextYield,
                            YieldInsideAHandlerDeliversTheRestOnce, AnErrorInAHandlerLeavesTheOthersWaiting,
                            ASignalFromAnotherThreadWakesTheLoop,
                            EveryAcceptedSignalOfManyThreadsIsDeliveredOnce, AWaitingSignalEndsWithTheLoop,
                            TimerTicksUntilStopped, TimerDoesNotTickBeforeItsInterval,
                            TimerDoesNotMakeUpForLateTicks, TimerAHandlerMayStopItsOwnTimer,
                            TimerAHandlerMayStopAnotherTimerThatIsDue,
                            TimerAHandlerThatYieldsIsNotCalledInsideItself,
                            TimerContinuesAfterAnErrorInItsHandler, TimerStoppingAnUnknownTimerIsIgnored);

}  // namespace sonavex
