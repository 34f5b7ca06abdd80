#pragma once

#include <functional>
#include <optional>
#include <string>
#include <utility>

#include "core/ports/MixerHardware.h"

namespace sonavex {

// Saves and restores all levels of a device as text. Each control has one line: its key, a tab, and the
// values of its channels in the hardware's own steps, separated by blanks.
class DeviceLevels {
public:
    // The hardware must outlive this object.
    explicit DeviceLevels(MixerHardware& hardware) noexcept : hardware_(hardware) {}

    // The present levels; nothing when the device is absent. A control that does not answer is left out.
    std::optional<std::string> Read(const MixerDevice& device);

    // Restores levels that Read returned. Skips controls that already have their values, and lines that
    // do not fit the device. False when the device is absent or rejected a value.
    bool Write(const MixerDevice& device, const std::string& levels);

    // The device by its lasting name.
    MixerDevice Lasting(const MixerDevice& device) { return {device.side, hardware_.LastingName(device)}; }

private:
    MixerHardware& hardware_;
};

}  // namespace sonavex
