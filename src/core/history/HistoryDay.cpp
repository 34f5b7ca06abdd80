#include "core/history/HistoryDay.h"

#include <algorithm>
#include <map>
#include <utility>

namespace sonavex {
namespace {

constexpr std::size_t kDeadPartOfFile = 3;

// The next line without its line end; removes it from the text.
std::string_view TakeDayLine(std::string_view& text) {
    const std::string_view line = text.substr(0, text.find('\n'));
    text.remove_prefix(std::min(line.size() + 1, text.size()));
    return line;
}

bool IsLineOf(const std::string& id, std::string_view line) {
    const std::optional<HistoryRecord> record = ReadLine(line);
    return record && record->kind == HistoryRecord::Kind::kEntry && record->entry.id == id;
}

// asWritten: only lines that contain the identifier without escapes, which takes much less time.
std::string_view SearchLine(const std::string& id, std::string_view text, bool asWritten) {
    while (!text.empty()) {
        const std::string_view line = TakeDayLine(text);
        if ((!asWritten || line.find(id) != std::string_view::npos) && IsLineOf(id, line)) return line;
    }
    return {};
}

class HistoryDayReader {
public:
    explicit HistoryDayReader(const std::string& day) : day_(day) {}

    void Take(std::string_view line) {
        std::optional<HistoryRecord> record = ReadLine(line);
        if (!record)
            Keep(line);
        else if (record->kind == HistoryRecord::Kind::kEntry)
            TakeEntry(std::move(record->entry), line);
        else
            Change(*record, line);
    }

    HistoryDay Finish() {
        for (Row& row : rows_) {
            if (row.line.empty()) continue;
            result_.keptLines.push_back(row.line);
            if (!row.noteLine.empty()) result_.keptLines.push_back(row.noteLine);
            if (row.entry)
                result_.entries.push_back(std::move(*row.entry));
            else
                ++result_.damaged;
        }
        return std::move(result_);
    }

private:
    // A line that is kept, empty after a deletion, with the line of its newest note.
    struct Row {
        std::string_view line;
        std::optional<HistoryEntry> entry;  // empty of a damaged line
        std::string_view noteLine;
    };

    void Keep(std::string_view line) { rows_.push_back({line, std::nullopt, {}}); }

    void TakeEntry(HistoryEntry entry, std::string_view line) {
        // The first entry of an identifier counts. Another one is dead, so that it cannot replace a deleted
        // one.
        if (!byId_.try_emplace(entry.id, rows_.size()).second) return;
        entry.day = day_;
        rows_.push_back({line, std::move(entry), {}});
    }

    // A change of an entry that does not exist is dead.
    void Change(const HistoryRecord& record, std::string_view line) {
        const auto found = byId_.find(record.entry.id);
        if (found == byId_.end()) return;
        Row& row = rows_[found->second];
        if (!row.entry) return;
        if (record.kind == HistoryRecord::Kind::kDeletion) {
            row = {};
        } else {
            row.entry->note = record.entry.note;
            row.noteLine = line;
        }
    }

    std::string day_;
    std::vector<Row> rows_;
    std::map<std::string, std::size_t, std::less<>> byId_;
    HistoryDay result_;
};

}  // namespace

HistoryDay ReadHistoryDay(const std::string& day, std::string_view text) {
    const bool complete = text.empty() || text.back() == '\n';
    HistoryDayReader reader(day);
    std::string_view last;
    for (std::string_view rest = text; !rest.empty();) {
        last = TakeDayLine(rest);
        if (!last.empty()) reader.Take(last);
    }
    HistoryDay result = reader.Finish();
    std::size_t kept = 0;
    for (const std::string_view line : result.keptLines) kept += line.size() + 1;
    result.deadBytes = text.size() - std::min(kept, text.size());
    result.incomplete = !complete && !ReadLine(last);
    if (result.incomplete) --result.damaged;
    return result;
}

std::optional<std::string> Compacted(const HistoryDay& day, std::string_view text) {
    if (day.deadBytes == 0 || kDeadPartOfFile * day.deadBytes < text.size()) return std::nullopt;
    std::string kept;
    for (const std::string_view line : day.keptLines) kept.append(line).append(1, '\n');
    return kept;
}

std::string_view LineOf(const std::string& id, std::string_view text) {
    const std::string_view line = SearchLine(id, text, true);
    return line.empty() ? SearchLine(id, text, false) : line;
}

}  // namespace sonavex
