#include "platform/ring/DeviceDescriptions.h"

#include <map>
#include <string>

namespace sonavex {

void DistinguishDescriptions(SoundDeviceList& devices) {
    std::map<std::string, int> counts;
    for (const SoundDeviceInfo& device : devices) ++counts[device.description];
    for (SoundDeviceInfo& device : devices)
        if (counts[device.description] > 1) device.description += " [" + device.identifier + ']';
}

}  // namespace sonavex
