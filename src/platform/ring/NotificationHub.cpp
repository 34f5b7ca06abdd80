#include "platform/ring/NotificationHub.h"

#include <utility>

namespace sonavex {

class NotificationHub::Event : public Signal {
public:
    Event(EventLoop& loop, EventHandle handle, std::function<void(EventHandle)> handler)
        : state_(std::make_shared<State>(State{std::move(handler)})),
          signal_(loop.CreateSignal([state = state_, handle] {
              // The handler may destroy its event, and this closure with it.
              const auto keep = state;  // NOLINT(performance-unnecessary-copy-initialization)
              if (keep->enabled) keep->handler(handle);
          })) {}

    bool Raise() noexcept override { return signal_->Raise(); }
    // Call when the event is destroyed. A ring may hold its signal and raise it later; the handler is then
    // not called.
    void Disable() noexcept { state_->enabled = false; }

private:
    struct State {
        std::function<void(EventHandle)> handler;
        bool enabled = true;  // user-interface thread only
    };

    std::shared_ptr<State> state_;
    std::unique_ptr<Signal> signal_;
};

EventHandle NotificationHub::Create(std::function<void(EventHandle)> handler) {
    const EventHandle event = ++last_;
    events_.emplace(event, std::make_shared<Event>(loop_, event, std::move(handler)));
    return event;
}

void NotificationHub::Destroy(EventHandle event) {
    const auto found = events_.find(event);
    if (found == events_.end()) return;
    found->second->Disable();
    events_.erase(found);
}

std::shared_ptr<Signal> NotificationHub::SignalOf(EventHandle event) const {
    const auto found = events_.find(event);
    if (found == events_.end()) throw RuntimeError(error_number::kInvalidCall);
    return found->second;
}

}  // namespace sonavex
