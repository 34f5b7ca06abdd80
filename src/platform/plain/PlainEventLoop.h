#pragma once

#include <chrono>
#include <functional>
#include <map>
#include <memory>

#include "core/ports/EventLoop.h"
#include "platform/plain/Semaphore.h"
#include "platform/plain/SignalQueue.h"

namespace sonavex {

// An event loop for programs without a window. The thread that calls Yield, Wait or RunUntil is the
// user-interface thread. An exception of a handler leaves these calls.
class PlainEventLoop : public EventLoop {
public:
    std::unique_ptr<Signal> CreateSignal(std::function<void()> handler) override;
    TimerId StartTimer(std::chrono::milliseconds interval, std::function<void()> handler) override;
    void StopTimer(TimerId id) override;
    void Yield() override;
    std::chrono::nanoseconds Now() const override;

    // Sleeps until a signal is raised, a timer is due or the limit has passed, then calls Yield.
    void Wait(std::chrono::nanoseconds limit);

    // Delivers events until the condition holds (true) or the limit has passed (false). The condition
    // is evaluated after every delivery and every 10 ms, so it may depend on the time or on another thread.
    bool RunUntil(const std::function<bool()>& condition, std::chrono::nanoseconds limit);

private:
    struct Timer {
        std::chrono::nanoseconds interval;
        std::chrono::nanoseconds due;
        std::function<void()> handler;
        bool running = false;  // its handler is being called
    };

    std::chrono::nanoseconds UntilNextTimer(std::chrono::nanoseconds limit) const;
    void RunDueTimers();
    void Tick(TimerId id, Timer& timer, std::chrono::nanoseconds now);

    Semaphore wake_;
    SignalQueue queue_{[this] { wake_.Release(); }};
    std::map<TimerId, Timer> timers_;
    TimerId lastTimer_ = 0;
};

}  // namespace sonavex
