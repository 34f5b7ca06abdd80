#pragma once

#include <cstddef>

#include "app/measure/Options.h"
#include "core/analyzer/RecordPlan.h"

namespace sonavex::measure {

// Samples of a record at this rate.
std::size_t RecordLength(const AnalyzeOptions& options, double rateHz);

// Throws MeasureError if the options of `analyze` do not fit each other, the rate or the length of a record.
void RequireSuitable(const AnalyzeOptions& options, const RecordPlan& plan);

}  // namespace sonavex::measure
