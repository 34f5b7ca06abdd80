#pragma once

#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace sonavex {

struct LimitRow {
    double hertz = 0;
    double decibels = 0;
};

// A limit over frequency: constant, or linear over the logarithm of the frequency between rows.
class LimitCurve {
public:
    explicit LimitCurve(double decibels) : rows_{{0.0, decibels}} {}
    // At least two rows of rising frequency; otherwise RunError.
    explicit LimitCurve(std::vector<LimitRow> rows);

    bool Constant() const noexcept { return rows_.size() == 1; }
    bool Covers(double hertz) const noexcept;
    // Only where Covers() is true.
    double At(double hertz) const;
    const std::vector<LimitRow>& Rows() const noexcept { return rows_; }

private:
    std::vector<LimitRow> rows_;
};

struct LimitTable {
    std::optional<LimitCurve> atLeast;
    std::optional<LimitCurve> atMost;
};

// A CSV table: frequency in Hz and highest value in dB in each line, or frequency, lowest and highest value.
// Lines that are empty or begin with '#' do not count, nor does a first line of titles. RunError for an
// incomplete or unsorted table.
LimitTable ParseLimitTable(std::string_view text);

// The same table as text, a line for each row, numbers of up to 9 digits. A constant limit becomes two rows
// at `endsHz`. Both curves, if there are two, have rows at the same frequencies.
std::string LimitTableText(const LimitTable& table, const std::array<double, 2>& endsHz);

}  // namespace sonavex
