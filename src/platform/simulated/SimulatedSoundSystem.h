#pragma once

#include <atomic>
#include <condition_variable>
#include <map>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "core/ports/EventLoop.h"
#include "core/ports/SoundSystem.h"
#include "platform/ring/NotificationHub.h"
#include "platform/simulated/SimulatedCard.h"

namespace sonavex {

// The built-in simulated sound card as a sound system: one playback and one capture device. Its
// description says that it measures nothing real.
class SimulatedSoundSystem : public SoundSystem {
public:
    enum class Pace {
        kRealTime,  // a thread moves the card by the clock
        kStepped    // only Card().Step moves it
    };
    // What can be made to fail.
    enum class Operation { kEnumerate, kPlaybackDevice, kCaptureDevice, kPlaybackBuffer, kCaptureBuffer };

    static constexpr const char* kIdentifier = "simulated";
    static constexpr const char* kDescription = "Simulated sound card (not a measurement)";

    // The loop must outlive this object.
    SimulatedSoundSystem(EventLoop& loop, Pace pace);
    ~SimulatedSoundSystem() override;
    SimulatedSoundSystem(const SimulatedSoundSystem&) = delete;
    SimulatedSoundSystem& operator=(const SimulatedSoundSystem&) = delete;

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
    bool Simulated() const noexcept override { return true; }

    SimulatedCard& Card() noexcept { return card_; }
    // Takes the card away: buffers in use are lost for good, devices no longer listed. Buffers made
    // after Plug work again.
    void Unplug();
    void Plug() { card_.SetPlugged(true); }
    // The next such operation fails once with this error.
    void FailNext(Operation operation, const RuntimeError& error);
    // Free hardware mixing buffers that the card reports (1 unless set).
    void SetFreeHardwareBuffers(std::int32_t count) noexcept { freeHardwareBuffers_ = count; }

private:
    struct Connection;
    class Playback;
    class Capture;
    class PlayBuffer;
    class CaptBuffer;

    SoundDeviceList Enumerate();
    void RequirePlugged(const std::string& identifier) const;
    void FailIfAsked(Operation operation);
    std::shared_ptr<const Connection> Connect();
    void ReportLostBuffers();
    void Run();
    void SetRate(std::uint32_t rateHz) {
        rateHz_.store(rateHz);
        card_.SetRate(rateHz);
    }

    NotificationHub hub_;
    SimulatedCard card_;
    std::function<void(const RuntimeError&)> lostHandler_;
    std::unique_ptr<Signal> lostBell_;
    std::map<Operation, RuntimeError> failures_;
    std::vector<std::weak_ptr<Connection>> connections_;  // of the buffers
    std::int32_t freeHardwareBuffers_ = 1;

    std::atomic<std::uint32_t> rateHz_{0};
    std::mutex mutex_;
    std::condition_variable wake_;
    bool stopping_ = false;
    std::thread thread_;
};

}  // namespace sonavex
