#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <utility>

#include "core/ports/EventLoop.h"

namespace sonavex {

// The raised signals of an event loop, in the order in which they were raised. Raising one from any
// thread takes no lock and no memory: a signal is linked into the queue by its own pointer. Everything
// else is for the user-interface thread.
class SignalQueue {
public:
    // `wake` is called by the thread that raises the first signal of an empty queue. It must neither
    // lock, allocate nor throw.
    explicit SignalQueue(std::function<void()> wake) : wake_(std::move(wake)) {}
    // Discards the raised signals. No signal may be raised afterwards.
    ~SignalQueue();
    SignalQueue(const SignalQueue&) = delete;
    SignalQueue& operator=(const SignalQueue&) = delete;

    // The queue must outlive every Raise of the signal.
    std::unique_ptr<Signal> Create(std::function<void()> handler);

    bool Empty() const noexcept { return oldest_ == nullptr && raised_.load() == nullptr; }

    // Calls `run` with the handler of each signal that was raised before this call, oldest first. A
    // handler that calls Deliver itself delivers the rest. An exception of `run` leaves Deliver, and
    // the signals that were not delivered stay in the queue.
    // Reset the state that `wake` sets before this call, so that no wake-up is lost.
    using Run = std::function<void(const std::function<void()>& handler)>;
    void Deliver(const Run& run);

private:
    struct Entry;
    class QueuedSignal;

    bool Push(const std::shared_ptr<Entry>& entry) noexcept;
    void Collect() noexcept;
    std::shared_ptr<Entry> PopUpTo(std::uint64_t ticket) noexcept;

    std::function<void()> wake_;
    std::atomic<Entry*> raised_{nullptr};  // a stack, the last raised signal on top
    // Signals that were taken off the stack and not delivered. Tickets rise from one to the next.
    Entry* oldest_ = nullptr;
    Entry* youngest_ = nullptr;
    std::uint64_t lastTicket_ = 0;
};

}  // namespace sonavex
