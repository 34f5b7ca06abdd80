#pragma once

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

#include "core/controls/Control.h"
#include "core/history/HistoryEntry.h"

namespace sonavex {

// The list of stored readings and runs: titles of days and entries, newest first. Any entries can be
// selected.
class HistoryList : public Control {
public:
    struct Row {
        std::string id;     // of the entry; empty in the title of a day
        std::string title;  // of the day: "Today"; empty in an entry
        std::string time;   // "10:58:21"
        std::string path;
        std::string rate;  // "48000"
        std::string bits;  // "24", or "24/16" of input and output
        std::string stimulus;
        std::string thd;  // "-102.57", "IMD -98.40"; "none" of a void reading
        std::string thdn;
        bool quiet = false;  // THD is a bound or none
        HistoryState state = HistoryState::kValid;
        std::string stateText;  // "VALID", "VOID 512 frames were lost"
        std::string reason;     // empty of a reading without remarks
        std::string note;
        friend bool operator==(const Row&, const Row&) = default;
    };

    const std::vector<Row>& Rows() const noexcept { return rows_; }
    void SetRows(std::vector<Row> rows) { Assign(rows_, std::move(rows)); }
    // Identifiers in the order of the rows.
    const std::vector<std::string>& Selected() const noexcept { return selected_; }
    void SetSelected(std::vector<std::string> ids) { Assign(selected_, std::move(ids)); }

    // The user selects exactly these entries, given in any order.
    void UserSelects(const std::vector<std::string>& ids);
    UserEvent Click;

    // The user has typed a note of an entry.
    void UserEditsNote(const std::string& id, const std::string& note) {
        edited_ = {id, note};
        NoteEdited.Raise();
    }
    UserEvent NoteEdited;
    struct Edit {
        std::string id;
        std::string note;
    };
    const Edit& Edited() const noexcept { return edited_; }

private:
    std::vector<Row> rows_;
    std::vector<std::string> selected_;
    Edit edited_;
};

// The values of a selected entry, or those of two that are compared: a column for each value.
class HistoryTableView : public Control {
public:
    struct Column {
        std::string name;  // "THD"
        std::string unit;
        std::string first;   // "-102.57"
        std::string second;  // of one entry the spread; of two the value of the other
        std::string difference;
        friend bool operator==(const Column&, const Column&) = default;
    };
    struct Content {
        std::vector<std::string> rows;  // names of the rows that are shown: up to three
        std::vector<Column> columns;
        friend bool operator==(const Content&, const Content&) = default;
    };

    const Content& Shown() const noexcept { return content_; }
    void Show(Content content) { Assign(content_, std::move(content)); }

private:
    Content content_;
};

}  // namespace sonavex
