#pragma once

#include <string>
#include <vector>

#include "core/precise/results/ExportFiles.h"
#include "core/run/MeasuredRun.h"

namespace sonavex::ui {

// The content of a PNG or PDF file: the plot of a run with legend and lines of text, in the colours of a
// page. An application object must exist. Needs no display.
std::string RunPicture(ExportKind kind, const MeasuredRun& run, const std::vector<std::string>& lines);

}  // namespace sonavex::ui
