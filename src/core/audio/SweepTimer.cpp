#include "core/audio/SweepTimer.h"

#include <algorithm>
#include <utility>

namespace sonavex {
namespace {

// Limits the jump of a sweep after a long interruption, for example by a message.
constexpr std::int64_t kMostOwed = 1000;

}  // namespace

SweepTimer::SweepTimer(EventLoop& loop, Generator& generator, std::function<bool()> paused)
    : loop_(loop), generator_(generator), paused_(std::move(paused)) {}

SweepTimer::~SweepTimer() {
    SetEnabled(false);
}

void SweepTimer::SetEnabled(bool enabled) {
    if (enabled == Enabled()) return;
    if (enabled) {
        CountFromNow();
        timer_ = loop_.StartTimer(interval_, [this] { Tick(); });
        return;
    }
    loop_.StopTimer(timer_);
    timer_ = 0;
}

void SweepTimer::CountFromNow() {
    countStart_ = loop_.Now();
    counted_ = 0;
}

void SweepTimer::Tick() {
    if (ticking_ || !Enabled() || paused_()) return;
    struct EndOfTick {
        SweepTimer& timer;
        ~EndOfTick() {
            timer.ticking_ = false;
            if (timer.AfterTick) timer.AfterTick();
        }
    };
    ticking_ = true;
    const EndOfTick endOfTick{*this};
    ++counted_;
    generator_.AdvanceSweep([this] {
        loop_.YieldWithoutInput();
        return Enabled() && !paused_();
    });
    if (Enabled() && !paused_()) MakeOwedSteps();
}

// One step for every whole millisecond that is not counted yet.
void SweepTimer::MakeOwedSteps() {
    const std::int64_t due = (loop_.Now() - countStart_) / std::chrono::milliseconds(1);
    counted_ = std::max(counted_, due - kMostOwed);
    while (counted_ < due) {
        ++counted_;
        generator_.AdvanceSweep([] { return true; });
    }
}

}  // namespace sonavex
