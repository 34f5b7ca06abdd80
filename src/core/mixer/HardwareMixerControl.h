#pragma once

#include <array>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "core/mixer/MixerControl.h"
#include "core/ports/MixerHardware.h"

namespace sonavex {

// The older mixer control over any hardware. It offers one destination with the controls that the device
// has. Master volume and master mute are always the last controls. Where the device lacks one, a placeholder
// that never answers takes its position, so a search for the last volume or mute finds the master's or none.
// Devices are listed by decreasing length of their names, because a search by the beginning of a name takes
// the first match.
class HardwareMixerControl : public MixerControl {
public:
    // The hardware must outlive this object.
    HardwareMixerControl(MixerHardware& hardware, MixerSide side) noexcept
        : hardware_(hardware), side_(side) {}

    std::int32_t DeviceCount() override;
    std::string DeviceName(std::int32_t number) override;
    void SelectDevice(std::int32_t number) override;
    std::string DeviceName() override { return deviceName_; }

    std::int16_t DestinationCount() override { return controls_.empty() ? 0 : 1; }
    std::int16_t ControlCount() override;
    void SetDestination(std::int16_t destination) override { destination_ = destination; }
    std::int16_t Destination() override { return destination_; }
    void SetControl(std::int16_t control) override;
    std::int16_t Control() override { return control_; }
    void SetLine(std::int16_t line) override { line_ = line; }
    std::int16_t Line() override { return line_; }

    std::string ControlName() override;
    MixerControlDescription Description() override;
    std::int32_t Value(std::int16_t channel) override;
    void SetValue(std::int16_t channel, std::int32_t value) override;
    void Commit() override;

    // How a function appears as a control.
    struct Kind {
        MixerFunction function;
        const char* name;
        std::int16_t line;
        std::int32_t type;
    };

private:
    struct Entry {
        const Kind* kind;
        MixerElement* element;  // nullptr: a placeholder
    };
    const Entry* Selected() const;

    MixerHardware& hardware_;
    MixerSide side_;
    std::vector<std::string> names_;
    std::string deviceName_;
    std::shared_ptr<DeviceMixer> device_;
    std::vector<Entry> controls_;
    std::int16_t destination_ = 0;
    std::int16_t control_ = 0;
    std::int16_t line_ = 0;
    std::array<std::optional<std::int32_t>, 2> pending_;
};

}  // namespace sonavex
