#pragma once

namespace sonavex {

// What paces the sweeps, as the generator's panels see it: it ticks every millisecond while enabled.
// User-interface thread only.
class SweepClock {
public:
    virtual ~SweepClock() = default;

    // Enabling an enabled clock, or disabling a disabled one, changes nothing.
    virtual void SetEnabled(bool enabled) = 0;
};

}  // namespace sonavex
