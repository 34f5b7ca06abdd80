#pragma once

#include <optional>
#include <vector>

#include "core/analyzer/Reading.h"
#include "core/analyzer/Record.h"
#include "core/analyzer/RecordPlan.h"

namespace sonavex {

// A tone must be 20 dB above the noise of the bins around it.
inline constexpr double kToneOverNoise = 100.0;

Void NoTone(const char* sentence);

// Whether a tone at this position (in bins) can be fitted.
std::optional<Void> PositionFault(const RecordPlan& plan, double position);

// Whether a line of this amplitude stands out of noise of this density per bin.
bool StandsOut(const RecordPlan& plan, double amplitude, double density);

// Standard deviation of the fitted frequency: white noise of this density per bin, times the gradient of the
// weighted sum.
double FrequencySigmaHz(const RecordPlan& plan, double amplitude, double density);

// Overload and word length. An overload voids a live record; in a recording it is a warning. A sound path of
// 16 bits is a warning, and so are wider words, live or recorded, of which only the upper 16 bits move.
void AddLevelFaults(const Record& record, std::vector<Void>& voids, std::vector<Warning>& warnings);

}  // namespace sonavex
