#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/history/HistoryCurve.h"
#include "core/precise/results/AnalyzedReading.h"

namespace sonavex {

enum class HistoryKind { kReading, kRun };

// The state of a reading, or of a run: done without limits, judged, or not complete.
enum class HistoryState { kValid, kUnsteady, kVoid, kOverload, kDone, kPass, kFail, kNotComplete };

// "reading", "run"
const char* NameOf(HistoryKind kind);
// "VALID", "UNSTEADY", "VOID", "OVERLOAD", "DONE", "PASS", "FAIL", "NOT COMPLETE"
const char* NameOf(HistoryState state);
// Whether the figures can be trusted: not unsteady, void, overloaded or incomplete.
bool IsValid(HistoryState state);

// What the list of the history shows. All texts are UTF-8.
struct HistoryEntry {
    std::string id;    // of this entry alone
    std::string day;   // whose file contains it: "2026-11-23"
    std::string time;  // local: "2026-11-23 10:58:21"
    HistoryKind kind = HistoryKind::kReading;
    HistoryState state = HistoryState::kValid;
    std::string reason;  // why it is not valid, or what limits it; may be empty
    std::string note;    // the user's

    std::string input;  // device names; empty of a recording
    std::string output;
    std::string recording;  // file; empty of a live measurement
    std::string channel;    // "left", "right"
    double rateHz = 0;
    int inputBits = 0;
    int outputBits = 0;  // 0 of a recording
    bool simulated = false;
    std::string mode;  // as in AnalyzedJson
    std::string stimulus;
    std::vector<double> playedHz;
    std::vector<NamedValue> figures;  // the most important values
};

// What is shown of a selected entry.
struct HistoryDetails {
    std::string json;                // an object: AnalyzedJson of a reading, everything about a run
    std::vector<NamedValue> values;  // with names that differ; of a run the figures
    HistoryCurve curve;              // without columns if none is stored
};

// The entry as one JSON object, without details and curve.
std::string EntryJson(const HistoryEntry& entry);

// A line without a line end. details: a JSON object; anything else is stored as an empty one.
std::string EntryLine(const HistoryEntry& entry, std::string_view details, const HistoryCurve& curve);
// Changes of an entry, for the file that contains it.
std::string NoteLine(const std::string& id, const std::string& note);
std::string DeletionLine(const std::string& id);

// A line that was read.
struct HistoryRecord {
    enum class Kind { kEntry, kNote, kDeletion } kind = Kind::kEntry;
    HistoryEntry entry;  // of a change only `id` and `note`
};
// Empty for a damaged line, and for one of a kind that this version does not know.
std::optional<HistoryRecord> ReadLine(std::string_view line);
// Of a line with an entry. Empty for a damaged line.
std::optional<HistoryDetails> ReadDetails(std::string_view line);

}  // namespace sonavex
