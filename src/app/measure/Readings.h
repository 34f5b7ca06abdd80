#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "core/audio/Meter.h"

namespace sonavex::measure {

// What a live measurement adds to its readings.
struct StreamDetails {
    std::string input;  // device names
    std::string output;
    std::int32_t rateHz = 0;
    bool simulated = false;
    std::vector<std::string> notes;  // what changes the samples on their way
    std::uint64_t blocksLost = 0;
    std::uint64_t framesMissing = 0;  // in the input, replaced by silence
    std::uint64_t overruns = 0;       // the output was not written in time
    std::uint64_t underruns = 0;      // the output device ran out of samples
};

// The readings after an update as one line of JSON, without line end. Captions are exactly what the
// labels hold.
std::string JsonLine(const Meter& meter, const std::optional<StreamDetails>& details);

// The readings as a table for people, several lines each with its line end.
std::string Table(const Meter& meter, const std::optional<StreamDetails>& details);

// A short line that tells how far the measurement is.
std::string ProgressLine(const Meter& meter);

// Writes the text to standard output at once. Throws MeasureError when that fails.
void Print(const std::string& text);

}  // namespace sonavex::measure
