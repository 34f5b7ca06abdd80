#pragma once

#include <optional>
#include <string>

#include "core/history/HistoryEntry.h"
#include "platform/plain/IniText.h"
#include "support/ChildProcess.h"

namespace sonavex {

// Processes that are killed while they write. The test executable runs them when started with one of these
// commands. Each starts with the set that the file does not hold, prints "writing" after its first complete
// write, and continues until it is killed.

// Two complete sets of settings without a common value, each several pages long.
inline constexpr char kSettingsSets[] = {'A', 'B'};
IniSections SettingsSet(char which);
// Alternately writes the two sets through the store. Other sections stay.
Arguments SettingsWriter(const std::filesystem::path& file);

std::string JournalText(char which);
Arguments JournalWriter(const std::filesystem::path& file);

// The first line of the report identifies the set.
Arguments ReportWriter(const std::filesystem::path& file);

// Stores entries in a history and deletes all but the newest. Starts with a compaction. Prints "stored ID",
// "deleting ID" and "deleted ID". Two may run at the same time.
Arguments HistoryWriter(const std::filesystem::path& folder);
// The entry, details and curve that it stores.
HistoryEntry WrittenEntry(const std::string& id);
inline constexpr const char* kWrittenDetails = R"({"a":[1,2,3]})";
HistoryCurve WrittenCurve();

// Runs the writer in the command line and returns its exit status; nothing if there is none.
std::optional<int> RunWriter(int argc, char** argv);

}  // namespace sonavex
