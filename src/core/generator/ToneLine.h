#pragma once

#include <string>
#include <string_view>

#include "core/generator/ToneTable.h"

// The lines of the memory list. The user reads them and the list stores the tones in them: "1000Hz / 5000Hz
// / Sine / 2000ms / Loop", or without a sweep "1000Hz / NA / Square / NA / No Loop".
namespace sonavex {

std::string MakeToneLine(const ToneRecord& tone, std::string_view waveName, bool loop);

// Reads a line of the list into `tone`. A missing number reads as 0. An unknown waveform, and LoopIncrement,
// keep their value in `tone`. Error 6 for a number that does not fit.
void ParseToneLine(std::string_view line, ToneRecord& tone);

}  // namespace sonavex
