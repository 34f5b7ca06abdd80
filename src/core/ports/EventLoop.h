#pragma once

#include <chrono>
#include <functional>
#include <memory>

namespace sonavex {

// Wakes the user-interface thread from any thread. Destroying a signal discards an undelivered one.
class Signal {
public:
    virtual ~Signal() = default;

    // Requests one run of the handler. Returns false if an earlier request is still pending; both are then
    // delivered as one. Any thread; lock-free, without allocation.
    virtual bool Raise() noexcept = 0;
};

// The user-interface thread's event loop. Everything except Signal::Raise is called on that thread.
class EventLoop {
public:
    using TimerId = int;  // never 0

    virtual ~EventLoop() = default;

    // The handler runs on the user-interface thread. Pending signals are delivered in the order in which they
    // were raised. A signal must not outlive its loop.
    virtual std::unique_ptr<Signal> CreateSignal(std::function<void()> handler) = 0;

    // Calls the handler at every interval until stopped. Late ticks are not made up for.
    virtual TimerId StartTimer(std::chrono::milliseconds interval, std::function<void()> handler) = 0;
    // Ignores an unknown id.
    virtual void StopTimer(TimerId id) = 0;

    // Delivers everything that is pending now, without waiting.
    virtual void Yield() = 0;

    // Like Yield, but user input waits for the next delivery. A loop without user input need not override it.
    virtual void YieldWithoutInput() { Yield(); }

    // Monotonic time.
    virtual std::chrono::nanoseconds Now() const = 0;
};

}  // namespace sonavex
