#pragma once

#include <map>
#include <memory>
#include <string>

#include "platform/ring/RingSoundSystem.h"

namespace sonavex {

// Sound cards without a sound server in between. Where a card runs at the requested rate, samples pass bit
// for bit; otherwise the PathNote of a buffer names the conversion. A card has one user at a time. Lists
// the devices of the cards and the PCMs that the user's ALSA configuration defines. A card that is plugged
// in later appears in the next enumeration.
class AlsaSoundSystem : public RingSoundSystem {
public:
    // Prefix of every identifier except that of the primary device. The name of the PCM follows.
    static const std::string kIdentifierPrefix;

    // The loop must outlive this object. From then on libasound prints nothing in this process.
    explicit AlsaSoundSystem(EventLoop& loop);

    SoundDeviceList EnumeratePlayback() override;
    SoundDeviceList EnumerateCapture() override;
    // Of a device in use, the rates are those that it had when it was last opened from here.
    RateList ExtendedPlaybackRates(const std::string& identifier) override;
    RateList ExtendedCaptureRates(const std::string& identifier) override;
    std::unique_ptr<PlaybackDevice> CreatePlaybackDevice(const std::string& identifier) override;
    std::unique_ptr<CaptureDevice> CreateCaptureDevice(const std::string& identifier) override;

private:
    // By identifier.
    std::map<std::string, RateList> playbackRates_;
    std::map<std::string, RateList> captureRates_;
};

}  // namespace sonavex
