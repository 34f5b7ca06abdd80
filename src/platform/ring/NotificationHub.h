#pragma once

#include <functional>
#include <map>
#include <memory>

#include "core/ports/EventLoop.h"
#include "core/ports/SoundSystem.h"

namespace sonavex {

// The notification events of one sound system. Each has a handle and a signal of the event loop. The
// signals may be raised on any thread; everything else is for the user-interface thread.
class NotificationHub {
public:
    // The loop must outlive the hub and the signals of its events.
    explicit NotificationHub(EventLoop& loop) noexcept : loop_(loop) {}

    EventHandle Create(std::function<void(EventHandle)> handler);
    // Discards a notification that was not delivered yet. An unknown handle is ignored.
    void Destroy(EventHandle event);
    // The signal of an event; error 5 for an unknown handle. Raising it after Destroy has no effect.
    std::shared_ptr<Signal> SignalOf(EventHandle event) const;

private:
    class Event;

    EventLoop& loop_;
    std::map<EventHandle, std::shared_ptr<Event>> events_;
    EventHandle last_ = 0;
};

}  // namespace sonavex
