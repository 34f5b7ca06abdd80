#include "core/audio/SweepTimer.h"

#include <utility>

#include "core/support/ScopedFlag.h"

namespace sonavex {

SweepTimer::SweepTimer(EventLoop& loop, Generator& generator, std::function<bool()> paused)
    : loop_(loop), generator_(generator), paused_(std::move(paused)) {}

SweepTimer::~SweepTimer() {
    SetEnabled(false);
}

void SweepTimer::SetEnabled(bool enabled) {
    if (enabled == Enabled()) return;
    if (enabled) {
        timer_ = loop_.StartTimer(interval_, [this] { Tick(); });
        return;
    }
    loop_.StopTimer(timer_);
    timer_ = 0;
}

void SweepTimer::Tick() {
    if (ticking_ || !Enabled() || paused_()) return;
    const ScopedFlag ticking(ticking_);
    generator_.AdvanceSweep([this] {
        loop_.Yield();
        return Enabled() && !paused_();
    });
}

}  // namespace sonavex
