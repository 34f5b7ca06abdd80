#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

// The mixers of the sound devices, as one technology offers them: controls in the hardware's own steps.
// core/mixer turns the steps into percent, decibels and state lines.
namespace sonavex {

enum class MixerSide { kPlayback, kCapture };

// One side of a sound device, by the name with which the sound system describes it.
struct MixerDevice {
    MixerSide side = MixerSide::kPlayback;
    std::string name;
    friend bool operator==(const MixerDevice&, const MixerDevice&) = default;
};

// The purpose of a control.
enum class MixerFunction {
    // Of a playback device. Line and microphone: the paths from these inputs to the output.
    kMasterVolume,
    kMasterMute,
    kWaveVolume,
    kWaveMute,
    kLineVolume,
    kLineMute,
    kMicVolume,
    kMicMute,
    kBass,
    kMidRange,
    kTreble,
    // Of a capture device.
    kMicRecord,   // record level of the microphone
    kLineRecord,  // record level of the line input
    kMicBoost,    // +20 dB
    kMonitorOff,  // on: the recorded signal is not routed to the output
    kMicSource,   // on: the microphone is recorded
    kLineSource   // on: the line input is recorded
};

constexpr MixerSide SideOf(MixerFunction function) noexcept {
    return function < MixerFunction::kMicRecord ? MixerSide::kPlayback : MixerSide::kCapture;
}

struct RawRange {
    std::int32_t minimum = 0;
    std::int32_t maximum = 1;
};

// Gain at the two ends of a raw range; linear in decibels between them.
struct GainRange {
    double minimumDb = 0.0;
    double maximumDb = 0.0;
};

// One control in the hardware's own steps, one value per channel. A mute, a boost and a source is 1 when
// it is on. Selecting a source deselects the others; writing 0 to a source has no effect.
class MixerElement {
public:
    virtual ~MixerElement() = default;

    virtual RawRange Range() const = 0;
    // The present values; never empty. RuntimeError when the device does not answer or has lost the
    // control.
    virtual std::vector<std::int32_t> Read() = 0;
    // Takes as many values as Read returns, each inside the range or as Read returned it. RuntimeError
    // when the device rejects them.
    virtual void Write(const std::vector<std::int32_t>& values) = 0;
    // Only tone controls have gains.
    virtual std::optional<GainRange> Gains() const { return {}; }
};

// The open mixer of one side of a sound device.
class DeviceMixer {
public:
    virtual ~DeviceMixer() = default;

    // The control for the function, valid as long as this object; nullptr when the device has none.
    virtual MixerElement* Find(MixerFunction function) = 0;

    // Whether the control serves the function at present. Several sources can share one record level:
    // it then serves only the selected source.
    virtual bool Serves(MixerFunction) { return true; }

    // Every control that can be changed through this object, in the order in which to restore them. The
    // key is unique within the device and the same in every run. The elements live as long as this
    // object.
    struct RawEntry {
        std::string key;
        MixerElement* element;
    };
    virtual std::vector<RawEntry> RawEntries() = 0;
};

// The mixers of all devices that one technology serves.
class MixerHardware {
public:
    virtual ~MixerHardware() = default;

    // The devices' names as the sound system describes them. Empty when nothing answers.
    virtual std::vector<std::string> Devices(MixerSide side) = 0;

    // nullptr when there is no such device or it does not answer. The name is one from Devices or a lasting
    // name.
    virtual std::shared_ptr<DeviceMixer> Open(const MixerDevice& device) = 0;

    // A name of the device that stays the same when devices with the same description are connected or
    // removed. The given name when there is no such device, or when its name never changes.
    virtual std::string LastingName(const MixerDevice& device) { return device.name; }

    // Calls the handler after levels of an open device may have changed, by any program; never from inside a
    // call into this interface. An empty handler ends the calls.
    virtual void OnChange(std::function<void()> handler) = 0;
};

}  // namespace sonavex
