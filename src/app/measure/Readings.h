#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "core/shell/Meter.h"

namespace sonavex::measure {

// What a live measurement adds to its readings.
struct Path {
    std::string input;  // device names
    std::string output;
    std::int32_t rateHz = 0;
    bool simulated = false;
};

// The readings after an update as one line of JSON, without line end. Captions are exactly what the
// labels hold.
std::string JsonLine(const Meter& meter, const std::optional<Path>& path);

// The readings as a table for people, several lines each with its line end.
std::string Table(const Meter& meter, const std::optional<Path>& path);

// A short line that tells how far the measurement is.
std::string ProgressLine(const Meter& meter);

// Writes the text to standard output at once. Throws MeasureError when that fails.
void Print(const std::string& text);

}  // namespace sonavex::measure
