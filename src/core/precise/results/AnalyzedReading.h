#pragma once

#include <optional>
#include <string>
#include <vector>

#include "core/analyzer/LinesReading.h"
#include "core/precise/RecordAnalysis.h"
#include "core/precise/results/StreamDetails.h"

namespace sonavex {

// What a rule says about the validity of a reading.
struct RuleResult {
    std::string rule;
    bool met = false;
    std::string sentence;
};

// A reading of any mode with what is printed beside it. In the mode tone only `values.reading` is used.
struct AnalyzedReading {
    PreciseMode mode = PreciseMode::kTone;
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

// A defined value, "-102.57", or as a bound, "at most -140.6", which is rounded up.
std::string FigureText(const Value& value, int decimals);

// "thd", "imd", "multitone", "noise"
const char* NameOf(PreciseMode mode);

// The window of every record.
inline constexpr const char* kRecordWindow = "7-term minimum side lobe";

struct NamedValue {
    std::string name;  // as in AnalyzedJson
    std::string unit;
    int decimals = 0;
    Value value;
};
// Every value with its name, also those that are not defined.
std::vector<NamedValue> NamedValuesOf(const AnalyzedReading& reading);

}  // namespace sonavex
