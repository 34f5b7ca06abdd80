#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "core/stimulus/SampleWord.h"

// Values of options, from their text. Each throws MeasureError for a text that it does not take.
namespace sonavex::measure {

// All rates, separated by commas.
std::string AllRates();

// Refuses the value of an option; `takes` describes the allowed values.
[[noreturn]] void Refuse(const std::string& option, const std::string& takes, const std::string& text);

struct Range {
    double lowest;
    double highest;
};

double NumberOf(const std::string& option, const std::string& takes, Range range, const std::string& text);
std::int32_t WholeNumberOf(const std::string& option, const std::string& takes, Range range,
                           const std::string& text);
// At least one number, separated by commas.
std::vector<double> NumbersOf(const std::string& option, const std::string& takes, Range range,
                              const std::string& text);
// "LOW:HIGH"
Range BandOf(const std::string& text);
std::int32_t SampleRateOf(const std::string& text);
std::int32_t RecordLengthOf(const std::string& text);
std::string OutputFileOf(const std::string& option, const std::string& text);
StimulusSide SideOf(const std::string& text);
// The bits of the dither; 0: none.
int DitherOf(const std::string& text);

}  // namespace sonavex::measure
