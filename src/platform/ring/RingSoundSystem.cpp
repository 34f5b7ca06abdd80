#include "platform/ring/RingSoundSystem.h"

namespace sonavex {
namespace {

class RingPlaybackDevice : public PlaybackDevice {
public:
    using Create = std::function<std::unique_ptr<PlaybackBuffer>(const BufferDescription&)>;

    RingPlaybackDevice(Create create, PlaybackCapabilities capabilities)
        : create_(std::move(create)), capabilities_(capabilities) {}
    // Has no effect: servers treat all programs alike, and an opened card has only one user.
    void SetCooperativeLevel(std::int32_t) override {}
    PlaybackCapabilities GetCapabilities() override { return capabilities_; }
    std::unique_ptr<PlaybackBuffer> CreateBuffer(const BufferDescription& description) override {
        return create_(description);
    }

private:
    Create create_;
    PlaybackCapabilities capabilities_;
};

class RingCaptureDevice : public CaptureDevice {
public:
    using Create = std::function<std::unique_ptr<CaptureBuffer>(const BufferDescription&)>;

    explicit RingCaptureDevice(Create create) : create_(std::move(create)) {}
    std::unique_ptr<CaptureBuffer> CreateBuffer(const BufferDescription& description) override {
        return create_(description);
    }

private:
    Create create_;
};

}  // namespace

void RingSoundSystem::ReportLoss(const RuntimeError& error) const {
    // The handler may replace itself.
    const auto handler = lostHandler_;
    if (handler) handler(error);
}

std::unique_ptr<PlaybackDevice> RingSoundSystem::PlaybackDeviceOf(CreatePlaybackBuffer create,
                                                                  PlaybackCapabilities capabilities) {
    return std::make_unique<RingPlaybackDevice>(std::move(create), capabilities);
}

std::unique_ptr<CaptureDevice> RingSoundSystem::CaptureDeviceOf(CreateCaptureBuffer create) {
    return std::make_unique<RingCaptureDevice>(std::move(create));
}

}  // namespace sonavex
