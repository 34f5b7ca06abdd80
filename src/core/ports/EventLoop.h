#pragma once

#include <chrono>
#include <functional>
#include <memory>

namespace sonavex {

// A bell that any thread may ring for the user-interface thread. Destroying it discards a ring that
// was not delivered yet.
class Signal {
public:
    virtual ~Signal() = default;

    // Asks for one run of the handler. False when an earlier ring is still waiting: the two are then
    // delivered as one. Any thread; neither allocates nor waits for the user-interface thread.
    virtual bool Raise() noexcept = 0;
};

// The user-interface thread's event loop. Everything except Signal::Raise is called on that thread.
class EventLoop {
public:
    using TimerId = int;  // never 0

    virtual ~EventLoop() = default;

    // The handler runs on the user-interface thread. Signals raised while others wait are delivered
    // in the order in which they were raised. A signal must not outlive its loop.
    virtual std::unique_ptr<Signal> CreateSignal(std::function<void()> handler) = 0;

    // Calls the handler every interval until stopped. A late tick is not made up for.
    virtual TimerId StartTimer(std::chrono::milliseconds interval, std::function<void()> handler) = 0;
    // An unknown id is ignored.
    virtual void StopTimer(TimerId id) = 0;

    // Delivers what is pending now, without waiting, and returns.
    virtual void Yield() = 0;

    // Monotonic time.
    virtual std::chrono::nanoseconds Now() const = 0;
};

}  // namespace sonavex
