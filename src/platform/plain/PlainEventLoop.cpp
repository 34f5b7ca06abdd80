#include "platform/plain/PlainEventLoop.h"

#include <algorithm>
#include <condition_variable>
#include <cstdint>
#include <limits>
#include <mutex>
#include <utility>
#include <vector>

namespace sonavex {

namespace {

// Between two looks at a condition that no event announces.
constexpr std::chrono::nanoseconds kLongestSleep = std::chrono::milliseconds(10);

// One bell. It stands in the queue by its own links, so that ringing it needs no memory.
struct Bell {
    std::function<void()> handler;
    std::shared_ptr<Bell> next;  // while queued
    std::uint64_t ticket = 0;    // of its last ring; rises with every ring of the loop
    bool queued = false;
    bool destroyed = false;
};

}  // namespace

struct PlainEventLoop::Queue {
    std::mutex mutex;
    std::condition_variable wake;
    std::shared_ptr<Bell> first;
    std::shared_ptr<Bell> last;
    std::uint64_t lastTicket = 0;

    std::uint64_t LastTicket() {
        const std::lock_guard lock(mutex);
        return lastTicket;
    }

    bool Push(const std::shared_ptr<Bell>& bell) {
        {
            const std::lock_guard lock(mutex);
            if (bell->queued) return false;
            bell->queued = true;
            bell->ticket = ++lastTicket;
            (last ? last->next : first) = bell;
            last = bell;
        }
        wake.notify_one();
        return true;
    }

    // The oldest ring, nothing when it is younger than the ticket.
    std::shared_ptr<Bell> Pop(std::uint64_t ticket) {
        const std::lock_guard lock(mutex);
        std::shared_ptr<Bell> bell = first;
        if (!bell || bell->ticket > ticket) return nullptr;
        first = std::move(bell->next);
        bell->next = nullptr;
        if (!first) last = nullptr;
        bell->queued = false;
        return bell;
    }
};

class PlainEventLoop::QueuedSignal : public Signal {
public:
    QueuedSignal(std::shared_ptr<Queue> queue, std::function<void()> handler)
        : queue_(std::move(queue)), bell_(std::make_shared<Bell>()) {
        bell_->handler = std::move(handler);
    }
    ~QueuedSignal() override { bell_->destroyed = true; }
    QueuedSignal(const QueuedSignal&) = delete;
    QueuedSignal& operator=(const QueuedSignal&) = delete;

    bool Raise() noexcept override { return queue_->Push(bell_); }

private:
    std::shared_ptr<Queue> queue_;
    std::shared_ptr<Bell> bell_;
};

PlainEventLoop::PlainEventLoop() : queue_(std::make_shared<Queue>()) {}

PlainEventLoop::~PlainEventLoop() {
    while (queue_->Pop(std::numeric_limits<std::uint64_t>::max())) {
    }
}

std::unique_ptr<Signal> PlainEventLoop::CreateSignal(std::function<void()> handler) {
    return std::make_unique<QueuedSignal>(queue_, std::move(handler));
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
    // Only what is pending now: a ring that comes meanwhile is served by the next call, also when a
    // handler calls Yield itself.
    const std::uint64_t lastTicket = queue_->LastTicket();
    while (const auto bell = queue_->Pop(lastTicket))
        if (!bell->destroyed) bell->handler();
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
    // A handler that yields does not meet itself, and it may stop its own timer.
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
    {
        std::unique_lock lock(queue_->mutex);
        queue_->wake.wait_for(lock, UntilNextTimer(limit), [this] { return queue_->first != nullptr; });
    }
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
