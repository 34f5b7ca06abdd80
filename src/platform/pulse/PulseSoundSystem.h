#pragma once

#include <memory>
#include <string>

#include "platform/ring/RingSoundSystem.h"

namespace sonavex {

class PulseContext;

// The devices of a sound server that speaks the PulseAudio protocol. The identifier of a device is the
// server's name of the sink or source. After the server was lost, each enumeration or creation tries to
// connect again. The server is never started from here.
class PulseSoundSystem : public RingSoundSystem {
public:
    // The loop must outlive this object. An empty address stands for the environment's server.
    explicit PulseSoundSystem(EventLoop& loop, const std::string& serverAddress = {});
    ~PulseSoundSystem() override;
    PulseSoundSystem(const PulseSoundSystem&) = delete;
    PulseSoundSystem& operator=(const PulseSoundSystem&) = delete;

    SoundDeviceList EnumeratePlayback() override;
    SoundDeviceList EnumerateCapture() override;
    RateList ExtendedPlaybackRates(const std::string& identifier) override;
    RateList ExtendedCaptureRates(const std::string& identifier) override;
    std::unique_ptr<PlaybackDevice> CreatePlaybackDevice(const std::string& identifier) override;
    std::unique_ptr<CaptureDevice> CreateCaptureDevice(const std::string& identifier) override;

private:
    std::unique_ptr<PulseContext> context_;
};

}  // namespace sonavex
