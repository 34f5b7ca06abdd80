// The file of a day with any content: every line is an entry, a change of one, or counted as damaged; a
// compaction changes none of them; entries can be shown, compared and exported.
//
// First byte: bit 0 adds the checksums of the lines, without which hardly any line is undamaged.

#include <algorithm>
#include <string>

#include "core/history/HistoryDay.h"
#include "core/history/HistoryLine.h"
#include "core/history/HistoryTable.h"
#include "core/history/HistoryView.h"
#include "fuzz/FuzzTarget.h"
#include "support/MemoryHistory.h"

namespace sonavex {
namespace {

using fuzz::Require;

constexpr const char* kFuzzedDay = "2026-11-23";

std::string FuzzedText(fuzz::Input input) {
    const bool sealed = (input.Byte() & 1U) != 0;
    if (!sealed) return std::string(input.Rest());
    std::string text;
    while (!input.AtEnd()) {
        const std::string_view line = input.Line();
        if (!line.empty()) text += SealedLine(line) + '\n';
    }
    return text;
}

std::string Summary(const HistoryDay& day) {
    std::string text = std::to_string(day.damaged + (day.incomplete ? 1 : 0)) + " damaged\n";
    for (const HistoryEntry& entry : day.entries) text += EntryLine(entry, "{}", {}) + '\n';
    return text;
}

void CheckCompaction(const HistoryDay& day, const std::string& text) {
    Require(day.deadBytes <= text.size(), "dead bytes are within the file");
    const std::optional<std::string> after = Compacted(day, text);
    if (!after) return;
    Require(after->size() <= text.size(), "a compaction does not grow the file");
    const HistoryDay compacted = ReadHistoryDay(kFuzzedDay, *after);
    Require(Summary(compacted) == Summary(day), "a compaction changes no entry");
    Require(compacted.deadBytes == 0, "nothing dead is left");
}

// Columns of each row; in a quoted field neither comma nor line end counts.
void CheckTable(const std::string& csv, std::size_t rows) {
    std::size_t columns = 0;
    std::size_t found = 0;
    std::size_t commas = 0;
    bool quoted = false;
    for (const char character : csv) {
        if (character == '"') quoted = !quoted;
        if (quoted) continue;
        if (character == ',') ++commas;
        if (character != '\n') continue;
        if (found == 0) columns = commas;
        Require(commas == columns, "every row has all columns");
        commas = 0;
        ++found;
    }
    Require(found == rows + 1 && !quoted, "every entry has one row");
}

void CheckEntries(const HistoryDay& day, const std::string& text) {
    MemoryHistory files;
    files.texts[kFuzzedDay] = text;
    const std::vector<const HistoryEntry*> shown = ShownEntries(day.entries, {});
    Require(shown.size() == day.entries.size(), "an empty filter shows everything");
    std::vector<NamedValue> before;
    for (const HistoryEntry* const entry : shown) {
        const std::optional<HistoryDetails> details = ReadDetails(LineOf(entry->id, text));
        Require(ReadDetails(EntryLine(*entry, "{}", {})).has_value(), "what is stored has details");
        // Only a forged checksum allows that they are no JSON.
        if (!details) continue;
        for (const ComparedRow& row : Compare(details->values, before))
            Require(fuzz::IsUtf8(row.name + row.first + row.second), "texts are UTF-8");
        before = details->values;
        Require(fuzz::IsUtf8(PathOf(*entry) + StimulusOf(*entry) + StateOf(*entry)), "texts are UTF-8");
        HistoryFilter filter;
        filter.text = entry->note.substr(0, entry->note.find(' '));
        filter.device = entry->input;
        const auto hits = ShownEntries(day.entries, filter);
        Require(std::find(hits.begin(), hits.end(), entry) != hits.end(), "an entry is found by its words");
    }
    std::size_t grouped = 0;
    for (const HistoryGroup& group : ByDay(shown)) grouped += group.entries.size();
    Require(grouped == shown.size(), "every entry has a day");
    CheckTable(HistoryCsv(shown, files), shown.size());
}

}  // namespace
}  // namespace sonavex

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace sonavex;
    const std::string text = FuzzedText({data, size});
    const HistoryDay day = ReadHistoryDay(kFuzzedDay, text);
    CheckCompaction(day, text);
    CheckEntries(day, text);
    return 0;
}
