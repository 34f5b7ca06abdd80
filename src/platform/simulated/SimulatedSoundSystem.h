#pragma once

#include <atomic>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "platform/ring/RingSoundSystem.h"
#include "platform/simulated/SimulatedCard.h"

namespace sonavex {

// The built-in simulated sound card as a sound system with one playback and one capture device. Its
// description says that it measures nothing real.
class SimulatedSoundSystem : public RingSoundSystem {
public:
    enum class Pace {
        kRealTime,  // a thread moves frames by the system's clock
        kStepped    // only Card().Step moves frames
    };

    static constexpr const char* kIdentifier = "simulated";
    static constexpr const char* kDescription = "Simulated sound card (not a measurement)";

    // The loop must outlive this object.
    SimulatedSoundSystem(EventLoop& loop, Pace pace);
    ~SimulatedSoundSystem() override;
    SimulatedSoundSystem(const SimulatedSoundSystem&) = delete;
    SimulatedSoundSystem& operator=(const SimulatedSoundSystem&) = delete;

    SoundDeviceList EnumeratePlayback() override;
    SoundDeviceList EnumerateCapture() override;
    RateList ExtendedPlaybackRates(const std::string& identifier) override;
    RateList ExtendedCaptureRates(const std::string& identifier) override;
    std::unique_ptr<PlaybackDevice> CreatePlaybackDevice(const std::string& identifier) override;
    std::unique_ptr<CaptureDevice> CreateCaptureDevice(const std::string& identifier) override;
    bool Simulated() const noexcept override { return true; }

    SimulatedCard& Card() noexcept { return card_; }
    // Removes the card: existing buffers are lost for good, and the devices are no longer listed. Buffers
    // that are created after Plug work.
    void Unplug();
    void Plug() { card_.SetPlugged(true); }

private:
    struct Connection;
    class SimulatedPlayback;
    class SimulatedCapture;

    SoundDeviceList Enumerate();
    void RequirePlugged(const std::string& identifier) const;
    std::shared_ptr<const Connection> Connect(const WaveFormat& format);
    void ReportLostBuffers();
    void Run();

    SimulatedCard card_;
    std::unique_ptr<Signal> lostSignal_;
    std::vector<std::weak_ptr<Connection>> connections_;  // of the buffers

    std::atomic<std::uint32_t> rateHz_{0};
    std::mutex mutex_;
    std::condition_variable wake_;
    bool stopping_ = false;
    std::thread thread_;
};

}  // namespace sonavex
