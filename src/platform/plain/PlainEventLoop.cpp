#include "platform/plain/PlainEventLoop.h"

#include <algorithm>
#include <utility>
#include <vector>

namespace sonavex {

namespace {

// RunUntil evaluates its condition at least this often.
constexpr std::chrono::nanoseconds kLongestSleep = std::chrono::milliseconds(10);

}  // namespace

std::unique_ptr<Signal> PlainEventLoop::CreateSignal(std::function<void()> handler) {
    return queue_.Create(std::move(handler));
}

EventLoop::TimerId PlainEventLoop::StartTimer(std::chrono::milliseconds interval,
                                              std::function<void()> handler) {
    timers_[++lastTimer_] = Timer{interval, Now() + interval, std::move(handler)};
    return lastTimer_;
}

void PlainEventLoop::StopTimer(TimerId id) {
    timers_.erase(id);
}

std::chrono::nanoseconds PlainEventLoop::Now() const {
    return std::chrono::steady_clock::now().time_since_epoch();
}

void PlainEventLoop::Yield() {
    // Uses up the wake-up of the signals that are delivered here, so that the next Wait sleeps.
    if (!queue_.Empty()) wake_.TryAcquire();
    queue_.Deliver([](const std::function<void()>& handler) { handler(); });
    RunDueTimers();
}

void PlainEventLoop::RunDueTimers() {
    std::vector<TimerId> due;
    const auto now = Now();
    for (const auto& [id, timer] : timers_)
        if (!timer.running && timer.due <= now) due.push_back(id);
    for (const TimerId id : due) {
        const auto found = timers_.find(id);
        if (found != timers_.end() && !found->second.running) Tick(id, found->second, now);
    }
}

void PlainEventLoop::Tick(TimerId id, Timer& timer, std::chrono::nanoseconds now) {
    timer.due += timer.interval;
    if (timer.due <= now) timer.due = now + timer.interval;
    // A handler that calls Yield is not entered again, and it may stop its own timer.
    struct Running {
        std::map<TimerId, Timer>& timers;
        TimerId id;
        ~Running() {
            const auto found = timers.find(id);
            if (found != timers.end()) found->second.running = false;
        }
    };
    timer.running = true;
    const Running running{timers_, id};
    const auto handler = timer.handler;
    handler();
}

std::chrono::nanoseconds PlainEventLoop::UntilNextTimer(std::chrono::nanoseconds limit) const {
    const auto now = Now();
    for (const auto& [id, timer] : timers_)
        if (!timer.running) limit = std::min(limit, timer.due - now);
    return std::max(limit, std::chrono::nanoseconds::zero());
}

void PlainEventLoop::Wait(std::chrono::nanoseconds limit) {
    const auto end = Now() + UntilNextTimer(limit);
    // A wake-up may belong to a signal that was delivered already.
    while (queue_.Empty() && Now() < end) wake_.AcquireUntil(end);
    Yield();
}

bool PlainEventLoop::RunUntil(const std::function<bool()>& condition, std::chrono::nanoseconds limit) {
    const auto end = Now() + limit;
    while (!condition()) {
        const auto left = end - Now();
        if (left <= std::chrono::nanoseconds::zero()) return false;
        Wait(std::min(left, kLongestSleep));
    }
    return true;
}

}  // namespace sonavex
