#pragma once

#include <functional>
#include <memory>
#include <string>

#include "core/ports/EventLoop.h"
#include "core/ports/SoundSystem.h"
#include "platform/ring/NotificationHub.h"

namespace sonavex {

// Sound cards without a sound server between: the samples that the instrument makes are those the
// card gets, bit for bit, where the card runs at the rate (PathNote of a buffer says where not).
// A card has one user at a time. Listed are the devices of the cards and the PCMs that the user's
// ALSA configuration defines; a card that is plugged in later is found by the next enumeration.
class AlsaSoundSystem : public SoundSystem {
public:
    // Begins every identifier but the primary device's; the name of the PCM follows.
    static const std::string kIdentifierPrefix;

    // The loop must outlive this object. From then on libasound prints nothing in this process.
    explicit AlsaSoundSystem(EventLoop& loop);

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
};

}  // namespace sonavex
