#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <memory>
#include <string>
#include <thread>

#include "platform/plain/PlainEventLoop.h"
#include "platform/plain/Semaphore.h"
#include "platform/plain/WorkerThread.h"

namespace sonavex {
namespace {

using namespace std::chrono_literals;
using Line = Background::Line;

std::chrono::nanoseconds In(std::chrono::nanoseconds time) {
    return std::chrono::steady_clock::now().time_since_epoch() + time;
}

// A worker whose first task blocks until the test opens the gate.
struct BusyWorker {
    // Shared with a task that may outlive the worker.
    struct Gate {
        Semaphore entered;
        Semaphore open;
        std::atomic<bool> left{false};
    };
    explicit BusyWorker(std::chrono::milliseconds endLimit = 2s)
        : worker(std::make_unique<WorkerThread>(loop, endLimit)) {
        worker->Run(Line::kAnalysis, [this, gate = gate] {
            gate->entered.Release();
            EXPECT_TRUE(gate->open.AcquireBefore(In(20s)));
            gate->left = true;
            return [this] { log += "busy "; };
        });
        EXPECT_TRUE(gate->entered.AcquireBefore(In(20s)));
    }
    ~BusyWorker() { gate->open.Release(); }

    void Run(Line line, const std::string& name) {
        worker->Run(line, [this, name] { return [this, name] { log += name + ' '; }; });
    }
    bool Logs(const std::string& text) {
        return loop.RunUntil([&] { return log == text; }, 10s);
    }

    std::shared_ptr<Gate> gate = std::make_shared<Gate>();
    std::string log;
    PlainEventLoop loop;
    std::unique_ptr<WorkerThread> worker;
};

TEST(WorkerThread, RunsTasksOnAnotherThread) {
    PlainEventLoop loop;
    WorkerThread worker(loop);
    std::atomic<std::thread::id> thread{};
    bool delivered = false;
    worker.Run(Line::kStimulus, [&] {
        thread = std::this_thread::get_id();
        return [&] { delivered = true; };
    });
    EXPECT_TRUE(loop.RunUntil([&] { return delivered; }, 10s));
    EXPECT_NE(thread.load(), std::this_thread::get_id());
}

TEST(WorkerThread, OnlyTheNewestTaskOfALineWaits) {
    BusyWorker busy;
    for (const char* const name : {"a1", "a2", "a3"}) busy.Run(Line::kAnalysis, name);
    for (const char* const name : {"s1", "s2"}) busy.Run(Line::kStimulus, name);
    busy.gate->open.Release();
    EXPECT_TRUE(busy.Logs("busy s2 a3 "));
}

TEST(WorkerThread, EndsWithItsRunningTask) {
    BusyWorker busy;
    busy.Run(Line::kAnalysis, "waiting");
    busy.gate->open.Release();
    busy.worker.reset();
    EXPECT_TRUE(busy.gate->left);
    busy.loop.Yield();
    EXPECT_EQ(busy.log, "");
}

TEST(WorkerThread, EndsAtTheLimitWithoutATaskThatDoesNotEnd) {
    BusyWorker busy(100ms);
    const auto begin = std::chrono::steady_clock::now();
    busy.worker.reset();
    EXPECT_GE(std::chrono::steady_clock::now() - begin, 100ms);
    EXPECT_FALSE(busy.gate->left);
    busy.loop.Yield();
    EXPECT_EQ(busy.log, "");
}

}  // namespace
}  // namespace sonavex
