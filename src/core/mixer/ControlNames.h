#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "core/ports/MixerControl.h"

namespace sonavex {

// Letters A to Z only, whatever the desktop's language.
std::string UpperCase(std::string_view text);

inline bool Contains(std::string_view text, std::string_view part) noexcept {
    return text.find(part) != std::string_view::npos;
}

// Selects every control of the mixer, destinations and controls ascending, and calls the action with
// its name.
void ForEachControl(MixerControl& mixer, const std::function<void(const std::string& name)>& action);

// Number of the mixer device that belongs to a sound device: the first whose name is the beginning of
// the sound device's name. -1 when none is; an empty mixer name matches nothing.
std::int32_t FindMixerDevice(MixerControl& mixer, std::string_view soundDeviceName);

}  // namespace sonavex
