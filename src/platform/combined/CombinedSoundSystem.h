#pragma once

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <utility>

#include "core/ports/SoundSystem.h"

namespace sonavex {

// The devices of a sound server and those that are reached directly, as one list. The server's devices come
// first, and the primary device is that of the server. While the server has no device, the list holds the
// direct devices alone, with their primary device. An identifier that begins with the given prefix belongs
// to a direct device.
class CombinedSoundSystem : public SoundSystem {
public:
    CombinedSoundSystem(std::unique_ptr<SoundSystem> server, std::unique_ptr<SoundSystem> direct,
                        std::string directPrefix);
    ~CombinedSoundSystem() override;
    CombinedSoundSystem(const CombinedSoundSystem&) = delete;
    CombinedSoundSystem& operator=(const CombinedSoundSystem&) = delete;

    // Without a direct device, a failure of the server is thrown.
    SoundDeviceList EnumeratePlayback() override;
    SoundDeviceList EnumerateCapture() override;
    RateList ExtendedPlaybackRates(const std::string& identifier) override;
    RateList ExtendedCaptureRates(const std::string& identifier) override;
    std::unique_ptr<PlaybackDevice> CreatePlaybackDevice(const std::string& identifier) override;
    std::unique_ptr<CaptureDevice> CreateCaptureDevice(const std::string& identifier) override;
    EventHandle CreateEvent(std::function<void(EventHandle)> handler) override;
    void DestroyEvent(EventHandle event) override;
    void OnDeviceLost(std::function<void(const RuntimeError&)> handler) override;

private:
    class Capture;
    class Buffer;

    SoundSystem& SystemOf(const std::string& identifier) const;
    // call(system of the device).
    template <class Call>
    auto OfDevice(const std::string& identifier, Call call) const;

    std::unique_ptr<SoundSystem> server_;
    std::unique_ptr<SoundSystem> direct_;
    std::string directPrefix_;

    // A combined event is an event of each system. The buffer that it is set for decides which one fires.
    struct EventPair {
        EventHandle ofServer;
        EventHandle ofDirect;
    };
    std::map<EventHandle, EventPair> events_;
    EventHandle lastEvent_ = 0;
};

}  // namespace sonavex
