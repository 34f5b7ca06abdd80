#pragma once

#include <string>

#include "core/precise/results/ValidityRules.h"

namespace sonavex::measure {

// A reading as AnalyzedJson prints it. Throws MeasureError if the file contains none or a void one.
SavedReading ReadSavedReading(const std::string& path);

}  // namespace sonavex::measure
