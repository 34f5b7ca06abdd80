#include "platform/alsa/AlsaSoundSystem.h"

#include <alsa/asoundlib.h>

#include <algorithm>
#include <iterator>
#include <utility>

#include "core/ports/SoundErrors.h"
#include "platform/alsa/AlsaBuffers.h"
#include "platform/alsa/AlsaDevices.h"

namespace sonavex {
namespace {

SoundDeviceList Enumerate(snd_pcm_stream_t direction, const char* primary) {
    SoundDeviceList list{{"", primary, ""}};
    for (const AlsaDevice& device : ListAlsaDevices(direction)) list.push_back(device.info);
    return list;
}

// A card whose directions share a clock reports only the present rate while the other direction is open. What
// it reported before stays true.
void Remember(const RateList& rates, RateList& known) {
    RateList all;
    std::set_union(known.begin(), known.end(), rates.begin(), rates.end(), std::back_inserter(all));
    known = std::move(all);
}

// Reads the rates of a device and remembers them.
RateList ExtendedRates(const std::string& identifier, snd_pcm_stream_t direction,
                       std::map<std::string, RateList>& known) {
    const AlsaDevice device = FindAlsaDevice(direction, identifier);
    RateList& rates = known[device.info.identifier];
    try {
        Remember(AlsaPcm::ReadExtendedRates(device, direction), rates);
    } catch (const RuntimeError& error) {
        if (error.Number() != sound_error::kAllocated) throw;
    }
    return rates;
}

constexpr const char* kRefusal = "Sound cards are used with 16-bit stereo PCM only.";

// Failures are reported as RuntimeErrors instead.
void PrintNothing(const char*, int, const char*, int, const char*, ...) {}

}  // namespace

const std::string AlsaSoundSystem::kIdentifierPrefix = kAlsaPrefix;

AlsaSoundSystem::AlsaSoundSystem(EventLoop& loop) : RingSoundSystem(loop) {
    snd_lib_error_set_handler(PrintNothing);
}

SoundDeviceList AlsaSoundSystem::EnumeratePlayback() {
    return Enumerate(SND_PCM_STREAM_PLAYBACK, "Default output device");
}

SoundDeviceList AlsaSoundSystem::EnumerateCapture() {
    return Enumerate(SND_PCM_STREAM_CAPTURE, "Default input device");
}

RateList AlsaSoundSystem::ExtendedPlaybackRates(const std::string& identifier) {
    return ExtendedRates(identifier, SND_PCM_STREAM_PLAYBACK, playbackRates_);
}

RateList AlsaSoundSystem::ExtendedCaptureRates(const std::string& identifier) {
    return ExtendedRates(identifier, SND_PCM_STREAM_CAPTURE, captureRates_);
}

std::unique_ptr<PlaybackDevice> AlsaSoundSystem::CreatePlaybackDevice(const std::string& identifier) {
    const AlsaDevice device = FindAlsaDevice(SND_PCM_STREAM_PLAYBACK, identifier);
    return PlaybackDeviceOf([this, device](const BufferDescription& description) {
        RequireStereo16(description.format, kRefusal);
        auto buffer = std::make_unique<AlsaPlaybackBuffer>(
            Loop(), device, description, [this](const RuntimeError& error) { ReportLoss(error); });
        Remember(buffer->ExtendedRates(), playbackRates_[device.info.identifier]);
        return buffer;
    });
}

std::unique_ptr<CaptureDevice> AlsaSoundSystem::CreateCaptureDevice(const std::string& identifier) {
    const AlsaDevice device = FindAlsaDevice(SND_PCM_STREAM_CAPTURE, identifier);
    return CaptureDeviceOf([this, device](const BufferDescription& description) {
        RequireStereo16(description.format, kRefusal);
        auto buffer = std::make_unique<AlsaCaptureBuffer>(
            Loop(), Hub(), device, description, [this](const RuntimeError& error) { ReportLoss(error); });
        Remember(buffer->ExtendedRates(), captureRates_[device.info.identifier]);
        return buffer;
    });
}

}  // namespace sonavex
