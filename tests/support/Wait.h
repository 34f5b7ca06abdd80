#pragma once

#include <chrono>
#include <thread>

namespace sonavex {

// For waits whose length does not matter: a loaded machine needs seconds for what takes milliseconds
// otherwise.
inline constexpr std::chrono::seconds kPatience{30};

// Serves nothing while a test waits.
struct Sleep {
    void Wait(std::chrono::nanoseconds time) const { std::this_thread::sleep_for(time); }
};

// Checks the condition about every millisecond and lets the loop wait in between. True as soon as the
// condition holds, false when the limit is over.
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
