#pragma once

#include <memory>
#include <string>
#include <vector>

#include "core/ports/MixerHardware.h"

namespace sonavex {

// Combines two mixers of the same devices: a sound server (front) and the cards behind it (back). A control
// that the front has is used at the front, so that the server manages its own levels. The back adds the
// controls that the front lacks. When the front has a record level, both record levels are the front's. The
// devices are those of both, the front's first.
class LayeredMixer : public MixerHardware {
public:
    LayeredMixer(std::unique_ptr<MixerHardware> front, std::unique_ptr<MixerHardware> back)
        : front_(std::move(front)), back_(std::move(back)) {}

    std::vector<std::string> Devices(MixerSide side) override;
    std::shared_ptr<DeviceMixer> Open(const MixerDevice& device) override;
    std::string LastingName(const MixerDevice& device) override;
    void OnChange(std::function<void()> handler) override;

private:
    std::unique_ptr<MixerHardware> front_;
    std::unique_ptr<MixerHardware> back_;
};

}  // namespace sonavex
