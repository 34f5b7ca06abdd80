#pragma once

#include <algorithm>
#include <array>
#include <cstdint>
#include <limits>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "core/mixer/QuenbyVista.h"
#include "core/ports/MixerHardware.h"
#include "support/CallLog.h"

namespace sonavex {

// Mixers in memory. A device or control that a test removes, also while it is open, no longer answers.
// Records "Open DEVICE", "Close DEVICE", "Read DEVICE/FUNCTION" and "Write DEVICE/FUNCTION VALUES".
class MemoryHardware : public MixerHardware {
public:
    struct Control {
        RawRange range;
        std::vector<std::int32_t> values;
        std::optional<GainRange> gains{};
        std::int32_t highest = std::numeric_limits<std::int32_t>::max();  // a write is limited to it
        bool rejects = false;                                             // every write fails
    };
    using Controls = std::map<MixerFunction, Control>;

    static Control Level(std::vector<std::int32_t> values, std::int32_t maximum = 100) {
        return {{0, maximum}, std::move(values)};
    }
    static Control Switch(std::vector<std::int32_t> values) { return {{0, 1}, std::move(values)}; }
    // -12 to 12 dB in steps of half a decibel; the value counts the steps.
    static Control Tone(std::int32_t steps) { return {{-24, 24}, {steps}, GainRange{-12.0, 12.0}}; }

    explicit MemoryHardware(CallLog& log) noexcept : log_(log) {}

    std::vector<std::string> Devices(MixerSide side) override {
        std::vector<std::string> names;
        for (const auto& [name, controls] : Side(side)) names.push_back(name);
        return names;
    }
    std::shared_ptr<DeviceMixer> Open(const MixerDevice& device) override {
        if (Find(device) == nullptr) return nullptr;
        log_.Note("Open " + device.name);
        return std::make_shared<Device>(*this, device);
    }
    std::string LastingName(const MixerDevice& device) override { return KeyOf(device.name); }
    void OnChange(std::function<void()> handler) override { Changed = std::move(handler); }

    // By the device's lasting name.
    std::map<std::string, Controls> playback;
    std::map<std::string, Controls> capture;
    // Lasting names by present names, where the two differ.
    std::map<std::string, std::string> lastingNames;
    // The handler of OnChange.
    std::function<void()> Changed;

private:
    class Element : public MixerElement {
    public:
        Element(MemoryHardware& hardware, MixerDevice device, MixerFunction function)
            : hardware_(hardware), device_(std::move(device)), function_(function) {}

        RawRange Range() const override { return Answering().range; }
        std::vector<std::int32_t> Read() override {
            hardware_.log_.Note("Read " + Name());
            return Answering().values;
        }
        void Write(const std::vector<std::int32_t>& values) override {
            std::string line = "Write " + Name();
            for (const std::int32_t value : values) line += ' ' + std::to_string(value);
            hardware_.log_.Note(line);
            Control& control = Answering();
            if (control.rejects) throw RuntimeError(error_number::kInvalidCall);
            control.values = values;
            for (std::int32_t& value : control.values) value = std::min(value, control.highest);
        }
        std::optional<GainRange> Gains() const override { return Answering().gains; }
        std::string Name() const {
            static constexpr std::array kNames{
                "MasterVolume", "MasterMute", "WaveVolume", "WaveMute",  "LineVolume", "LineMute",
                "MicVolume",    "MicMute",    "Bass",       "MidRange",  "Treble",     "MicRecord",
                "LineRecord",   "MicBoost",   "MonitorOff", "MicSource", "LineSource"};
            return device_.name + '/' + kNames.at(static_cast<std::size_t>(function_));
        }

    private:
        Control& Answering() const {
            Controls* const controls = hardware_.Find(device_);
            if (controls == nullptr || controls->count(function_) == 0)
                throw RuntimeError(error_number::kInvalidCall);
            return controls->at(function_);
        }

        MemoryHardware& hardware_;
        MixerDevice device_;
        MixerFunction function_;
    };

