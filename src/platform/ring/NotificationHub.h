#pragma once

#include <functional>
#include <map>
#include <memory>

#include "core/ports/EventLoop.h"
#include "core/ports/SoundSystem.h"

namespace sonavex {

// Notification events of one sound system: a handle for each, backed by a signal of the event loop.
// User-interface thread only; the signals handed out may be raised on any thread.
class NotificationHub {
public:
    // The loop must outlive the hub.
    explicit NotificationHub(EventLoop& loop) noexcept : loop_(loop) {}

    EventHandle Create(std::function<void(EventHandle)> handler);
    // Discards what is waiting. An unknown handle is ignored.
    void Destroy(EventHandle event);
    // The bell of an event; error 5 for an unknown handle. Valid as long as somebody holds it; after
    // Destroy it rings for nobody.
    std::shared_ptr<Signal> SignalOf(EventHandle event) const;

private:
    EventLoop& loop_;
    std::map<EventHandle, std::shared_ptr<Signal>> events_;
    EventHandle last_ = 0;
};

}  // namespace sonavex
