#pragma once

#include <cstdint>
#include <memory>
#include <mutex>
#include <vector>

#include "platform/ring/CaptureRing.h"
#include "platform/ring/PlaybackRing.h"
#include "platform/simulated/DeviceUnderTest.h"
#include "platform/simulated/MixerPath.h"

namespace sonavex {

// The hardware of the built-in card: whatever is played goes through the mixer and the device under
// test and comes back as capture, frame for frame. Step may run on any one thread at a time; the rest is for
// the user-interface thread.
class SimulatedCard {
public:
    SimulatedCard() : device_(DeviceUnderTestModel{}) {}

    // Replaces the device under test; what its delay still holds is gone.
    void SetDeviceUnderTest(DeviceUnderTestModel model);

    void SetMixerGains(const MixerGains& gains);
    void SetRate(std::uint32_t rateHz);

    // The rings in use: each replaces the one before.
    void ConnectPlayback(std::shared_ptr<PlaybackRing> ring);
    void ConnectCapture(std::shared_ptr<CaptureRing> ring);
    // A ring that is not in use (any more) is ignored.
    void Disconnect(const PlaybackRing& ring);
    void Disconnect(const CaptureRing& ring);

    // Moves so many frames through the card, in device periods of at most 256 frames. Does nothing
    // while stalled or unplugged.
    void Step(std::size_t frames);

    // A stalled card keeps its devices but moves nothing.
    void SetStalled(bool stalled);
    // Unplugging disconnects the rings for good.
    void SetPlugged(bool plugged);
    bool Plugged() const;

private:
    void StepPeriod(std::size_t frames);

    mutable std::mutex mutex_;  // connections and device against the pacing thread
    std::shared_ptr<PlaybackRing> playback_;
    std::shared_ptr<CaptureRing> capture_;
    MixerPath mixer_;
    DeviceUnderTest device_;
    std::vector<std::int16_t> played_;
    std::vector<std::int16_t> captured_;
    bool stalled_ = false;
    bool plugged_ = true;
};

}  // namespace sonavex
