#pragma once

#include "core/dsp/MeasurementControls.h"
#include "core/ports/Printer.h"
#include "core/text/Dates.h"

namespace sonavex {

// Composes the report of the measurement that is on screen, one page on the selected printer: date,
// fundamental, input level, distortion up to each harmonic with the total, each harmonic in dB. Reads
// captions only. Does not end the document. A printer's error ends the page and is not reported here:
// the end of the document reports it.
void PrintInformation(const MeasurementControls& measurement, const CalendarDate& today, Printer& printer);

}  // namespace sonavex
