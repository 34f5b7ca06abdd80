#pragma once

#include <cstddef>
#include <string_view>

#include "core/run/MeasuredRun.h"

namespace sonavex {

// A run read from the lines of RunPointJson.
struct RunLines {
    // Points that no line holds are void with the code "not measured" where later ones are measured.
    MeasuredRun run;
    std::size_t skipped = 0;  // lines that are incomplete or hold no point of the run
};

// The first line with a run counts; of several lines with the same point the last one does. Lines may be
// empty, and that of a preview is no point. RunError when no line holds a run, and when no line holds a point
// of it.
RunLines ReadRunLines(std::string_view text);

}  // namespace sonavex
