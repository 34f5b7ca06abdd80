#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "core/history/HistoryEntry.h"
#include "core/precise/results/ExportedMeasurement.h"

namespace sonavex {

// The reading as an entry of the history, without id and day. A void reading has no figures. `bits` of a
// recording are those of its samples.
HistoryEntry EntryOf(const ExportedMeasurement& measurement);
// AnalyzedJson; of a void reading without values.
std::string DetailsOf(const AnalyzedReading& reading);

// The values of NamedValuesOf from the text of AnalyzedJson. Of several tones the names are "frequency_hz.1",
// "frequency_hz.2" ... Empty for any other text.
std::vector<NamedValue> ReadingValuesIn(std::string_view json);

}  // namespace sonavex
