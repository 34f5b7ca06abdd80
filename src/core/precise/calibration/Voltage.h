#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace sonavex {

// 0 dBu: sqrt(0.6) V, 1 mW into 600 ohms.
inline constexpr double kVoltsOf0Dbu = 0.7745966692414834;

double DbvOf(double volts);
double DbuOf(double volts);
double VoltsOfDbv(double dbv);
double VoltsOfDbu(double dbu);

// A voltage as a user types it, in V rms: "1.23", "775mV", "0.5 V", "-10 dBV", "+4dBu", also with a decimal
// comma. Without a unit it is in volts. Empty for anything else, and for voltages outside 1 nV to 10 kV.
std::optional<double> ParseVoltage(std::string_view text);

struct VoltageUnit {
    double volts;
    const char* name;  // "V", "mV", "µV"
};

// The unit in which a voltage, in V, is at least 1 where possible.
VoltageUnit UnitOfVoltage(double volts);

// With four significant digits and a suitable unit, in the "C" locale: "1.234 V", "775.0 mV", "12.50 µV".
// volts: above 0.
std::string VoltageText(double volts);

}  // namespace sonavex
