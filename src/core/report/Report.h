#pragma once

#include <string>
#include <vector>

#include "core/dsp/display/MeasurementControls.h"
#include "core/ports/Printer.h"
#include "core/text/Dates.h"

namespace sonavex {

// Prints the report of the measurement on screen, one page on the selected printer: date, fundamental, input
// level, distortion up to each harmonic with the total, level of each harmonic in dB. Reads captions only.
// `second` are the lines of a second block below the footer, from 5.2 inches; lines below the lower margin
// are left out. Does not end the document. A printer error ends the page silently; EndDoc raises it.
void PrintInformation(const MeasurementControls& measurement, const CalendarDate& today, Printer& printer,
                      const std::vector<std::string>& second = {});

}  // namespace sonavex
