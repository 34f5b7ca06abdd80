#pragma once

#include <optional>
#include <string>

#include "core/audio/Meter.h"
#include "core/precise/results/StreamDetails.h"

namespace sonavex::measure {

// The readings after an update as one line of JSON without a line end. Captions are those of the labels.
std::string JsonLine(const Meter& meter, const std::optional<StreamDetails>& details);

// The readings as a table, with a line end after each line.
std::string Table(const Meter& meter, const std::optional<StreamDetails>& details);

// A short line with the progress of the measurement.
std::string ProgressLine(const Meter& meter);

// Writes the text to standard output at once. Throws MeasureError on failure.
void Print(const std::string& text);

}  // namespace sonavex::measure
