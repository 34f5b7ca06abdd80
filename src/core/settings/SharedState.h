#pragma once

#include <cstdint>

namespace sonavex {

// State that all subsystems read. One instance, owned by the main form or by the headless meter.
struct SharedState {
    std::int32_t SampleRate = 32000;   // Hz, one of SampleRateTable
    std::int32_t OsMajorVersion = 10;  // 6 or more selects the newer mixer and the newer overrun rule
    bool EventsReady = false;          // the capture notifications are armed

    bool NewerGeneration() const noexcept { return OsMajorVersion >= 6; }
};

}  // namespace sonavex
