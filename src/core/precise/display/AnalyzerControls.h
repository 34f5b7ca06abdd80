#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "core/controls/Choices.h"
#include "core/controls/Controls.h"

namespace sonavex {

// The state of the figures, with the cause if there are none.
class StateChip : public Control {
public:
    enum class Kind { kOff, kValid, kSettling, kUnsteady, kVoid, kOverload };
    Kind State() const noexcept { return kind_; }
    const std::string& Text() const noexcept { return text_; }
    double Progress() const noexcept { return progress_; }
    // progress: completed part of the averages while they settle, 0 to 1.
    void Show(Kind kind, std::string_view text, double progress = 0.0) {
        Assign(kind_, kind);
        Assign(text_, text);
        Assign(progress_, progress);
    }

private:
    Kind kind_ = Kind::kOff;
    std::string text_;
    double progress_ = 0.0;
};

// A remark on the signal path. Emphasis: the path is not as requested.
class NoteLabel : public Label {
public:
    bool Emphasis() const noexcept { return emphasis_; }
    void SetEmphasis(bool emphasis) { Assign(emphasis_, emphasis); }

private:
    bool emphasis_ = false;
};

// A figure. Quiet: a bound, or not valid yet.
class ReadingLabel : public Label {
public:
    bool Quiet() const noexcept { return quiet_; }
    void SetQuiet(bool quiet) { Assign(quiet_, quiet); }

private:
    bool quiet_ = false;
};

// A value with its name, unit and uncertainty.
struct ReadingRow {
    Label name;
    ReadingLabel value;
    ComboBox unit;  // a single entry cannot be changed
    Label spread;
};

class HarmonicsTable : public Control {
public:
    struct Row {
        std::string order;   // "H2"
        std::string level;   // "-104.01", or a bound "≤ -140.7"
        std::string spread;  // empty for a bound
        std::string phase;   // "134°", or "in the noise"
        double bar = 0.0;    // 0 to 1
        bool bound = false;
        friend bool operator==(const Row&, const Row&) = default;
    };
    const std::vector<Row>& Rows() const noexcept { return rows_; }
    bool Quiet() const noexcept { return quiet_; }
    void Show(std::vector<Row> rows, bool quiet) {
        Assign(rows_, std::move(rows));
        Assign(quiet_, quiet);
    }

private:
    std::vector<Row> rows_;
    bool quiet_ = false;
};

}  // namespace sonavex
