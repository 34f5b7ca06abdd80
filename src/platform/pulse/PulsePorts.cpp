#include "platform/pulse/PulsePorts.h"

#include <pulse/def.h>

#include <algorithm>
#include <utility>

#include "core/text/Characters.h"

namespace sonavex {

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
    if (Contains(upper, "MIC")) return PulseInput::kMicrophone;
    return Contains(upper, "LINE") ? PulseInput::kLine : PulseInput::kOther;
}

PulsePorts::PulsePorts(std::vector<PulsePort> ports, const std::string& activePort,
                       const std::string& deviceName)
    : ports_(std::move(ports)),
      active_(Contains(UpperCase(deviceName), "MIC") ? PulseInput::kMicrophone : PulseInput::kLine) {
    for (const PulsePort& port : ports_)
        if (port.name == activePort && port.input != PulseInput::kOther) active_ = port.input;
}

std::string PulsePorts::PortFor(PulseInput input) const {
    const auto found = std::find_if(ports_.begin(), ports_.end(),
                                    [&](const PulsePort& port) { return port.input == input; });
    return found == ports_.end() ? std::string() : found->name;
}

}  // namespace sonavex
