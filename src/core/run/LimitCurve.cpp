#include "core/run/LimitCurve.h"

#include <algorithm>
#include <cmath>
#include <string>
#include <utility>

#include "core/run/RunPlan.h"
#include "core/text/Decimals.h"
#include "core/text/Numbers.h"

namespace sonavex {
namespace {

constexpr int kTableDigits = 9;

// A point at the end of a table must not miss it by a rounding error.
constexpr double kRelativeRounding = 1e-9;
constexpr std::size_t kMostRows = 100000;
// Ratios of such frequencies are far from the limits of a double.
constexpr double kLowestRowHz = 1e-3;
constexpr double kHighestRowHz = 1e9;

std::vector<std::string_view> SplitAt(std::string_view text, char separator) {
    std::vector<std::string_view> parts;
    for (std::size_t end = 0; end != std::string_view::npos;) {
        end = text.find(separator);
        parts.push_back(text.substr(0, end));
        if (end != std::string_view::npos) text.remove_prefix(end + 1);
    }
    return parts;
}

std::string_view WithoutReturn(std::string_view line) {
    if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
    return Trim(line);
}

std::vector<std::string_view> CellsOf(std::string_view line) {
    std::vector<std::string_view> cells = SplitAt(line, ',');
    for (std::string_view& cell : cells) cell = Trim(cell);
    return cells;
}

bool IsFiniteNumber(std::string_view cell) {
    return IsNumeric(cell) && std::isfinite(CDbl(cell));
}

class LimitTableParser {
public:
    LimitTable Parse(std::string_view text) {
        for (const std::string_view part : SplitAt(text, '\n')) {
            ++line_;
            const std::string_view line = WithoutReturn(part);
            if (!line.empty() && line.front() != '#') Take(CellsOf(line));
        }
        LimitTable table{std::nullopt, LimitCurve(std::move(atMost_))};
        if (columns_ == 3) table.atLeast = LimitCurve(std::move(atLeast_));
        return table;
    }

private:
    void Take(const std::vector<std::string_view>& cells) {
        if (IsTitle(cells)) return;
        if (columns_ == 0) columns_ = cells.size();
        if (columns_ != 2 && columns_ != 3) Refuse("takes a frequency and one or two values");
        if (cells.size() != columns_)
            Refuse("has " + std::to_string(cells.size()) + " values, not " + std::to_string(columns_));
        if (!std::all_of(cells.begin(), cells.end(), IsFiniteNumber))
            Refuse("has a value that is not a number");
        if (atMost_.size() == kMostRows) Refuse("is one too many");
        const double hertz = CDbl(cells.front());
        atMost_.push_back({hertz, CDbl(cells.back())});
        if (columns_ == 3) atLeast_.push_back({hertz, CDbl(cells[1])});
    }

    bool IsTitle(const std::vector<std::string_view>& cells) {
        const bool first = !std::exchange(begun_, true);
        return first && std::none_of(cells.begin(), cells.end(), IsFiniteNumber);
    }

    [[noreturn]] void Refuse(const std::string& fault) const {
        throw RunError("Line " + std::to_string(line_) + " of the limit table " + fault + ".");
    }

    std::size_t line_ = 0;
    std::size_t columns_ = 0;
    bool begun_ = false;
    std::vector<LimitRow> atLeast_;
    std::vector<LimitRow> atMost_;
};

}  // namespace

LimitCurve::LimitCurve(std::vector<LimitRow> rows) : rows_(std::move(rows)) {
    if (rows_.size() < 2) throw RunError("A limit table needs at least two rows.");
    for (std::size_t i = 0; i < rows_.size(); ++i) {
        if (!(rows_[i].hertz >= kLowestRowHz && rows_[i].hertz <= kHighestRowHz) ||
            !std::isfinite(rows_[i].decibels))
            throw RunError("A limit table needs frequencies of 0.001 to 1000000000 Hz and finite values.");
        if (i > 0 && rows_[i].hertz <= rows_[i - 1].hertz)
            throw RunError("The limit table is not sorted: " + WithDigits(rows_[i].hertz, 9) +
                           " Hz follows " + WithDigits(rows_[i - 1].hertz, 9) + " Hz.");
    }
}

bool LimitCurve::Covers(double hertz) const noexcept {
    return Constant() || (hertz >= rows_.front().hertz * (1.0 - kRelativeRounding) &&
                          hertz <= rows_.back().hertz * (1.0 + kRelativeRounding));
}

double LimitCurve::At(double hertz) const {
    if (hertz <= rows_.front().hertz || Constant()) return rows_.front().decibels;
    const auto above =
        std::find_if(rows_.begin(), rows_.end(), [hertz](const LimitRow& row) { return row.hertz >= hertz; });
    if (above == rows_.end()) return rows_.back().decibels;
    if (above->hertz == hertz) return above->decibels;
    const LimitRow& below = *(above - 1);
    const double part = std::log(hertz / below.hertz) / std::log(above->hertz / below.hertz);
    return std::lerp(below.decibels, above->decibels, part);
}

LimitTable ParseLimitTable(std::string_view text) {
    return LimitTableParser().Parse(text);
}

std::string LimitTableText(const LimitTable& table, const std::array<double, 2>& endsHz) {
    const LimitCurve& first = table.atMost ? *table.atMost : table.atLeast.value();
    std::vector<double> frequencies(endsHz.begin(), endsHz.end());
    if (!first.Constant()) {
        frequencies.clear();
        for (const LimitRow& row : first.Rows()) frequencies.push_back(row.hertz);
    }
    std::string text;
    for (const double hertz : frequencies) {
        text += WithDigits(hertz, kTableDigits);
        for (const auto& curve : {table.atLeast, table.atMost})
            if (curve) text += ", " + WithDigits(curve->At(hertz), kTableDigits);
        text += '\n';
    }
    return text;
}

}  // namespace sonavex
