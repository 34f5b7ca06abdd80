#include "core/precise/calibration/Voltage.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <charconv>
#include <cmath>

#include "core/text/Decimals.h"
#include "core/text/Numbers.h"

namespace sonavex {
namespace {

constexpr double kLeastVolts = 1e-9;
constexpr double kMostVolts = 1e4;

// Lower-case letters; "µ" in UTF-8 as "u".
std::string UnitName(std::string_view text) {
    std::string name;
    for (const char c : Trim(text)) {
        if (c == '\xC2' || c == '\xCE') continue;
        const bool micro = c == '\xB5' || c == '\xBC';
        name += micro ? 'u' : static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    }
    return name;
}

std::optional<double> InVolts(double number, const std::string& unit) {
    if (unit.empty() || unit == "v") return number;
    if (unit == "mv") return number * 1e-3;
    if (unit == "uv") return number * 1e-6;
    if (unit == "kv") return number * 1e3;
    if (unit == "dbv") return VoltsOfDbv(number);
    if (unit == "dbu") return VoltsOfDbu(number);
    return std::nullopt;
}

}  // namespace

double DbvOf(double volts) {
    return 20.0 * std::log10(volts);
}

double DbuOf(double volts) {
    return 20.0 * std::log10(volts / kVoltsOf0Dbu);
}

double VoltsOfDbv(double dbv) {
    return std::pow(10.0, dbv / 20.0);
}

double VoltsOfDbu(double dbu) {
    return kVoltsOf0Dbu * std::pow(10.0, dbu / 20.0);
}

std::optional<double> ParseVoltage(std::string_view text) {
    std::string typed(Trim(text));
    if (typed.find('.') == std::string::npos) std::replace(typed.begin(), typed.end(), ',', '.');
    const char* const begin = typed.data() + (typed.rfind('+', 0) == 0 ? 1 : 0);
    const char* const end = typed.data() + typed.size();
    double number = 0;
    const auto [rest, error] = std::from_chars(begin, end, number, std::chars_format::fixed);
    if (error != std::errc()) return std::nullopt;
    const std::optional<double> volts =
        InVolts(number, UnitName({rest, static_cast<std::size_t>(end - rest)}));
    if (!volts || !(*volts >= kLeastVolts && *volts <= kMostVolts)) return std::nullopt;
    return volts;
}

VoltageUnit UnitOfVoltage(double volts) {
    // A voltage that rounds to 1000 of a unit is written in the next one.
    constexpr double kNearlyOne = 0.99995;
    constexpr std::array kUnits{VoltageUnit{1.0, "V"}, VoltageUnit{1e-3, "mV"}, VoltageUnit{1e-6, "µV"}};
    const auto* const unit = std::find_if(kUnits.begin(), kUnits.end(), [volts](const VoltageUnit& one) {
        return volts >= kNearlyOne * one.volts;
    });
    return unit == kUnits.end() ? kUnits.back() : *unit;
}

std::string VoltageText(double volts) {
    const VoltageUnit unit = UnitOfVoltage(volts);
    const double shown = volts / unit.volts;
    const int decimals = shown >= 999.95 ? 0 : shown >= 99.995 ? 1 : shown >= 9.9995 ? 2 : 3;
    return WithDecimals(shown, decimals) + ' ' + unit.name;
}

}  // namespace sonavex
