#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "core/history/HistoryEntry.h"
#include "core/ports/HistoryFiles.h"

namespace sonavex {

struct LoadedHistory {
    std::vector<HistoryEntry> entries;  // oldest day first, in the order of their files
    std::size_t damaged = 0;            // lines that were skipped
    std::size_t incomplete = 0;  // days whose last line is incomplete: a process was killed or is writing
    std::vector<std::string> failures;  // sentences about files that cannot be read

    // Sentences about everything that was skipped; empty if nothing was.
    std::string Trouble() const;
};

// Any thread. A file that cannot be read does not keep the others from being read.
LoadedHistory LoadHistory(const HistoryFiles& files);

// The same, and replaces each file of which at least a third is dead.
LoadedHistory LoadAndCompactHistory(HistoryFiles& files);

// Empty if the entry no longer exists. Throws FileError. Any thread.
std::optional<HistoryDetails> DetailsOf(const HistoryEntry& entry, const HistoryFiles& files);

}  // namespace sonavex
