#pragma once

#include <string_view>

#include "core/stimulus/Stimulus.h"

namespace sonavex {

inline constexpr const char* kStimulusNotation =
    "sine:HZ, pair:F1,F2[,RATIO], smpte, din, ccif, aes17-mod, aes17-dfd, multitone:F@DB,..., "
    "multitone:N/oct, square:HZ, triangle:HZ, sawtooth:HZ, white or pink";

// Reads a stimulus in the notation above. RATIO is the amplitude of F1 relative to F2 (1 if not given), DB
// the level of a tone relative to the others. Throws StimulusError; PlanStimulus checks what depends on the
// rate.
Stimulus ParseStimulus(std::string_view text);

}  // namespace sonavex
