#pragma once

#include <string>
#include <vector>

#include "core/history/HistoryEntry.h"
#include "core/ports/HistoryFiles.h"

namespace sonavex {

// A value of two entries as text, without units.
struct ComparedRow {
    std::string name;  // "thd_db"
    std::string unit;
    std::string first;  // "-102.570", "≤ -116.0"; empty if the entry has no such value
    std::string second;
    std::string difference;  // first - second; empty if one is missing or a bound
};

// Every value that one of them has, in the order of the first.
std::vector<ComparedRow> Compare(const std::vector<NamedValue>& first, const std::vector<NamedValue>& second);

// The entries with every condition and every value as a table (RFC 4180, UTF-8, numbers in the "C" locale). A
// value has three columns: "thd_db (dB)", its uncertainty (95 %), and its bound: 1 if noise hides the value.
// Figures of entries that are void are empty. Throws FileError.
std::string HistoryCsv(const std::vector<const HistoryEntry*>& shown, const HistoryFiles& files);

}  // namespace sonavex
