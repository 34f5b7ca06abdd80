#pragma once

#include <memory>
#include <string>
#include <vector>

#include "platform/mixer/MixerHardware.h"

namespace sonavex {

// Two ways to the levels of a device in one: what the front has is used there, what only the back has
// is used there; record levels are the front's alone when it has any. So a sound server keeps the levels that
// it manages, and the card behind it adds the rest. The devices are those of both, the front's first.
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
