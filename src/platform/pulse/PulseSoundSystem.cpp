#include "platform/pulse/PulseSoundSystem.h"

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

PulseSoundSystem::PulseSoundSystem(EventLoop& loop, const std::string& serverAddress)
    : RingSoundSystem(loop), context_(std::make_unique<PulseContext>(serverAddress)) {}

PulseSoundSystem::~PulseSoundSystem() = default;

SoundDeviceList PulseSoundSystem::EnumeratePlayback() {
    return Enumerate(*context_, PulseDirection::kPlayback, "Default output device");
}

SoundDeviceList PulseSoundSystem::EnumerateCapture() {
    return Enumerate(*context_, PulseDirection::kCapture, "Default input device");
}

RateList PulseSoundSystem::ExtendedPlaybackRates(const std::string& identifier) {
    return ExtendedPulseRates(*context_, PulseDirection::kPlayback, identifier, PulseDeadline());
}

RateList PulseSoundSystem::ExtendedCaptureRates(const std::string& identifier) {
    return ExtendedPulseRates(*context_, PulseDirection::kCapture, identifier, PulseDeadline());
}

std::unique_ptr<PlaybackDevice> PulseSoundSystem::CreatePlaybackDevice(const std::string& identifier) {
    const SoundDeviceInfo device =
        FindPulseDevice(*context_, PulseDirection::kPlayback, identifier, PulseDeadline());
    return PlaybackDeviceOf([this, device](const BufferDescription& description) {
        RequirePulseFormat(description);
        return std::make_unique<PulsePlaybackBuffer>(
            *context_, Loop(), device, description, [this](const RuntimeError& error) { ReportLoss(error); });
    });
}

std::unique_ptr<CaptureDevice> PulseSoundSystem::CreateCaptureDevice(const std::string& identifier) {
    const SoundDeviceInfo device =
        FindPulseDevice(*context_, PulseDirection::kCapture, identifier, PulseDeadline());
    return CaptureDeviceOf([this, device](const BufferDescription& description) {
        RequirePulseFormat(description);
        return std::make_unique<PulseCaptureBuffer>(*context_, Loop(), Hub(), device, description,
                                                    [this](const RuntimeError& error) { ReportLoss(error); });
    });
}

}  // namespace sonavex
