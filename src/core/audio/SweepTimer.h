#pragma once

#include <chrono>
#include <cstdint>
#include <functional>

#include "core/generator/Generator.h"
#include "core/ports/EventLoop.h"

namespace sonavex {

// HiTimer1: paces the sweeps with one step per millisecond while enabled. A late tick also makes the steps
// that are owed, at most 1000 of them, so a sweep lasts as long as its sweep time.
class SweepTimer {
public:
    // paused: while it returns true (the engine is being rebuilt), ticks do nothing.
    SweepTimer(EventLoop& loop, Generator& generator, std::function<bool()> paused);
    ~SweepTimer();
    SweepTimer(const SweepTimer&) = delete;
    SweepTimer& operator=(const SweepTimer&) = delete;

    void SetInterval(std::chrono::milliseconds interval) noexcept { interval_ = interval; }
    bool Enabled() const noexcept { return timer_ != 0; }
    void SetEnabled(bool enabled);

    // One tick. Does nothing inside another tick. Ends early if the timer is disabled meanwhile. The owed
    // steps deliver no events. A step that fails counts and ends the tick.
    void Tick();
    // Call after the engine was rebuilt: no steps are owed for the time until now.
    void ForgetOwed() { CountFromNow(); }
    // Whether a tick is running. Its yields deliver no user input.
    bool Ticking() const noexcept { return ticking_; }
    // Called at the end of every tick, also of one that fails. Must not throw. May be empty.
    std::function<void()> AfterTick;

private:
    void CountFromNow();
    void MakeOwedSteps();

    EventLoop& loop_;
    Generator& generator_;
    std::function<bool()> paused_;
    std::chrono::milliseconds interval_{1};
    EventLoop::TimerId timer_ = 0;
    std::chrono::nanoseconds countStart_{0};
    std::int64_t counted_ = 0;  // steps since the start of the count
    bool ticking_ = false;
};

}  // namespace sonavex
