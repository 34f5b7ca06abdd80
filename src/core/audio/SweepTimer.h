#pragma once

#include <chrono>
#include <functional>

#include "core/generator/Generator.h"
#include "core/ports/EventLoop.h"

namespace sonavex {

// HiTimer1: paces the sweeps with one step a millisecond while enabled. A tick that is late is not
// made up for; the sweep then lasts longer. User-interface thread only.
class SweepTimer {
public:
    // paused: while it answers true (the engine is being rebuilt) ticks do nothing.
    SweepTimer(EventLoop& loop, Generator& generator, std::function<bool()> paused);
    ~SweepTimer();
    SweepTimer(const SweepTimer&) = delete;
    SweepTimer& operator=(const SweepTimer&) = delete;

    void SetInterval(std::chrono::milliseconds interval) noexcept { interval_ = interval; }
    bool Enabled() const noexcept { return timer_ != 0; }
    void SetEnabled(bool enabled);

    // One tick. Does nothing inside another tick, to whatever that one yields. Ends early when the
    // timer is disabled meanwhile.
    void Tick();
    // A tick is under way: somebody is called from within it.
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
