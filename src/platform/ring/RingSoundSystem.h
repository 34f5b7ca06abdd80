#pragma once

#include <functional>
#include <memory>
#include <utility>

#include "core/ports/EventLoop.h"
#include "core/ports/SoundSystem.h"
#include "platform/ring/NotificationHub.h"

namespace sonavex {

// A sound system whose buffers are rings: events, loss handler and devices. The derived class lists and
// opens the devices of one technology.
class RingSoundSystem : public SoundSystem {
public:
    EventHandle CreateEvent(std::function<void(EventHandle)> handler) final {
        return hub_.Create(std::move(handler));
    }
    void DestroyEvent(EventHandle event) final { hub_.Destroy(event); }
    void OnDeviceLost(std::function<void(const RuntimeError&)> handler) final {
        lostHandler_ = std::move(handler);
    }

protected:
    // The loop must outlive the system.
    explicit RingSoundSystem(EventLoop& loop) : loop_(loop), hub_(loop) {}

    EventLoop& Loop() const noexcept { return loop_; }
    const NotificationHub& Hub() const noexcept { return hub_; }
    void ReportLoss(const RuntimeError& error) const;

    // Devices whose CreateBuffer calls the given procedure. It checks the format.
    using CreatePlaybackBuffer =
        std::function<std::unique_ptr<PlaybackBuffer>(const BufferDescription& description)>;
    static std::unique_ptr<PlaybackDevice> PlaybackDeviceOf(CreatePlaybackBuffer create,
                                                            PlaybackCapabilities capabilities = {});
    using CreateCaptureBuffer =
        std::function<std::unique_ptr<CaptureBuffer>(const BufferDescription& description)>;
    static std::unique_ptr<CaptureDevice> CaptureDeviceOf(CreateCaptureBuffer create);

private:
    EventLoop& loop_;
    NotificationHub hub_;
    std::function<void(const RuntimeError&)> lostHandler_;
};

}  // namespace sonavex
