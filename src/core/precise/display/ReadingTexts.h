#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "core/analyzer/Reading.h"

namespace sonavex {

// A value as the window shows it. All texts are empty if the value is not defined.
struct ValueText {
    std::string value;   // "-104.01", or "≤ -140.7" for a bound
    std::string spread;  // "± 0.08"; empty for a bound
    bool bound = false;
};

// An uncertainty, at least one step of its last decimal: no value is exact.
std::string SpreadText(double uncertainty, int decimals);

// decimals: of the value and of its spread. A bound has one decimal and is rounded up.
ValueText TextOf(const Value& value, int decimals, int spreadDecimals = 2);

// "± 4e-06": a spread with one digit, for values with many decimals. At least 1e-09.
std::string ShortSpread(double uncertainty);

// "0.000744": a percentage with three significant digits. A bound has one: "≤ 0.000009".
std::string PercentText(const Value& percent);

// 20 lg of a level as a percentage, with the uncertainty converted.
Value PercentOfDecibels(const Value& decibels);

// A frequency or another quantity with an optional suffix k or M and an optional unit: "1k", "1.5 kHz",
// "997". Empty if the text is anything else.
std::optional<double> QuantityIn(std::string_view text, std::string_view unit);

}  // namespace sonavex
