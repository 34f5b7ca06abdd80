#pragma once

#include <string>
#include <vector>

#include "core/history/HistoryEntry.h"
#include "core/history/display/HistoryList.h"
#include "core/text/Dates.h"

namespace sonavex {

// Titles and entries of the list. shown: newest first.
std::vector<HistoryList::Row> RowsOf(const std::vector<const HistoryEntry*>& shown,
                                     const CalendarDate& today);

// The conditions below the list. details: of HistoryDetails; a text that is not known leaves lines empty.
struct HistoryConditions {
    std::string analysis;  // "65536 points, 8 averages, left"
    std::string band;      // "20 Hz to 20000 Hz, H2 to H9"
    std::string path;      // "48000 Hz, in 24, out 16 bit, simulated"
    std::string stimulus;
};
HistoryConditions ConditionsOf(const HistoryEntry& entry, const std::string& details);

// The values of one entry, or those of two side by side. Phases are left out.
HistoryTableView::Content ShownValues(const std::vector<NamedValue>& values);
HistoryTableView::Content ComparedValues(const std::vector<NamedValue>& first,
                                         const std::vector<NamedValue>& second);

// Lines of texts that are separated by tabs, after one with the names of the columns.
std::string TabbedText(const std::vector<const HistoryEntry*>& entries);

}  // namespace sonavex
