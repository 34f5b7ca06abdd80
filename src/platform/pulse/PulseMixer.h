#pragma once

#include <memory>
#include <string>
#include <vector>

#include "core/ports/MixerHardware.h"
#include "platform/pulse/PulseLevels.h"

namespace sonavex {

// The sinks and sources of a sound server as mixers: volume and mute of a playback device, volume and
// input ports of a capture device. The server does not offer the other controls of the card.
class PulseMixer : public MixerHardware {
public:
    // The loop must outlive this object. An empty address selects the server of the environment.
    explicit PulseMixer(EventLoop& loop, const std::string& serverAddress = {})
        : levels_(loop, serverAddress) {}

    std::vector<std::string> Devices(MixerSide side) override;
    std::shared_ptr<DeviceMixer> Open(const MixerDevice& device) override;
    std::string LastingName(const MixerDevice& device) override;
    void OnChange(std::function<void()> handler) override { levels_.OnChange(std::move(handler)); }

    // Number of the ALSA card behind the device, as text; empty when there is none.
    std::string AlsaCardOf(const MixerDevice& device);

private:
    // The device of that name; RuntimeError when there is none.
    PulseLevelState Find(const MixerDevice& device);

    PulseLevels levels_;
};

}  // namespace sonavex