    class Device : public DeviceMixer {
    public:
        Device(MemoryHardware& hardware, MixerDevice device)
            : hardware_(hardware), device_(std::move(device)) {
            for (int i = 0; i <= static_cast<int>(MixerFunction::kLineSource); ++i) {
                const auto function = static_cast<MixerFunction>(i);
                elements_.try_emplace(function, hardware_, device_, function);
            }
        }
        ~Device() override { hardware_.log_.Note("Close " + device_.name); }
        MixerElement* Find(MixerFunction function) override {
            const Controls* const controls = hardware_.Find(device_);
            const bool present = controls == nullptr || controls->count(function) != 0;
            return present ? &elements_.at(function) : nullptr;
        }
        std::vector<RawEntry> RawEntries() override {
            std::vector<RawEntry> entries;
            for (auto& [function, element] : elements_)
                if (Find(function) != nullptr) entries.push_back({element.Name(), &element});
            return entries;
        }

    private:
        MemoryHardware& hardware_;
        MixerDevice device_;
        std::map<MixerFunction, Element> elements_;
    };

    std::map<std::string, Controls>& Side(MixerSide side) {
        return side == MixerSide::kPlayback ? playback : capture;
    }
    std::string KeyOf(const std::string& name) const {
        const auto found = lastingNames.find(name);
        return found == lastingNames.end() ? name : found->second;
    }
    Controls* Find(const MixerDevice& device) {
        const auto found = Side(device.side).find(KeyOf(device.name));
        return found == Side(device.side).end() ? nullptr : &found->second;
    }

    CallLog& log_;
};

// A card with every control of the newer library; the balance of the master is uneven. Its state line is
// kMemoryCardLine.
inline constexpr const char* kMemoryCardLine = "80,False,30,True,20,True,False,True,-1.5,0,6,70,60,";
inline MemoryHardware::Controls MemoryCardPlayback() {
    using enum MixerFunction;
    return {{kMasterVolume, MemoryHardware::Level({80, 40})},
            {kMasterMute, MemoryHardware::Switch({0, 0})},
            {kLineVolume, MemoryHardware::Level({30, 30})},
            {kLineMute, MemoryHardware::Switch({1, 1})},
            {kMicVolume, MemoryHardware::Level({20, 20})},
            {kMicMute, MemoryHardware::Switch({1, 1})},
            {kBass, MemoryHardware::Tone(-3)},
            {kMidRange, MemoryHardware::Tone(0)},
            {kTreble, MemoryHardware::Tone(12)}};
}
inline MemoryHardware::Controls MemoryCardCapture() {
    using enum MixerFunction;
    return {{kMicRecord, MemoryHardware::Level({70, 70})},
            {kLineRecord, MemoryHardware::Level({60, 60})},
            {kMicBoost, MemoryHardware::Switch({0})},
            {kMonitorOff, MemoryHardware::Switch({1})}};
}

// That card as "Speakers" and "Microphone", with the library bound to it. The log is empty.
struct MemoryCard {
    explicit MemoryCard(MemoryHardware::Controls playback = MemoryCardPlayback(),
                        MemoryHardware::Controls capture = MemoryCardCapture()) {
        hardware.playback["Speakers"] = std::move(playback);
        hardware.capture["Microphone"] = std::move(capture);
        std::int32_t status = -1;
        library.OpenSoundCard("Speakers", "Microphone", "", status);
        log.Clear();
    }
    MemoryHardware::Controls& Side(MixerFunction function) {
        return SideOf(function) == MixerSide::kPlayback ? hardware.playback.at("Speakers")
                                                        : hardware.capture.at("Microphone");
    }
    MemoryHardware::Control& At(MixerFunction function) { return Side(function).at(function); }
    void Remove(MixerFunction function) { Side(function).erase(function); }
    std::vector<std::string> Writes() const { return log.Of("Write"); }

    CallLog log;
    MemoryHardware hardware{log};
    QuenbyVista library{hardware};
};

}  // namespace sonavex
