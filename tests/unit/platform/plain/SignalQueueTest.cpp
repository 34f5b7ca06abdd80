#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <memory>
#include <semaphore>
#include <thread>
#include <vector>

#include "platform/plain/SignalQueue.h"

namespace sonavex {
namespace {

using namespace std::chrono_literals;

void Call(const std::function<void()>& handler) {
    handler();
}

TEST(SignalQueue, WakesOnlyForTheFirstSignalOfAnEmptyQueue) {
    int wakes = 0;
    SignalQueue queue([&] { ++wakes; });
    const auto a = queue.Create([] {});
    const auto b = queue.Create([] {});
    EXPECT_TRUE(queue.Empty());
    a->Raise();
    b->Raise();
    a->Raise();
    EXPECT_EQ(wakes, 1);
    EXPECT_FALSE(queue.Empty());
    queue.Deliver(Call);
    EXPECT_TRUE(queue.Empty());
    b->Raise();
    EXPECT_EQ(wakes, 2);
}

TEST(SignalQueue, WakesForASignalThatAHandlerRaises) {
    int wakes = 0;
    SignalQueue queue([&] { ++wakes; });
    std::unique_ptr<Signal> again;
    again = queue.Create([&] { again->Raise(); });
    again->Raise();
    queue.Deliver(Call);
    EXPECT_EQ(wakes, 2);
    EXPECT_FALSE(queue.Empty());
}

TEST(SignalQueue, IsNotEmptyWhileAnErrorLeavesSignalsUndelivered) {
    SignalQueue queue([] {});
    const auto bad = queue.Create([] { throw 1; });
    const auto good = queue.Create([] {});
    bad->Raise();
    good->Raise();
    EXPECT_THROW(queue.Deliver(Call), int);
    EXPECT_FALSE(queue.Empty());
    queue.Deliver(Call);
    EXPECT_TRUE(queue.Empty());
}

// Threads that raise separate signals as fast as they can. Each signal's handler notes its number.
class RaisingThread {
public:
    RaisingThread(SignalQueue& queue, int signals) {
        for (int i = 0; i < signals; ++i)
            signals_.push_back(queue.Create([this, i] { delivered_.push_back(i); }));
    }

    void Start(int rounds, std::atomic<int>& finished) {
        thread_ = std::thread([this, rounds, &finished] {
            for (int round = 0; round < rounds; ++round)
                for (std::size_t i = 0; i < signals_.size(); ++i)
                    if (signals_[i]->Raise()) accepted_.push_back(static_cast<int>(i));
            ++finished;
        });
    }
    void Join() { thread_.join(); }

    const std::vector<int>& Accepted() const { return accepted_; }
    const std::vector<int>& Delivered() const { return delivered_; }

private:
    std::vector<std::unique_ptr<Signal>> signals_;
    std::vector<int> accepted_;   // written by the thread
    std::vector<int> delivered_;  // written by the test's thread
    std::thread thread_;
};

TEST(SignalQueue, DeliversTheSignalsOfManyThreadsOnceEachAndInOrder) {
    constexpr int kThreads = 8;
    constexpr int kSignals = 16;
    constexpr int kRounds = 2000;
    std::counting_semaphore<> wake{0};
    SignalQueue queue([&] { wake.release(); });
    std::atomic<int> finished{0};
    std::vector<std::unique_ptr<RaisingThread>> threads;
    for (int i = 0; i < kThreads; ++i) threads.push_back(std::make_unique<RaisingThread>(queue, kSignals));
    for (const auto& thread : threads) thread->Start(kRounds, finished);
    while (finished < kThreads) {
        static_cast<void>(wake.try_acquire_for(1ms));
        queue.Deliver(Call);
    }
    for (const auto& thread : threads) thread->Join();
    queue.Deliver(Call);
    for (const auto& thread : threads) {
        EXPECT_GE(thread->Delivered().size(), static_cast<std::size_t>(kSignals));
        EXPECT_EQ(thread->Delivered(), thread->Accepted());
    }
}

// Signals of several threads that all go to one sleeping consumer: a lost wake-up leaves it asleep.
TEST(SignalQueue, NoWakeUpIsLost) {
    constexpr int kThreads = 4;
    constexpr int kRounds = 2000;
    std::counting_semaphore<> wake{0};
    SignalQueue queue([&] { wake.release(); });
    std::vector<std::unique_ptr<Signal>> signals;
    std::vector<std::atomic<int>> delivered(kThreads);
    for (std::atomic<int>& count : delivered) signals.push_back(queue.Create([&] { ++count; }));
    std::atomic<bool> stuck{false};
    std::vector<std::thread> threads;
    for (std::size_t t = 0; t < kThreads; ++t)
        threads.emplace_back([&, t] {
            for (int round = 0; round < kRounds && !stuck; ++round) {
                signals[t]->Raise();
                while (delivered[t] <= round && !stuck) std::this_thread::yield();
            }
        });
    int total = 0;
    while (total < kThreads * kRounds && !stuck) {
        if (!wake.try_acquire_for(20s)) stuck = true;
        queue.Deliver(Call);
        total = 0;
        for (const std::atomic<int>& count : delivered) total += count;
    }
    for (std::thread& thread : threads) thread.join();
    EXPECT_FALSE(stuck);
    EXPECT_EQ(total, kThreads * kRounds);
}

}  // namespace
}  // namespace sonavex
