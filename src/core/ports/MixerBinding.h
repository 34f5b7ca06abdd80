#pragma once

#include <string>

namespace sonavex {

// How the engine tells the mixers which devices are in use. User-interface thread only.
class MixerBinding {
public:
    virtual ~MixerBinding() = default;

    // The legacy mixer controls of the two selected devices.
    virtual void PointMixersAt(const std::string& outputDeviceName, const std::string& inputDeviceName) = 0;

    // Newer generation: closes the mixer that was open and opens the one of the selected devices.
    virtual void ReopenSoundCard(const std::string& outputDeviceName, const std::string& inputDeviceName) = 0;
};

}  // namespace sonavex
