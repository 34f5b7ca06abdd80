#pragma once

#include <cstdint>
#include <string>

namespace sonavex {

// Type codes of the controls that the instrument tells apart.
namespace mixer_type {
inline constexpr std::int32_t kLevel = 133;  // 0 to 65535
inline constexpr std::int32_t kSwitch = 1;   // 0 or 1
}  // namespace mixer_type

struct MixerControlDescription {
    std::int32_t type = 0;
    std::int32_t minimum = 0;
    std::int32_t maximum = 0;
};

// The mixer of one sound device, control by control. A control is addressed by three selectors: line,
// destination and control index, all counted from 0. What is asked of a control that does not exist (no
// device, an index outside, a card that is gone) is answered with nothing: an empty name, no controls, the
// value -1; writing it does nothing. Names end up in front of the user and tell a control's kind: "Master
// Volume", "Wave Mute", "Microphone Boost".
class MixerControl {
public:
    virtual ~MixerControl() = default;

    // Mixer devices of the system, numbered from 0.
    virtual std::int32_t DeviceCount() = 0;
    virtual std::string DeviceName(std::int32_t number) = 0;
    // Any number that no device has, such as -1, selects none.
    virtual void SelectDevice(std::int32_t number) = 0;
    // Of the selected device; empty without one.
    virtual std::string DeviceName() = 0;

    virtual std::int16_t DestinationCount() = 0;
    // Of the selected destination.
    virtual std::int16_t ControlCount() = 0;

    virtual void SetDestination(std::int16_t destination) = 0;
    virtual std::int16_t Destination() = 0;
    // Selecting a control also selects the line that it belongs to.
    virtual void SetControl(std::int16_t control) = 0;
    virtual std::int16_t Control() = 0;
    virtual void SetLine(std::int16_t line) = 0;
    virtual std::int16_t Line() = 0;

    // Of the selected control.
    virtual std::string ControlName() = 0;
    virtual MixerControlDescription Description() = 0;
    // Levels run from 0 to 65535 whatever the card counts in. Channel 0 is left, 1 right; a control
    // with one channel has it as both. A control that stands for one that the card lacks has the value -1.
    virtual std::int32_t Value(std::int16_t channel) = 0;
    // Takes effect with Commit. A value outside the control's range becomes its nearest limit. A switch
    // of which one channel alone is set takes it for both.
    virtual void SetValue(std::int16_t channel, std::int32_t value) = 0;
    // Writes the values set since the last commit to the device. A value equal to the present one is
    // not written, so that a finer raw value stays.
    virtual void Commit() = 0;
};

}  // namespace sonavex
