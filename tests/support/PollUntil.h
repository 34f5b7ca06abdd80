#pragma once

#include <chrono>

#include "platform/plain/PlainEventLoop.h"

namespace sonavex {

// Like PlainEventLoop::RunUntil for a condition that changes without an event: looked at every
// millisecond.
template <class Condition>
bool PollUntil(PlainEventLoop& loop, Condition condition, std::chrono::nanoseconds limit) {
    const auto end = loop.Now() + limit;
    while (!condition()) {
        if (loop.Now() >= end) return false;
        loop.Wait(std::chrono::milliseconds(1));
    }
    return true;
}

}  // namespace sonavex
