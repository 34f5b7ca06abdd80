#pragma once

#include <string>
#include <string_view>

namespace sonavex {

// The tones of a multitone as the user types them, and as ParseStimulus reads them after "multitone:".

// Reads "1k@-6, 3000 Hz" or "3/oct"; a tone without a level has 0 dB. Returns "1000@-6,3000@0" or "3/oct".
// StimulusError names the part that is neither. ParseStimulus checks the number of tones and the limits.
std::string ToneNotation(std::string_view typed);

// A list of tones with one in each line, "1000, -6", and back. Lines may have any contents.
std::string LinesOfTones(std::string_view tones);
std::string TonesOfLines(std::string_view lines);

}  // namespace sonavex
