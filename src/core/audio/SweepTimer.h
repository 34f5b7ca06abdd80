#pragma once

#include <chrono>
#include <functional>

#include "core/generator/Generator.h"
#include "core/ports/EventLoop.h"

namespace sonavex {

// HiTimer1: paces the sweeps with one step per millisecond while enabled. Late ticks are not made up for; the
// sweep then lasts longer.
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

    // One tick. Does nothing inside another tick. Ends early if the timer is disabled meanwhile.
    void Tick();
    // Whether a tick is running.
    bool Ticking() const noexcept { return ticking_; }

private:
    EventLoop& loop_;
    Generator& generator_;
    std::function<bool()> paused_;
    std::chrono::milliseconds interval_{1};
    EventLoop::TimerId timer_ = 0;
    bool ticking_ = false;
};

}  // namespace sonavex
