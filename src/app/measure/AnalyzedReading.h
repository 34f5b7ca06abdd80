#pragma once

#include <optional>
#include <string>
#include <vector>

#include "app/measure/Options.h"
#include "app/measure/Readings.h"
#include "core/analyzer/LinesReading.h"

namespace sonavex::measure {

// What a rule says about the validity of a reading.
struct RuleResult {
    std::string rule;
    bool met = false;
    std::string sentence;
};

// A reading of any mode with what is printed beside it. In the mode thd only `values.reading` is used.
struct AnalyzedReading {
    AnalyzeMode mode = AnalyzeMode::kThd;
    LinesReading values;
    double rateHz = 0;
    std::vector<RuleResult> rules;

    // Of a live measurement.
    std::optional<StreamDetails> stream;
    std::string stimulus;          // as typed
    std::vector<double> playedHz;  // the tones as played
};

// One line without a line end. Undefined values are null.
std::string AnalyzedJson(const AnalyzedReading& reading);

// Lines with a line end each.
std::string AnalyzedTable(const AnalyzedReading& reading);

const char* NameOf(AnalyzeMode mode);

}  // namespace sonavex::measure
