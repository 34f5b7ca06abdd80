#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

#include "core/mixer/MixerControl.h"

namespace sonavex {

// Selects every control of the mixer, by ascending destination and control index, and calls the action
// with its name.
void ForEachControl(MixerControl& mixer, const std::function<void(const std::string& name)>& action);

// Number of the first mixer device whose name is the beginning of the sound device's name; -1 when there
// is none. A mixer device with an empty name matches nothing.
std::int32_t FindMixerDevice(MixerControl& mixer, std::string_view soundDeviceName);

}  // namespace sonavex
