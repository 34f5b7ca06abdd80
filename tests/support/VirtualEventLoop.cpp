#include "support/VirtualEventLoop.h"

#include <algorithm>
#include <utility>

namespace sonavex {

class VirtualEventLoop::QueuedSignal : public Signal {
public:
    QueuedSignal(VirtualEventLoop& loop, std::function<void()> handler)
        : loop_(loop), entry_(std::make_shared<Entry>()) {
        entry_->handler = std::move(handler);
    }
    ~QueuedSignal() override { entry_->destroyed = true; }
    QueuedSignal(const QueuedSignal&) = delete;
    QueuedSignal& operator=(const QueuedSignal&) = delete;

    bool Raise() noexcept override {
        if (entry_->queued) return false;
        entry_->queued = true;
        loop_.waiting_.push_back(entry_);
        return true;
    }

private:
    VirtualEventLoop& loop_;
    std::shared_ptr<Entry> entry_;
};

std::unique_ptr<Signal> VirtualEventLoop::CreateSignal(std::function<void()> handler) {
    return std::make_unique<QueuedSignal>(*this, std::move(handler));
}

EventLoop::TimerId VirtualEventLoop::StartTimer(std::chrono::milliseconds interval,
                                                std::function<void()> handler) {
    timers_[++lastTimer_] = Timer{interval, now_ + interval, std::move(handler)};
    return lastTimer_;
}

void VirtualEventLoop::DeliverNextSignal() {
    const auto entry = waiting_.front();
    waiting_.pop_front();
    entry->queued = false;
    if (!entry->destroyed) entry->handler();
}

void VirtualEventLoop::Skip(std::chrono::nanoseconds time) {
    now_ += time;
    for (auto& [id, timer] : timers_) timer.due = std::max(timer.due, now_);
}

void VirtualEventLoop::DeliverSignals() {
    while (!waiting_.empty()) DeliverNextSignal();
}

void VirtualEventLoop::Yield() {
    ++yields_;
    if (onYield_) onYield_();
    for (std::size_t left = waiting_.size(); left > 0 && !waiting_.empty(); --left) DeliverNextSignal();
    RunTimersDueBy(now_);
}

void VirtualEventLoop::RunTimersDueBy(std::chrono::nanoseconds time) {
    const auto earlier = [](const auto& a, const auto& b) { return a.second.due < b.second.due; };
    while (!timers_.empty()) {
        const auto next = std::min_element(timers_.begin(), timers_.end(), earlier);
        if (next->second.due > time) return;
        now_ = std::max(now_, next->second.due);
        next->second.due += next->second.interval;
        const auto handler = next->second.handler;
        handler();
        DeliverSignals();
    }
}

void VirtualEventLoop::Advance(std::chrono::nanoseconds time) {
    const auto end = now_ + time;
    DeliverSignals();
    RunTimersDueBy(end);
    // A handler that advances time may have passed the end.
    now_ = std::max(now_, end);
}

std::chrono::milliseconds VirtualEventLoop::Interval() const {
    return timers_.size() == 1 ? timers_.begin()->second.interval : std::chrono::milliseconds::zero();
}

}  // namespace sonavex
