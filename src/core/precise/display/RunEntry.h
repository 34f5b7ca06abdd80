#pragma once

#include "core/history/HistoryEntry.h"
#include "core/run/MeasuredRun.h"

namespace sonavex {

// A run as an entry of the history, without id and day; StoredRunText is its details. The figures are the
// highest THD and THD+N of the valid points. time: of a run that does not state its own.
HistoryEntry EntryOf(const MeasuredRun& run, const std::string& time);

}  // namespace sonavex
