#pragma once

#include "app/measure/Options.h"
#include "core/analyzer/RecordPlan.h"
#include "core/analyzer/SpectrumMean.h"
#include "core/precise/results/AnalyzedReading.h"

namespace sonavex::measure {

// Stores a reading in the user's history and waits some seconds until it is on the disk. The spectrum becomes
// its curve. Throws FileError if it cannot be stored, MeasureError if it does not reach the disk.
void StoreReading(const AnalyzedReading& reading, const AnalyzeOptions& options, const MeanSpectrum& spectrum,
                  const RecordPlan& plan);

}  // namespace sonavex::measure
