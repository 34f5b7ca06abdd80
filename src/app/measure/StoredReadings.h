#pragma once

#include "app/measure/Options.h"
#include "core/analyzer/RecordPlan.h"
#include "core/analyzer/SpectrumMean.h"
#include "core/precise/results/AnalyzedReading.h"
#include "core/run/MeasuredRun.h"

namespace sonavex::measure {

// Stores a reading in the user's history and waits some seconds until it is on the disk. The spectrum becomes
// its curve. Throws FileError if it cannot be stored, MeasureError if it does not reach the disk.
void StoreReading(const AnalyzedReading& reading, const AnalyzeOptions& options, const MeanSpectrum& spectrum,
                  const RecordPlan& plan);

// The same for a run, complete or not.
void StoreRun(const MeasuredRun& run);

}  // namespace sonavex::measure
