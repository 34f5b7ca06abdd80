#pragma once

#include <deque>
#include <map>
#include <memory>

#include "core/ports/EventLoop.h"

namespace sonavex {

// An event loop with virtual time that only the test advances.
class VirtualEventLoop : public EventLoop {
public:
    std::unique_ptr<Signal> CreateSignal(std::function<void()> handler) override;
    TimerId StartTimer(std::chrono::milliseconds interval, std::function<void()> handler) override;
    void StopTimer(TimerId id) override { timers_.erase(id); }
    // Runs the hook, then delivers what was pending at the call. Time does not advance.
    void Yield() override;
    std::chrono::nanoseconds Now() const override { return now_; }

    // Advances time, stopping at every due timer and delivering signals.
    void Advance(std::chrono::nanoseconds time);
    // Advances time while the loop is blocked: everything due is delivered once, with the next Advance.
    void Skip(std::chrono::nanoseconds time);
    // Delivers signals until none is pending.
    void DeliverSignals();

    std::size_t Yields() const noexcept { return yields_; }
    // Runs in every Yield, before anything is delivered. Nothing by default.
    void OnYield(std::function<void()> hook) { onYield_ = std::move(hook); }

    std::size_t WaitingSignals() const noexcept { return waiting_.size(); }
    std::size_t Timers() const noexcept { return timers_.size(); }
    // Interval of the only timer (0 when there is not exactly one).
    std::chrono::milliseconds Interval() const;

private:
    struct Entry {
        std::function<void()> handler;
        bool queued = false;
        bool destroyed = false;
    };
    class QueuedSignal;
    struct Timer {
        std::chrono::milliseconds interval;
        std::chrono::nanoseconds due;
        std::function<void()> handler;
    };

    void DeliverNextSignal();
    void RunTimersDueBy(std::chrono::nanoseconds time);

    std::deque<std::shared_ptr<Entry>> waiting_;
    std::map<TimerId, Timer> timers_;
    TimerId lastTimer_ = 0;
    std::chrono::nanoseconds now_{0};
    std::size_t yields_ = 0;
    std::function<void()> onYield_;
};

}  // namespace sonavex
