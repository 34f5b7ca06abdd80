#pragma once

#include <array>
#include <cstdint>

namespace sonavex {

// Contents of the fake card's file. The plugin that libasound loads and the tests share it.
enum FakeControl : std::uint32_t {
    kFakeMaster,
    kFakeMasterSwitch,
    kFakePcm,
    kFakePcmSwitch,
    kFakeLine,
    kFakeLineSwitch,
    kFakeMic,
    kFakeMicSwitch,
    kFakeBoost,
    kFakeCapture,
    kFakeCaptureSwitch,
    kFakeSource,
    kFakeMonitor,
    kFakeBass,
    kFakeTreble,
    kFakeBassBoost,
    kFakeLineBoost,
    kFakePlainBoost,
    kFakeControls
};

struct FakeMixerState {
    std::uint32_t pulledOut = 0;
    std::array<std::array<std::int32_t, 2>, kFakeControls> values{};
    std::array<std::uint8_t, kFakeControls> missing{};  // 1: the driver does not offer the control
};

}  // namespace sonavex
