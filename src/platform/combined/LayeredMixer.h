#pragma once

#include <memory>
#include <string>
#include <vector>

#include "core/ports/MixerHardware.h"

namespace sonavex {

// Combines two mixers of the same devices: a sound server (front) and the cards behind it (back). A
// control that the front has is used there, so that the server keeps the levels that it manages; the back
// adds the rest. When the front has a record level, both record levels are the front's. The devices are
// those of both, the front's first.
class LayeredMixer : public MixerHardware {
public:
    LayeredMixer(std::unique_ptr<MixerHardware> front, std::unique_ptr<MixerHardware> back)
        : front_(std::move(front)), back_(std::move(back)) {}

    std::vector<std::string> Devices(MixerSide side) override;
    std::shared_ptr<DeviceMixer> Open(const MixerDevice& device) override;
    void OnChange(std::function<void()> handler) override;

private:
    std::unique_ptr<MixerHardware> front_;
    std::unique_ptr<MixerHardware> back_;
};

}  // namespace sonavex
