#pragma once

#include <string>

namespace sonavex::measure {

// The program sonavex-plot in the folder of this program. Throws MeasureError if it is missing.
std::string PlotProgram();

// Lets `program` draw the run (StoredRunText) as a picture and waits for it, a minute at most. Its own errors
// are on standard error. Throws MeasureError if it failed.
void DrawRun(const std::string& program, const std::string& run, const std::string& picture);

}  // namespace sonavex::measure
