#include "platform/alsa/AlsaSoundSystem.h"

#include <alsa/asoundlib.h>

#include <utility>

#include "platform/alsa/AlsaBuffers.h"
#include "platform/alsa/AlsaDevices.h"

namespace sonavex {
namespace {

SoundDeviceList Enumerate(snd_pcm_stream_t direction, const char* primary) {
    SoundDeviceList list{{"", primary, ""}};
    for (const AlsaDevice& device : ListAlsaDevices(direction)) list.push_back(device.info);
    return list;
}

// Failures reach the user through the errors of the port.
void PrintNothing(const char*, int, const char*, int, const char*, ...) {}

}  // namespace

class AlsaSoundSystem::Playback : public PlaybackDevice {
public:
    Playback(AlsaSoundSystem& system, AlsaDevice device) : system_(system), device_(std::move(device)) {}
    // Whoever opened the card has it alone.
    void SetCooperativeLevel(std::int32_t) override {}
    PlaybackCapabilities GetCapabilities() override { return {}; }
    std::unique_ptr<PlaybackBuffer> CreateBuffer(const BufferDescription& description) override {
        RequireAlsaFormat(description);
        return std::make_unique<AlsaPlaybackBuffer>(
            system_.loop_, device_, description,
            [&system = system_](const RuntimeError& error) { system.ReportLoss(error); });
    }

private:
    AlsaSoundSystem& system_;
    AlsaDevice device_;
};

class AlsaSoundSystem::Capture : public CaptureDevice {
public:
    Capture(AlsaSoundSystem& system, AlsaDevice device) : system_(system), device_(std::move(device)) {}
    std::unique_ptr<CaptureBuffer> CreateBuffer(const BufferDescription& description) override {
        RequireAlsaFormat(description);
        return std::make_unique<AlsaCaptureBuffer>(
            system_.loop_, system_.hub_, device_, description,
            [&system = system_](const RuntimeError& error) { system.ReportLoss(error); });
    }

private:
    AlsaSoundSystem& system_;
    AlsaDevice device_;
};

const std::string AlsaSoundSystem::kIdentifierPrefix = kAlsaPrefix;

AlsaSoundSystem::AlsaSoundSystem(EventLoop& loop) : loop_(loop), hub_(loop) {
    snd_lib_error_set_handler(PrintNothing);
}

SoundDeviceList AlsaSoundSystem::EnumeratePlayback() {
    return Enumerate(SND_PCM_STREAM_PLAYBACK, "Default output device");
}

SoundDeviceList AlsaSoundSystem::EnumerateCapture() {
    return Enumerate(SND_PCM_STREAM_CAPTURE, "Default input device");
}

std::unique_ptr<PlaybackDevice> AlsaSoundSystem::CreatePlaybackDevice(const std::string& identifier) {
    return std::make_unique<Playback>(*this, FindAlsaDevice(SND_PCM_STREAM_PLAYBACK, identifier));
}

std::unique_ptr<CaptureDevice> AlsaSoundSystem::CreateCaptureDevice(const std::string& identifier) {
    return std::make_unique<Capture>(*this, FindAlsaDevice(SND_PCM_STREAM_CAPTURE, identifier));
}

void AlsaSoundSystem::ReportLoss(const RuntimeError& error) const {
    // The handler may replace itself.
    const auto handler = lostHandler_;
    if (handler) handler(error);
}

}  // namespace sonavex
