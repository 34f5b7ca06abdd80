#include "platform/pulse/PulseMixer.h"

#include <algorithm>
#include <map>
#include <utility>

#include "core/ports/SoundErrors.h"
#include "platform/ring/DeviceDescriptions.h"

namespace sonavex {
namespace {

PulseDirection DirectionOf(MixerSide side) {
    return side == MixerSide::kPlayback ? PulseDirection::kPlayback : PulseDirection::kCapture;
}

// The devices under the names that the device list shows.
SoundDeviceList NamesOf(const std::vector<PulseLevelState>& states) {
    SoundDeviceList devices;
    for (const PulseLevelState& state : states) devices.push_back({state.name, state.description, ""});
    DistinguishDescriptions(devices);
    return devices;
}

// A sink or source of the server.
struct Place {
    PulseLevels& levels;
    PulseDirection direction;
    std::string name;
    std::string description;

    PulseLevelState Read() const { return levels.Read(direction, name); }
    PulsePorts Ports() const {
        const PulseLevelState state = Read();
        return {state.ports, state.activePort, description};
    }
};

class VolumeElement : public MixerElement {
public:
    explicit VolumeElement(Place place) : place_(std::move(place)) {}
    RawRange Range() const override { return {0, static_cast<std::int32_t>(PA_VOLUME_NORM)}; }
    std::vector<std::int32_t> Read() override { return place_.Read().volumes; }
    void Write(const std::vector<std::int32_t>& values) override {
        place_.levels.SetVolumes(place_.direction, place_.name, values);
    }

private:
    Place place_;
};

class MuteElement : public MixerElement {
public:
    explicit MuteElement(Place place) : place_(std::move(place)) {}
    RawRange Range() const override { return {0, 1}; }
    std::vector<std::int32_t> Read() override { return {place_.Read().muted ? 1 : 0}; }
    void Write(const std::vector<std::int32_t>& values) override {
        place_.levels.SetMuted(place_.direction, place_.name, values.at(0) != 0);
    }

private:
    Place place_;
};

class SourceElement : public MixerElement {
public:
    SourceElement(Place place, PulseInput input) : place_(std::move(place)), input_(input) {}
    RawRange Range() const override { return {0, 1}; }
    std::vector<std::int32_t> Read() override { return {place_.Ports().Active() == input_ ? 1 : 0}; }
    void Write(const std::vector<std::int32_t>& values) override {
        const std::string port = place_.Ports().PortFor(input_);
        if (values.at(0) != 0 && !port.empty()) place_.levels.SetPort(place_.direction, place_.name, port);
    }

private:
    Place place_;
    PulseInput input_;
};

// The active port, for saving and restoring: a checksum of its name, 0 without ports.
class PortElement : public MixerElement {
public:
    explicit PortElement(Place place) : place_(std::move(place)) {}
    RawRange Range() const override { return {0, 0x7fffffff}; }
    std::vector<std::int32_t> Read() override { return {Checksum(place_.Read().activePort)}; }
    void Write(const std::vector<std::int32_t>& values) override {
        const std::vector<PulsePort> ports = place_.Read().ports;
        const auto found = std::find_if(ports.begin(), ports.end(), [&](const PulsePort& port) {
            return Checksum(port.name) == values.at(0);
        });
        if (found != ports.end()) place_.levels.SetPort(place_.direction, place_.name, found->name);
    }

private:
    static std::int32_t Checksum(const std::string& name) {
        if (name.empty()) return 0;
        std::uint32_t sum = 2166136261U;
        for (const char letter : name) sum = (sum ^ static_cast<unsigned char>(letter)) * 16777619U;
        return static_cast<std::int32_t>(sum & 0x7fffffffU);
    }

