#include "platform/pulse/PulsePorts.h"

#include <pulse/def.h>

#include <algorithm>
#include <utility>

namespace sonavex {
namespace {

std::string UpperCase(std::string text) {
    for (char& letter : text)
        if (letter >= 'a' && letter <= 'z') letter = static_cast<char>(letter - 'a' + 'A');
    return text;
}

bool Says(const std::string& upper, const char* word) {
    return upper.find(word) != std::string::npos;
}

}  // namespace

PulseInput InputOfPort(int type, const std::string& name, const std::string& description) {
    switch (type) {
        case PA_DEVICE_PORT_TYPE_MIC:
        case PA_DEVICE_PORT_TYPE_HEADSET:
        case PA_DEVICE_PORT_TYPE_HANDSET:
            return PulseInput::kMicrophone;
        case PA_DEVICE_PORT_TYPE_LINE:
            return PulseInput::kLine;
        default:
            break;
    }
    const std::string upper = UpperCase(name + ' ' + description);
    if (Says(upper, "MIC")) return PulseInput::kMicrophone;
    return Says(upper, "LINE") ? PulseInput::kLine : PulseInput::kOther;
}

PulsePorts::PulsePorts(std::vector<PulsePort> ports, const std::string& activePort,
                       const std::string& deviceName)
    : ports_(std::move(ports)),
      active_(Says(UpperCase(deviceName), "MIC") ? PulseInput::kMicrophone : PulseInput::kLine) {
    for (const PulsePort& port : ports_)
        if (port.name == activePort && port.input != PulseInput::kOther) active_ = port.input;
}

std::string PulsePorts::PortFor(PulseInput input) const {
    const auto found = std::find_if(ports_.begin(), ports_.end(),
                                    [&](const PulsePort& port) { return port.input == input; });
    return found == ports_.end() ? std::string() : found->name;
}

}  // namespace sonavex
