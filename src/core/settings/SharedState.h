#pragma once

#include <cstdint>

namespace sonavex {

// Whether this generation of the operating system has the newer mixers and the newer overrun rule.
constexpr bool IsNewerGeneration(std::int32_t osMajorVersion) noexcept {
    return osMajorVersion >= 6;
}

// State that all subsystems read. One instance, owned by the Instrument.
struct SharedState {
    std::int32_t SampleRate = 32000;  // Hz, one of SampleRateTable or kExtendedRates
    std::int32_t OsMajorVersion = 10;
    bool EventsReady = false;  // the capture notifications are armed

    bool NewerGeneration() const noexcept { return IsNewerGeneration(OsMajorVersion); }
};

}  // namespace sonavex
