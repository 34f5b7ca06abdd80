#pragma once

#include <atomic>
#include <cstdint>
#include <mutex>
#include <vector>

#include "platform/ring/CaptureRing.h"
#include "platform/ring/PlaybackRing.h"
#include "platform/simulated/DeviceUnderTest.h"
#include "platform/simulated/MixerPath.h"

namespace sonavex {

// The hardware of the built-in card. Played frames pass the mixer and the device under test and come back
// as captured frames, one for one. Step may run on any one thread at a time; the rest is for the
// user-interface thread.
class SimulatedCard {
public:
    SimulatedCard() : device_(DeviceUnderTestModel{}), bits_(device_.Bits()) {}

    // Replaces the device under test. Frames in its delay are dropped.
    void SetDeviceUnderTest(DeviceUnderTestModel model);
    // Bits of the converters. Any thread.
    int Bits() const noexcept { return bits_.load(std::memory_order_relaxed); }

    // Whether input and output run on the same clock. Any thread.
    bool OneClock() const noexcept { return oneClock_.load(std::memory_order_relaxed); }

    void SetMixerGains(const MixerGains& gains);
    void SetRate(std::uint32_t rateHz);

    // The ring that is played or filled, in place of an earlier one. Disconnect it before it is destroyed.
    void Connect(PlaybackRing& ring);
    void Connect(CaptureRing& ring);
    // Ignores a ring that is not connected.
    void Disconnect(const PlaybackRing& ring);
    void Disconnect(const CaptureRing& ring);

    // Moves this many frames through the card, in periods of at most 256 frames. Does nothing while
    // stalled or unplugged.
    void Step(std::size_t frames);

    // A stalled card keeps its devices but moves nothing.
    void SetStalled(bool stalled);
    // Unplugging disconnects the rings.
    void SetPlugged(bool plugged);
    bool Plugged() const;

private:
    void StepPeriod(std::size_t frames);

    mutable std::mutex mutex_;  // held by Step and by every change
    PlaybackRing* playback_ = nullptr;
    CaptureRing* capture_ = nullptr;
    MixerPath mixer_;
    DeviceUnderTest device_;
    std::atomic<int> bits_;  // of device_
    std::atomic<bool> oneClock_{true};
    std::vector<std::int32_t> played_;
    std::vector<std::int32_t> captured_;
    bool stalled_ = false;
    bool plugged_ = true;
};

}  // namespace sonavex
