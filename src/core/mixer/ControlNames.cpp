#include "core/mixer/ControlNames.h"

namespace sonavex {

void ForEachControl(MixerControl& mixer, const std::function<void(const std::string& name)>& action) {
    const std::int16_t destinations = mixer.DestinationCount();
    for (std::int16_t destination = 0; destination < destinations; ++destination) {
        mixer.SetDestination(destination);
        const std::int16_t controls = mixer.ControlCount();
        for (std::int16_t control = 0; control < controls; ++control) {
            // The action may have selected another control.
            mixer.SetDestination(destination);
            mixer.SetControl(control);
            action(mixer.ControlName());
        }
    }
}

std::int32_t FindMixerDevice(MixerControl& mixer, std::string_view soundDeviceName) {
    const std::int32_t count = mixer.DeviceCount();
    for (std::int32_t number = 0; number < count; ++number) {
        const std::string name = mixer.DeviceName(number);
        if (!name.empty() && soundDeviceName.substr(0, name.size()) == name) return number;
    }
    return -1;
}

}  // namespace sonavex
