#pragma once

#include <algorithm>
#include <array>
#include <string>
#include <utility>
#include <vector>

#include "core/mixer/MixerControl.h"

namespace sonavex {

// Mixers with any destinations and controls. Records every committed value: "CONTROL NAME/CHANNEL=VALUE".
class FakeMixerControl : public MixerControl {
public:
    struct Entry {
        std::string name;
        std::int16_t line = 0;
        MixerControlDescription description{mixer_type::kLevel, 0, 65535};
        std::array<std::int32_t, 2> values{};
    };
    using Controls = std::vector<Entry>;
    struct Device {
        std::string name;
        std::vector<Controls> destinations;
    };

    static Entry Level(std::string name, std::int32_t value = 0, std::int16_t line = 0) {
        return {std::move(name), line, {mixer_type::kLevel, 0, 65535}, {value, value}};
    }
    static Entry Switch(std::string name, std::int32_t value = 0, std::int16_t line = 0) {
        return {std::move(name), line, {mixer_type::kSwitch, 0, 1}, {value, value}};
    }

    FakeMixerControl() = default;
    // One device, selected.
    explicit FakeMixerControl(std::vector<Controls> destinations)
        : devices{{"Mixer", std::move(destinations)}}, device_(0) {}

    std::int32_t DeviceCount() override { return static_cast<std::int32_t>(devices.size()); }
    std::string DeviceName(std::int32_t number) override {
        return number >= 0 && number < DeviceCount() ? devices[static_cast<std::size_t>(number)].name : "";
    }
    void SelectDevice(std::int32_t number) override { device_ = number; }
    std::string DeviceName() override { return DeviceName(device_); }
    std::int16_t DestinationCount() override {
        const Device* device = Selected();
        return device == nullptr ? std::int16_t{0} : static_cast<std::int16_t>(device->destinations.size());
    }
    std::int16_t ControlCount() override {
        const Controls* controls = SelectedControls();
        return controls == nullptr ? std::int16_t{0} : static_cast<std::int16_t>(controls->size());
    }
    void SetDestination(std::int16_t destination) override { destination_ = destination; }
    std::int16_t Destination() override { return destination_; }
    void SetControl(std::int16_t control) override {
        control_ = control;
        if (const Entry* entry = SelectedEntry()) line_ = entry->line;
    }
    std::int16_t Control() override { return control_; }
    void SetLine(std::int16_t line) override { line_ = line; }
    std::int16_t Line() override { return line_; }
    std::string ControlName() override {
        const Entry* entry = SelectedEntry();
        return entry == nullptr ? "" : entry->name;
    }
    MixerControlDescription Description() override {
        const Entry* entry = SelectedEntry();
        return entry == nullptr ? MixerControlDescription{} : entry->description;
    }
    std::int32_t Value(std::int16_t channel) override {
        const Entry* entry = SelectedEntry();
        return entry == nullptr ? -1 : entry->values[static_cast<std::size_t>(channel)];
    }
    void SetValue(std::int16_t channel, std::int32_t value) override {
        pending_.emplace_back(channel, value);
    }
    void Commit() override {
        Entry* entry = SelectedEntry();
        for (const auto& [channel, value] : std::exchange(pending_, {})) {
            if (entry == nullptr) continue;
            entry->values[static_cast<std::size_t>(channel)] = value;
            written.push_back(entry->name + '/' + std::to_string(channel) + '=' + std::to_string(value));
        }
        ++commits;
    }

    // The first control with that name on the selected device.
    Entry& Find(const std::string& name) {
        for (Controls& controls : devices.at(static_cast<std::size_t>(device_)).destinations)
            for (Entry& entry : controls)
                if (entry.name == name) return entry;
        throw std::out_of_range(name);
    }

    std::vector<Device> devices;
    std::vector<std::string> written;
    int commits = 0;

private:
    Device* Selected() {
        return device_ < 0 || device_ >= DeviceCount() ? nullptr
                                                       : &devices[static_cast<std::size_t>(device_)];
    }
    Controls* SelectedControls() {
        Device* device = Selected();
        if (device == nullptr || destination_ < 0 || destination_ >= DestinationCount()) return nullptr;
        return &device->destinations[static_cast<std::size_t>(destination_)];
    }
    Entry* SelectedEntry() {
        Controls* controls = SelectedControls();
        if (controls == nullptr || control_ < 0 || control_ >= ControlCount()) return nullptr;
        return &(*controls)[static_cast<std::size_t>(control_)];
    }

    std::int32_t device_ = -1;
    std::int16_t destination_ = 0;
    std::int16_t control_ = 0;
    std::int16_t line_ = 0;
    std::vector<std::pair<std::int16_t, std::int32_t>> pending_;
};

}  // namespace sonavex
