#pragma once

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <utility>

#include "core/ports/SoundSystem.h"

namespace sonavex {

// The devices of a sound server, and beside them those that are reached directly. The server's come
// first, and the primary device is the server's as long as it has a device; otherwise the direct
// devices stand alone. An identifier that begins with the given prefix belongs to a direct device.
class CombinedSoundSystem : public SoundSystem {
public:
    CombinedSoundSystem(std::unique_ptr<SoundSystem> server, std::unique_ptr<SoundSystem> direct,
                        std::string directPrefix);
    ~CombinedSoundSystem() override;
    CombinedSoundSystem(const CombinedSoundSystem&) = delete;
    CombinedSoundSystem& operator=(const CombinedSoundSystem&) = delete;

    // The server's failure is thrown when there is no direct device either.
    SoundDeviceList EnumeratePlayback() override;
    SoundDeviceList EnumerateCapture() override;
    std::unique_ptr<PlaybackDevice> CreatePlaybackDevice(const std::string& identifier) override;
    std::unique_ptr<CaptureDevice> CreateCaptureDevice(const std::string& identifier) override;
    EventHandle CreateEvent(std::function<void(EventHandle)> handler) override;
    void DestroyEvent(EventHandle event) override;
    void OnDeviceLost(std::function<void(const RuntimeError&)> handler) override;

private:
    class Capture;
    class Buffer;

    bool Direct(const std::string& identifier) const { return identifier.starts_with(directPrefix_); }

    std::unique_ptr<SoundSystem> server_;
    std::unique_ptr<SoundSystem> direct_;
    std::string directPrefix_;

    // An event is one in each system: its buffer decides which of them fires.
    struct EventPair {
        EventHandle ofServer;
        EventHandle ofDirect;
    };
    std::map<EventHandle, EventPair> events_;
    EventHandle lastEvent_ = 0;
};

}  // namespace sonavex
