#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "core/run/RunFile.h"

// The library's name.
// NOLINTNEXTLINE(readability-identifier-naming)
namespace CLI {
class App;
}

namespace sonavex::measure {

// Of a run over frequency or level.
struct SweepOptions {
    std::string file;       // with the run; empty: `plan`
    std::string continued;  // file with the lines of a run that was interrupted; empty: a new run
    RunPlan plan;
    std::vector<std::string> limits;  // QUANTITY:[LOW:]HIGH or QUANTITY:FILE
    std::string input;                // identifier; empty for the primary device
    std::string output;
    std::optional<std::int32_t> rateHz;
    std::string csv;   // file; empty: none
    std::string png;   // the same
    std::string save;  // the same
    bool history = false;
};

// The options write into `options` when the command line is parsed, and throw MeasureError.
void AddSweep(CLI::App& command, SweepOptions& options);

}  // namespace sonavex::measure
