#include "platform/plain/SignalQueue.h"

#include <limits>
#include <utility>

namespace sonavex {

struct SignalQueue::Entry {
    std::function<void()> handler;
    std::atomic<bool> raised{false};  // and not delivered yet
    bool destroyed = false;           // user-interface thread only
    // The rest is set by the thread that raised the signal and then belongs to the user-interface thread.
    std::shared_ptr<Entry> self;  // keeps the entry alive while it is queued
    Entry* next = nullptr;
    std::uint64_t ticket = 0;
};

class SignalQueue::QueuedSignal : public Signal {
public:
    QueuedSignal(SignalQueue& queue, std::function<void()> handler)
        : queue_(queue), entry_(std::make_shared<Entry>()) {
        entry_->handler = std::move(handler);
    }
    ~QueuedSignal() override { entry_->destroyed = true; }
    QueuedSignal(const QueuedSignal&) = delete;
    QueuedSignal& operator=(const QueuedSignal&) = delete;

    bool Raise() noexcept override { return queue_.Push(entry_); }

private:
    SignalQueue& queue_;
    std::shared_ptr<Entry> entry_;
};

SignalQueue::~SignalQueue() {
    Collect();
    while (PopUpTo(std::numeric_limits<std::uint64_t>::max())) {
    }
}

std::unique_ptr<Signal> SignalQueue::Create(std::function<void()> handler) {
    return std::make_unique<QueuedSignal>(*this, std::move(handler));
}

bool SignalQueue::Push(const std::shared_ptr<Entry>& entry) noexcept {
    if (entry->raised.exchange(true)) return false;
    entry->self = entry;
    Entry* top = raised_.load();
    do {
        entry->next = top;
    } while (!raised_.compare_exchange_weak(top, entry.get()));
    // Where the stack was not empty, the thread that raised the first signal wakes the loop.
    if (top == nullptr) wake_();
    return true;
}

void SignalQueue::Collect() noexcept {
    Entry* oldest = nullptr;
    for (Entry* entry = raised_.exchange(nullptr); entry != nullptr;)
        entry = std::exchange(entry->next, std::exchange(oldest, entry));
    for (Entry* entry = oldest; entry != nullptr; entry = std::exchange(entry->next, nullptr)) {
        entry->ticket = ++lastTicket_;
        (youngest_ != nullptr ? youngest_->next : oldest_) = entry;
        youngest_ = entry;
    }
}

// The oldest collected signal; null when there is none or its ticket is larger than `ticket`.
std::shared_ptr<SignalQueue::Entry> SignalQueue::PopUpTo(std::uint64_t ticket) noexcept {
    if (oldest_ == nullptr || oldest_->ticket > ticket) return nullptr;
    std::shared_ptr<Entry> entry = std::move(oldest_->self);
    oldest_ = entry->next;
    if (oldest_ == nullptr) youngest_ = nullptr;
    entry->raised = false;
    return entry;
}

void SignalQueue::Deliver(const Run& run) {
    Collect();
    // A nested Deliver collects younger signals, and delivers them itself.
    const std::uint64_t lastTicket = lastTicket_;
    while (const auto entry = PopUpTo(lastTicket))
        if (!entry->destroyed) run(entry->handler);
}

}  // namespace sonavex
