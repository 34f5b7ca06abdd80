#pragma once

#include <string>

namespace sonavex {

// Through this interface the engine binds the mixers to the devices in use.
class MixerBinding {
public:
    virtual ~MixerBinding() = default;

    // Binds the older mixer controls to the two selected devices.
    virtual void PointMixersAt(const std::string& outputDeviceName, const std::string& inputDeviceName) = 0;

    // Newer generation: closes the open mixer and opens that of the selected devices.
    virtual void ReopenSoundCard(const std::string& outputDeviceName, const std::string& inputDeviceName) = 0;
};

}  // namespace sonavex
