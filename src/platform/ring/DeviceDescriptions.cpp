#include "platform/ring/DeviceDescriptions.h"

#include <map>

namespace sonavex {
namespace {

std::string MarkOf(const SoundDeviceInfo& device) {
    return " [" + device.identifier + ']';
}

}  // namespace

void DistinguishDescriptions(SoundDeviceList& devices) {
    std::map<std::string, int> counts;
    for (const SoundDeviceInfo& device : devices) ++counts[device.description];
    for (SoundDeviceInfo& device : devices)
        if (counts[device.description] > 1) device.description += MarkOf(device);
}

std::string LastingDescription(const SoundDeviceInfo& device) {
    const std::string mark = MarkOf(device);
    return device.description.ends_with(mark) ? device.description : device.description + mark;
}

bool IsNamed(const SoundDeviceInfo& device, const std::string& name) {
    return device.description == name || LastingDescription(device) == name;
}

}  // namespace sonavex
