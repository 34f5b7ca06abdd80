#pragma once

#include <string>
#include <string_view>

#include "core/generator/Tones.h"

// The lines of the memory list, which are both what the user reads and where the tones are kept:
// "1000Hz / 5000Hz  / Sine / 2000ms / Loop", without a sweep "1000Hz / NA / Square / NA / No Loop".
namespace sonavex {

std::string MakeToneLine(const ToneRecord& tone, std::string_view waveName, bool loop);

// The inverse. A number that is missing reads as 0; a waveform that is unknown, and LoopIncrement,
// stay as they were in `tone`. Error 6 for a number that does not fit.
void ParseToneLine(std::string_view line, ToneRecord& tone);

}  // namespace sonavex
