#pragma once

#include <string>
#include <string_view>

#include "core/ports/MixerControl.h"

// The state of an older mixer as one line of text: destination index, control name, value of channel 0
// and of channel 1 for every control, each field followed by a comma.
namespace sonavex {

std::string GetLegacyMixerState(MixerControl& mixer);

// Puts a state line on the mixer, control by control. A control that the mixer does not have is left
// out. Errors 5 (a comma is missing), 13 (not a number) and 6 (out of range) after the controls before
// it have been set.
void SetLegacyMixerState(MixerControl& mixer, std::string_view line);

}  // namespace sonavex
