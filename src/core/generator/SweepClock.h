#pragma once

namespace sonavex {

// Paces the sweeps: ticks every millisecond while enabled.
class SweepClock {
public:
    virtual ~SweepClock() = default;

    // Setting the present state again changes nothing.
    virtual void SetEnabled(bool enabled) = 0;
};

}  // namespace sonavex
