#pragma once

#include <string>
#include <string_view>

#include "core/mixer/MixerControl.h"

// The state of an older mixer as one line of text. Every control has four fields: destination index,
// control name, value of channel 0, value of channel 1. A comma follows every field. Commas in names are
// replaced by blanks.
namespace sonavex {

std::string GetLegacyMixerState(MixerControl& mixer);

// Applies a state line control by control. Skips controls that the mixer lacks, and negative values.
// Errors: 5 (a comma is missing), 13 (a field is not a number), 6 (a number is out of range). The controls
// before the error stay set.
void SetLegacyMixerState(MixerControl& mixer, std::string_view line);

}  // namespace sonavex
