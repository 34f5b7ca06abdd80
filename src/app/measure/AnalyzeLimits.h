#pragma once

#include <cstddef>

#include "app/measure/Options.h"
#include "core/analyzer/RecordPlan.h"
#include "core/precise/RecordAnalysis.h"

namespace sonavex::measure {

// Samples of a record at this rate.
std::size_t RecordLength(const AnalyzeOptions& options, double rateHz);

// The channel, the mode and the values of `analyze` for the measurement.
PreciseSettings SettingsOf(const AnalyzeOptions& options, double rateHz);

// Throws MeasureError if the options of `analyze` do not fit each other, the rate or the length of a record.
void RequireSuitable(const AnalyzeOptions& options, const RecordPlan& plan);

}  // namespace sonavex::measure
