// Limit tables. Any text gives limits that rise in frequency and are finite, or a sentence on one line.

#include <algorithm>
#include <cmath>

#include "core/run/LimitCurve.h"
#include "core/run/RunPlan.h"
#include "fuzz/FuzzTarget.h"

namespace sonavex {
namespace {

using fuzz::Require;

void CheckCurve(const LimitCurve& curve) {
    const std::vector<LimitRow>& rows = curve.Rows();
    Require(rows.size() >= 2, "two rows");
    for (std::size_t i = 0; i < rows.size(); ++i) {
        Require(i == 0 || rows[i].hertz > rows[i - 1].hertz, "rising frequencies");
        Require(curve.At(rows[i].hertz) == rows[i].decibels, "a row has its value");
    }
    const double between = std::sqrt(rows[0].hertz) * std::sqrt(rows[1].hertz);
    if (between <= rows[0].hertz || between >= rows[1].hertz) return;
    const auto [low, high] = std::minmax(rows[0].decibels, rows[1].decibels);
    const double rounding = 1e-9 * std::max(std::abs(low), std::abs(high));
    const double value = curve.At(between);
    Require(curve.Covers(between) && value >= low - rounding && value <= high + rounding, "between two rows");
}

}  // namespace
}  // namespace sonavex

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace sonavex;
    try {
        const LimitTable table = ParseLimitTable({reinterpret_cast<const char*>(data), size});
        Require(table.atMost.has_value(), "a table has a highest value");
        CheckCurve(*table.atMost);
        if (table.atLeast) CheckCurve(*table.atLeast);
    } catch (const RunError& error) {
        const std::string_view sentence = error.what();
        Require(sentence.find_first_of("\r\n") == std::string_view::npos, "one line", sentence);
        Require(sentence.ends_with('.'), "a sentence", sentence);
    }
    return 0;
}
