#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "platform/plain/PlainEventLoop.h"

namespace sonavex {
namespace {

using namespace std::chrono_literals;

class PlainEventLoopSignals : public testing::Test {
protected:
    std::unique_ptr<Signal> Writing(const std::string& name) {
        return loop_.CreateSignal([this, name] { log_ += name; });
    }
    PlainEventLoop loop_;
    std::string log_;
};

TEST_F(PlainEventLoopSignals, AreDeliveredInTheOrderOfTheirRings) {
    const auto a = Writing("a");
    const auto b = Writing("b");
    const auto c = Writing("c");
    c->Raise();
    a->Raise();
    b->Raise();
    EXPECT_EQ(log_, "");
    loop_.Yield();
    EXPECT_EQ(log_, "cab");
    loop_.Yield();
    EXPECT_EQ(log_, "cab");
}

TEST_F(PlainEventLoopSignals, ASecondRingWhileWaitingIsTheSameRing) {
    const auto a = Writing("a");
    const auto b = Writing("b");
    EXPECT_TRUE(a->Raise());
    EXPECT_TRUE(b->Raise());
    EXPECT_FALSE(a->Raise());
    loop_.Yield();
    EXPECT_EQ(log_, "ab");
    EXPECT_TRUE(a->Raise());
    loop_.Yield();
    EXPECT_EQ(log_, "aba");
}

TEST_F(PlainEventLoopSignals, DestroyingDiscardsAWaitingRing) {
    const auto a = Writing("a");
    auto b = Writing("b");
    const auto c = Writing("c");
    a->Raise();
    b->Raise();
    c->Raise();
    b.reset();
    loop_.Yield();
    EXPECT_EQ(log_, "ac");
}

TEST_F(PlainEventLoopSignals, AHandlerMayDestroyItsOwnSignal) {
    const auto kept = std::make_shared<int>(0);
    std::unique_ptr<Signal> own;
    own = loop_.CreateSignal([&own, kept] {
        own.reset();
        ++*kept;
    });
    own->Raise();
    loop_.Yield();
    EXPECT_EQ(*kept, 1);
    EXPECT_EQ(kept.use_count(), 1);
}

TEST_F(PlainEventLoopSignals, AHandlerMayDestroyTheNextSignal) {
    auto b = Writing("b");
    const auto a = loop_.CreateSignal([&] { b.reset(); });
    a->Raise();
    b->Raise();
    loop_.Yield();
    EXPECT_EQ(log_, "");
}

TEST_F(PlainEventLoopSignals, YieldLeavesRingsOfItsHandlersForTheNextYield) {
    std::unique_ptr<Signal> again;
    again = loop_.CreateSignal([&] {
        log_ += "x";
        again->Raise();
    });
    again->Raise();
    loop_.Yield();
    EXPECT_EQ(log_, "x");
    loop_.Yield();
    EXPECT_EQ(log_, "xx");
}

TEST_F(PlainEventLoopSignals, YieldInsideAHandlerDeliversTheRestOnce) {
    const auto c = Writing("c");
    const auto b = loop_.CreateSignal([&] {
        log_ += "b";
        c->Raise();
    });
    const auto a = loop_.CreateSignal([&] {
        log_ += "a";
        loop_.Yield();
        log_ += ")";
    });
    a->Raise();
    b->Raise();
    loop_.Yield();
    EXPECT_EQ(log_, "ab)");
    loop_.Yield();
    EXPECT_EQ(log_, "ab)c");
}

TEST_F(PlainEventLoopSignals, AnErrorInAHandlerLeavesTheOthersWaiting) {
    const auto bad = loop_.CreateSignal([] { throw std::runtime_error("bad"); });
    const auto good = Writing("good");
    bad->Raise();
    good->Raise();
    EXPECT_THROW(loop_.Yield(), std::runtime_error);
    loop_.Yield();
    EXPECT_EQ(log_, "good");
    EXPECT_TRUE(bad->Raise());
}

TEST_F(PlainEventLoopSignals, RingFromAnotherThreadWakesTheLoop) {
    bool rung = false;
    std::thread::id on;
    const auto signal = loop_.CreateSignal([&] {
        rung = true;
        on = std::this_thread::get_id();
    });
    std::thread other([&] {
        std::this_thread::sleep_for(20ms);
        signal->Raise();
    });
    EXPECT_TRUE(loop_.RunUntil([&] { return rung; }, 10s));
    other.join();
    EXPECT_EQ(on, std::this_thread::get_id());
}

TEST_F(PlainEventLoopSignals, EveryAcceptedRingOfManyThreadsIsDeliveredOnce) {
    constexpr int kThreads = 3;
    constexpr int kRings = 2000;
    std::vector<std::unique_ptr<Signal>> signals;
    std::atomic<int> accepted{0};
    std::atomic<int> finished{0};
    int delivered = 0;
    for (int i = 0; i < 2; ++i) signals.push_back(loop_.CreateSignal([&] { ++delivered; }));
    std::vector<std::thread> threads;
    for (int t = 0; t < kThreads; ++t)
        threads.emplace_back([&] {
            for (int i = 0; i < kRings; ++i)
                if (signals[static_cast<std::size_t>(i) % 2]->Raise()) ++accepted;
            ++finished;
        });
    EXPECT_TRUE(loop_.RunUntil([&] { return finished == kThreads; }, 30s));
    for (std::thread& thread : threads) thread.join();
    loop_.Yield();
    EXPECT_EQ(delivered, accepted);
    EXPECT_GE(delivered, 2);
}

TEST_F(PlainEventLoopSignals, AWaitingRingDiesWithTheLoop) {
    const auto kept = std::make_shared<int>(0);
    {
        PlainEventLoop loop;
        const auto first = loop.CreateSignal([kept] { ++*kept; });
        const auto second = loop.CreateSignal([kept] { ++*kept; });
        first->Raise();
        second->Raise();
    }
    EXPECT_EQ(*kept, 0);
    EXPECT_EQ(kept.use_count(), 1);
}

}  // namespace
}  // namespace sonavex
