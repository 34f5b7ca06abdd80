#include "platform/pulse/PulseSoundSystem.h"

#include <utility>

#include "platform/pulse/PulseBuffers.h"
#include "platform/pulse/PulseContext.h"
#include "platform/pulse/PulseDevices.h"

namespace sonavex {
namespace {

SoundDeviceList Enumerate(PulseContext& context, PulseDirection direction, const char* primary) {
    SoundDeviceList list = ListPulseDevices(context, direction, PulseDeadline());
    list.insert(list.begin(), {"", primary, ""});
    return list;
}

}  // namespace

class PulseSoundSystem::Playback : public PlaybackDevice {
public:
    Playback(PulseSoundSystem& system, SoundDeviceInfo device)
        : system_(system), device_(std::move(device)) {}
    // The server mixes for everybody alike.
    void SetCooperativeLevel(std::int32_t) override {}
    PlaybackCapabilities GetCapabilities() override { return {}; }
    std::unique_ptr<PlaybackBuffer> CreateBuffer(const BufferDescription& description) override {
        RequirePulseFormat(description);
        return std::make_unique<PulsePlaybackBuffer>(
            *system_.context_, system_.loop_, device_, description,
            [&system = system_](const RuntimeError& error) { system.ReportLoss(error); });
    }

private:
    PulseSoundSystem& system_;
    SoundDeviceInfo device_;
};

class PulseSoundSystem::Capture : public CaptureDevice {
public:
    Capture(PulseSoundSystem& system, SoundDeviceInfo device) : system_(system), device_(std::move(device)) {}
    std::unique_ptr<CaptureBuffer> CreateBuffer(const BufferDescription& description) override {
        RequirePulseFormat(description);
        return std::make_unique<PulseCaptureBuffer>(
            *system_.context_, system_.loop_, system_.hub_, device_, description,
            [&system = system_](const RuntimeError& error) { system.ReportLoss(error); });
    }

private:
    PulseSoundSystem& system_;
    SoundDeviceInfo device_;
};

PulseSoundSystem::PulseSoundSystem(EventLoop& loop, const std::string& serverAddress)
    : loop_(loop), hub_(loop), context_(std::make_unique<PulseContext>(serverAddress)) {}

PulseSoundSystem::~PulseSoundSystem() = default;

SoundDeviceList PulseSoundSystem::EnumeratePlayback() {
    return Enumerate(*context_, PulseDirection::kPlayback, "Default output device");
}

SoundDeviceList PulseSoundSystem::EnumerateCapture() {
    return Enumerate(*context_, PulseDirection::kCapture, "Default input device");
}

std::unique_ptr<PlaybackDevice> PulseSoundSystem::CreatePlaybackDevice(const std::string& identifier) {
    return std::make_unique<Playback>(
        *this, FindPulseDevice(*context_, PulseDirection::kPlayback, identifier, PulseDeadline()));
}

std::unique_ptr<CaptureDevice> PulseSoundSystem::CreateCaptureDevice(const std::string& identifier) {
    return std::make_unique<Capture>(
        *this, FindPulseDevice(*context_, PulseDirection::kCapture, identifier, PulseDeadline()));
}

void PulseSoundSystem::ReportLoss(const RuntimeError& error) const {
    // The handler may replace itself.
    const auto handler = lostHandler_;
    if (handler) handler(error);
}

}  // namespace sonavex
