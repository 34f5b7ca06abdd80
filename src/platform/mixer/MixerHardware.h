#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "core/ports/DeviceLevels.h"

// What a sound technology offers of its mixers. The ports of the older control, of the newer library
// and of the journal are made of it once, in this folder. User-interface thread only.
namespace sonavex {

// What a control of a card is for. Monitor off: what is recorded is not heard.
enum class MixerFunction {
    // Of a playback device.
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
    kMicRecord,
    kLineRecord,
    kMicBoost,
    kMonitorOff,
    kMicSource,
    kLineSource
};

struct RawRange {
    std::int32_t minimum = 0;
    std::int32_t maximum = 1;
};

// Gain at the two ends of a raw range; linear in decibels between them.
struct GainRange {
    double minimumDb = 0.0;
    double maximumDb = 0.0;
};

// One control of a card in the card's own steps, one value a channel. Mutes, boost and sources are 1
// when on; selecting a source ends the selection of the others, and 0 does nothing.
class MixerElement {
public:
    virtual ~MixerElement() = default;

    virtual RawRange Range() const = 0;
    // Live; never empty. RuntimeError when the card does not answer.
    virtual std::vector<std::int32_t> Read() = 0;
    // As many values as Read returns, inside the range or as read before. RuntimeError when the card does not
    // take them.
    virtual void Write(const std::vector<std::int32_t>& values) = 0;
    // For tone controls.
    virtual std::optional<GainRange> Gains() const { return {}; }
};

// The mixer of one side of a sound device.
class DeviceMixer {
public:
    virtual ~DeviceMixer() = default;

    // The control for the function; nullptr when the device has none. Lives as long as this object.
    virtual MixerElement* Find(MixerFunction function) = 0;

    // Whether the function is in use at present: a record level that several sources share belongs to
    // the one that is selected.
    virtual bool Serves(MixerFunction) { return true; }

    // Everything that can be changed here, under lasting names, in the order in which it is restored.
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

    // Names of the devices as the sound system describes them. Empty when nothing answers.
    virtual std::vector<std::string> Devices(MixerSide side) = 0;

    // nullptr when there is no such device.
    virtual std::shared_ptr<DeviceMixer> Open(const MixerDevice& device) = 0;

    // The handler is called on the user-interface thread, never from inside a call made here, after
    // levels of an open device may have changed.
    virtual void OnChange(std::function<void()> handler) = 0;
};

}  // namespace sonavex
