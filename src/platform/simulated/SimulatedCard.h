#pragma once

#include <cstdint>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

#include "platform/ring/CaptureRing.h"
#include "platform/ring/PlaybackRing.h"
#include "platform/simulated/DeviceUnderTest.h"

namespace sonavex {

// The hardware of the built-in card: whatever is played goes through the device under test and comes
// back as capture, frame for frame. Step may run on any one thread at a time; the rest is for the
// user-interface thread.
class SimulatedCard {
public:
    SimulatedCard() : device_(DeviceUnderTestModel{}) {}

    // Replaces the device under test; what its delay still holds is gone.
    void SetDeviceUnderTest(DeviceUnderTestModel model);

    // The ring in use from now on, in place of another one.
    void ConnectPlayback(std::shared_ptr<PlaybackRing> ring);
    void ConnectCapture(std::shared_ptr<CaptureRing> ring);
    // No ring in use, unless another one has taken this one's place already.
    void DisconnectPlayback(const std::shared_ptr<PlaybackRing>& ring);
    void DisconnectCapture(const std::shared_ptr<CaptureRing>& ring);

    // Moves so many frames through the card, in device periods of at most 256 frames. Does nothing
    // while stalled or unplugged.
    void Step(std::size_t frames);

    // A stalled card keeps its devices but moves nothing.
    void SetStalled(bool stalled);
    void SetPlugged(bool plugged);
    bool Plugged() const;

private:
    void StepPeriod(std::size_t frames);

    mutable std::mutex mutex_;  // connections and device against the pacing thread
    std::shared_ptr<PlaybackRing> playback_;
    std::shared_ptr<CaptureRing> capture_;
    DeviceUnderTest device_;
    std::vector<std::int16_t> played_;
    std::vector<std::int16_t> captured_;
    bool stalled_ = false;
    bool plugged_ = true;
};

}  // namespace sonavex
