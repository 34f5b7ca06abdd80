#pragma once

#include <string>

#include "core/history/HistoryEntry.h"
#include "core/run/MeasuredRun.h"

namespace sonavex {

// The run as an entry of the history, without id and day. Its figures are the highest THD and THD+N of the
// valid points; of a run that is not complete they are those of the points that were measured.
HistoryEntry EntryOf(const MeasuredRun& run, const std::string& name);

}  // namespace sonavex
