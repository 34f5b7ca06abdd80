#pragma once

#include "platform/mixer/MixerHardware.h"

namespace sonavex {

// The raw levels of any hardware. A text has one line for each control: its name, a tab, the values
// of its channels separated by blanks.
class HardwareLevels : public DeviceLevels {
public:
    // The hardware must outlive this object.
    explicit HardwareLevels(MixerHardware& hardware) noexcept : hardware_(hardware) {}

    std::optional<std::string> Read(const MixerDevice& device) override;
    bool Write(const MixerDevice& device, const std::string& levels) override;
    void OnChange(std::function<void()> handler) override { hardware_.OnChange(std::move(handler)); }

private:
    MixerHardware& hardware_;
};

}  // namespace sonavex