    Place place_;
};

class PulsePlaybackMixer : public DeviceMixer {
public:
    explicit PulsePlaybackMixer(const Place& place) : volume_(place), mute_(place) {}
    MixerElement* Find(MixerFunction function) override {
        if (function == MixerFunction::kMasterVolume) return &volume_;
        return function == MixerFunction::kMasterMute ? &mute_ : nullptr;
    }
    std::vector<RawEntry> RawEntries() override { return {{"volume", &volume_}, {"mute", &mute_}}; }

private:
    VolumeElement volume_;
    MuteElement mute_;
};

// The one volume is the record level of the active input. A source with both inputs offers it as both
// record levels.
class PulseCaptureMixer : public DeviceMixer {
public:
    PulseCaptureMixer(const Place& place, const PulsePorts& ports)
        : place_(place),
          ports_(ports),
          volume_(place),
          mute_(place),
          port_(place),
          microphone_(place, PulseInput::kMicrophone),
          line_(place, PulseInput::kLine) {}

    MixerElement* Find(MixerFunction function) override {
        switch (function) {
            case MixerFunction::kMicRecord:
                return ports_.Offers(PulseInput::kMicrophone) ? &volume_ : nullptr;
            case MixerFunction::kLineRecord:
                return ports_.Offers(PulseInput::kLine) ? &volume_ : nullptr;
            case MixerFunction::kMicSource:
                return ports_.PortFor(PulseInput::kMicrophone).empty() ? nullptr : &microphone_;
            case MixerFunction::kLineSource:
                return ports_.PortFor(PulseInput::kLine).empty() ? nullptr : &line_;
            default:
                return nullptr;
        }
    }

    bool Serves(MixerFunction function) override {
        if (function != MixerFunction::kMicRecord && function != MixerFunction::kLineRecord) return true;
        const PulseInput input =
            function == MixerFunction::kMicRecord ? PulseInput::kMicrophone : PulseInput::kLine;
        try {
            return place_.Ports().Active() == input;
        } catch (const RuntimeError&) {
            return true;  // reading the level then reports the failure
        }
    }

    std::vector<RawEntry> RawEntries() override {
        return {{"port", &port_}, {"volume", &volume_}, {"mute", &mute_}};
    }

private:
    Place place_;
    PulsePorts ports_;
    VolumeElement volume_;
    MuteElement mute_;
    PortElement port_;
    SourceElement microphone_;
    SourceElement line_;
};

}  // namespace

std::vector<std::string> PulseMixer::Devices(MixerSide side) {
    std::vector<std::string> names;
    try {
        for (SoundDeviceInfo& device : NamesOf(levels_.List(DirectionOf(side))))
            names.push_back(std::move(device.description));
    } catch (const RuntimeError&) {
        names.clear();
    }
    return names;
}

PulseLevelState PulseMixer::Find(const MixerDevice& device) {
    const std::vector<PulseLevelState> list = levels_.List(DirectionOf(device.side));
    const SoundDeviceList names = NamesOf(list);
    for (std::size_t i = 0; i < list.size(); ++i)
        if (IsNamed(names[i], device.name) && !list[i].volumes.empty()) return list[i];
    throw RuntimeError(sound_error::kNoDriver, "There is no sound device '" + device.name + "'.");
}

std::shared_ptr<DeviceMixer> PulseMixer::Open(const MixerDevice& device) {
    try {
        const PulseLevelState state = Find(device);
        const Place place{levels_, DirectionOf(device.side), state.name, state.description};
        if (device.side == MixerSide::kPlayback) return std::make_shared<PulsePlaybackMixer>(place);
        const PulsePorts ports(state.ports, state.activePort, state.description);
        return std::make_shared<PulseCaptureMixer>(place, ports);
    } catch (const RuntimeError&) {
        return nullptr;
    }
}

std::string PulseMixer::LastingName(const MixerDevice& device) {
    try {
        const PulseLevelState state = Find(device);
        return LastingDescription({state.name, state.description, ""});
    } catch (const RuntimeError&) {
        return device.name;
    }
}

std::string PulseMixer::AlsaCardOf(const MixerDevice& device) {
    try {
        return Find(device).alsaCard;
    } catch (const RuntimeError&) {
        return {};
    }
}

}  // namespace sonavex
