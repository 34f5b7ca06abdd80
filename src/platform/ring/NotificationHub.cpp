#include "platform/ring/NotificationHub.h"

#include <utility>

namespace sonavex {
namespace {

// What the rings hold of an event. The event's own signal goes when the event is destroyed; a ring
// that still holds this object then rings for nobody.
struct EventState {
    std::function<void(EventHandle)> handler;
    bool alive = true;  // user-interface thread only
};

class EventSignal : public Signal {
public:
    EventSignal(EventLoop& loop, EventHandle event, std::function<void(EventHandle)> handler)
        : state_(std::make_shared<EventState>()) {
        state_->handler = std::move(handler);
        bell_ = loop.CreateSignal([state = state_, event] {
            // The handler may destroy its own event, and this closure with it.
            const auto keep = state;  // NOLINT(performance-unnecessary-copy-initialization)
            if (keep->alive) keep->handler(event);
        });
    }

    bool Raise() noexcept override { return bell_->Raise(); }
    void Silence() noexcept { state_->alive = false; }

private:
    std::shared_ptr<EventState> state_;
    std::unique_ptr<Signal> bell_;
};

}  // namespace

EventHandle NotificationHub::Create(std::function<void(EventHandle)> handler) {
    const EventHandle event = ++last_;
    events_.emplace(event, std::make_shared<EventSignal>(loop_, event, std::move(handler)));
    return event;
}

void NotificationHub::Destroy(EventHandle event) {
    const auto found = events_.find(event);
    if (found == events_.end()) return;
    static_cast<EventSignal&>(*found->second).Silence();
    events_.erase(found);
}

std::shared_ptr<Signal> NotificationHub::SignalOf(EventHandle event) const {
    const auto found = events_.find(event);
    if (found == events_.end()) throw RuntimeError(error_number::kInvalidCall);
    return found->second;
}

}  // namespace sonavex
