#pragma once

#include <cstdint>
#include <string>

namespace sonavex {

// Type codes of the controls that the instrument distinguishes.
namespace mixer_type {
inline constexpr std::int32_t kLevel = 133;  // 0 to 65535
inline constexpr std::int32_t kSwitch = 1;   // 0 or 1
}  // namespace mixer_type

struct MixerControlDescription {
    std::int32_t type = 0;
    std::int32_t minimum = 0;
    std::int32_t maximum = 0;
    std::int32_t stepPercent = 1;  // smallest whole percentage of the range that changes the hardware's value
};

// The mixer of one side of a sound device, control by control. Three selectors address a control: line,
// destination and control index, all counted from 0. Calls about a control that does not exist (no
// device, an index out of range, an absent device) return an empty name, 0 controls or the value -1, and
// writing has no effect. Users see the names. The names also identify a control's kind: "Master Volume",
// "Wave Mute", "Microphone Boost".
class MixerControl {
public:
    virtual ~MixerControl() = default;

    // Number of mixer devices. They are numbered from 0.
    virtual std::int32_t DeviceCount() = 0;
    virtual std::string DeviceName(std::int32_t number) = 0;
    // A number without a device, such as -1, selects no device.
    virtual void SelectDevice(std::int32_t number) = 0;
    // Name of the selected device; empty when none is selected.
    virtual std::string DeviceName() = 0;

    virtual std::int16_t DestinationCount() = 0;
    // Number of controls of the selected destination.
    virtual std::int16_t ControlCount() = 0;

    virtual void SetDestination(std::int16_t destination) = 0;
    virtual std::int16_t Destination() = 0;
    // Selecting a control also selects its line.
    virtual void SetControl(std::int16_t control) = 0;
    virtual std::int16_t Control() = 0;
    virtual void SetLine(std::int16_t line) = 0;
    virtual std::int16_t Line() = 0;

    // The functions below apply to the selected control.
    virtual std::string ControlName() = 0;
    virtual MixerControlDescription Description() = 0;
    // Levels are 0 to 65535 whatever the hardware's steps. Channel 0 is left, channel 1 is right; a
    // control with one channel returns it for both. -1 when the control does not answer.
    virtual std::int32_t Value(std::int16_t channel) = 0;
    // Takes effect with Commit. A value outside the control's range becomes the nearest limit. When only
    // one channel of a switch is set, it applies to all of its channels.
    virtual void SetValue(std::int16_t channel, std::int32_t value) = 0;
    // Writes the values set since the last commit to the device. A channel whose value does not change
    // is not written and keeps its exact raw value.
    virtual void Commit() = 0;
};

}  // namespace sonavex
