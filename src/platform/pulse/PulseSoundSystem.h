#pragma once

#include <functional>
#include <memory>
#include <string>

#include "core/ports/EventLoop.h"
#include "core/ports/SoundSystem.h"
#include "platform/ring/NotificationHub.h"

namespace sonavex {

class PulseContext;

// The devices of a sound server that speaks the PulseAudio protocol. The identifier of a device is
// the server's name of the sink or source. A server that was lost is looked for again by the next
// enumeration or creation; the server is never started from here.
class PulseSoundSystem : public SoundSystem {
public:
    // The loop must outlive this object. An empty address stands for the environment's server.
    explicit PulseSoundSystem(EventLoop& loop, const std::string& serverAddress = {});
    ~PulseSoundSystem() override;
    PulseSoundSystem(const PulseSoundSystem&) = delete;
    PulseSoundSystem& operator=(const PulseSoundSystem&) = delete;

    SoundDeviceList EnumeratePlayback() override;
    SoundDeviceList EnumerateCapture() override;
    std::unique_ptr<PlaybackDevice> CreatePlaybackDevice(const std::string& identifier) override;
    std::unique_ptr<CaptureDevice> CreateCaptureDevice(const std::string& identifier) override;
    EventHandle CreateEvent(std::function<void(EventHandle)> handler) override {
        return hub_.Create(std::move(handler));
    }
    void DestroyEvent(EventHandle event) override { hub_.Destroy(event); }
    void OnDeviceLost(std::function<void(const RuntimeError&)> handler) override {
        lostHandler_ = std::move(handler);
    }

private:
    class Playback;
    class Capture;

    void ReportLoss(const RuntimeError& error) const;

    EventLoop& loop_;
    NotificationHub hub_;
    std::function<void(const RuntimeError&)> lostHandler_;
    std::unique_ptr<PulseContext> context_;
};

}  // namespace sonavex
