#pragma once

#include <functional>
#include <optional>
#include <string>

namespace sonavex {

enum class MixerSide { kPlayback, kCapture };

// One side of a sound device, by the name with which the sound system describes it.
struct MixerDevice {
    MixerSide side = MixerSide::kPlayback;
    std::string name;
    friend bool operator==(const MixerDevice&, const MixerDevice&) = default;
};

// The levels of sound devices as the hardware holds them: every control, every channel, in its own steps.
class DeviceLevels {
public:
    virtual ~DeviceLevels() = default;

    // A text in lines that only Write understands; nothing when the device is not there.
    virtual std::optional<std::string> Read(const MixerDevice& device) = 0;

    // Puts the levels back; what is as the text says is not written, what the device lacks is left
    // out. False when the device is not there or did not take all of them.
    virtual bool Write(const MixerDevice& device, const std::string& levels) = 0;

    // Called when levels of a device in use may have changed, whoever changed them.
    virtual void OnChange(std::function<void()> handler) = 0;
};

}  // namespace sonavex
