#pragma once

#include <chrono>
#include <thread>

namespace sonavex {

// Limit for waits whose length does not matter: a loaded machine needs seconds for what otherwise takes
// milliseconds.
inline constexpr std::chrono::seconds kPatience{30};

// Sleeps between checks without serving events.
struct Sleep {
    void Wait(std::chrono::nanoseconds time) const { std::this_thread::sleep_for(time); }
};

// Checks all the time, without serving events.
struct Spin {
    void Wait(std::chrono::nanoseconds) const { std::this_thread::yield(); }
};

// Checks the condition about every millisecond and lets the loop wait in between. True when the condition
// holds, false after the limit.
template <class Loop, class Condition>
bool WaitUntil(Loop&& loop, Condition condition, std::chrono::nanoseconds limit) {
    const auto end = std::chrono::steady_clock::now() + limit;
    while (!condition()) {
        if (std::chrono::steady_clock::now() >= end) return false;
        loop.Wait(std::chrono::milliseconds(1));
    }
    return true;
}

template <class Condition>
bool WaitUntil(Condition condition, std::chrono::nanoseconds limit = kPatience) {
    return WaitUntil(Sleep{}, condition, limit);
}

}  // namespace sonavex
