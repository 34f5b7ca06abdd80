#pragma once

#include <optional>
#include <string>
#include <vector>

#include "core/history/HistoryEntry.h"
#include "core/text/Dates.h"

namespace sonavex {

// Which entries are shown.
struct HistoryFilter {
    // Words, of which each must occur in time, devices, recording, stimulus, state, reason or note. Upper and
    // lower case of a to z are the same.
    std::string text;
    std::optional<HistoryKind> kind;
    std::string stimulus;  // one of StimuliOf; empty for all
    std::string device;    // one of DevicesOf; empty for all
    bool validOnly = false;
};

// The entries that pass, newest first. They point into `entries`.
std::vector<const HistoryEntry*> ShownEntries(const std::vector<HistoryEntry>& entries,
                                              const HistoryFilter& filter);

// The shown entries of one local day.
struct HistoryGroup {
    std::string day;  // "2026-11-23"
    std::vector<const HistoryEntry*> entries;
};
std::vector<HistoryGroup> ByDay(const std::vector<const HistoryEntry*>& shown);
// "Today", "Yesterday", or the day.
std::string TitleOf(const std::string& day, const CalendarDate& today);

// "Line In -> Line Out", or the file name of a recording.
std::string PathOf(const HistoryEntry& entry);
// "sine:1000, played 999.756 Hz"; empty of a recording.
std::string StimulusOf(const HistoryEntry& entry);
// "VALID", "VOID 512 frames were lost"
std::string StateOf(const HistoryEntry& entry);
// The value of a name among the figures, with its decimals: "-102.57", "≤ -116.0". Empty without one.
std::string FigureOf(const HistoryEntry& entry, const std::string& name, int decimals);

// What the filters offer, sorted: input and output devices; stimuli without their frequencies: "sine".
std::vector<std::string> DevicesOf(const std::vector<HistoryEntry>& entries);
std::vector<std::string> StimuliOf(const std::vector<HistoryEntry>& entries);

}  // namespace sonavex
