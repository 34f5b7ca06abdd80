#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/history/HistoryEntry.h"

namespace sonavex {

// The file of one day. Notes and deletions follow the entries that they change.
struct HistoryDay {
    std::vector<HistoryEntry> entries;  // in the order of the file; with their newest notes
    std::size_t damaged = 0;            // lines that are skipped, without an incomplete one at the end
    bool incomplete = false;            // the last line is incomplete

    // The lines that a compaction keeps: entries, their newest notes, damaged lines. They point into the
    // text.
    std::vector<std::string_view> keptLines;
    std::size_t deadBytes = 0;
};

// text: the content of the file; must outlive the result.
HistoryDay ReadHistoryDay(const std::string& day, std::string_view text);

// The new content of a file of which at least a third is dead. Empty if less is.
std::optional<std::string> Compacted(const HistoryDay& day, std::string_view text);

// The line of an entry in the content of a file; empty if there is none.
std::string_view LineOf(const std::string& id, std::string_view text);

}  // namespace sonavex
