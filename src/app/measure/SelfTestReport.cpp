#include <algorithm>
#include <cmath>
#include <iomanip>
#include <nlohmann/json.hpp>
#include <sstream>

#include "app/measure/Commands.h"
#include "app/measure/MeasureError.h"
#include "app/measure/Readings.h"
#include "app/measure/SelfTest.h"

namespace sonavex::measure {
namespace {

constexpr int kSignalWidth = 26;
constexpr int kValueWidth = 13;
constexpr int kNumberWidth = 18;
constexpr int kDigits = 11;

std::string NumberText(double number) {
    if (!std::isfinite(number)) return "no value";
    std::ostringstream text;
    text << std::setprecision(kDigits) << number;
    return text.str();
}

std::string ToleranceText(const SelfCheck& check) {
    if (!check.expectedCode.empty()) return "";
    return check.atMost ? "at most" : NumberText(check.tolerance);
}

void AddLine(std::ostream& out, const SelfCheck& check) {
    const bool code = !check.expectedCode.empty();
    out << std::left << std::setw(kSignalWidth) << check.signal << std::setw(kValueWidth) << check.value
        << std::right << std::setw(kNumberWidth) << (code ? check.expectedCode : NumberText(check.expected))
        << std::setw(kNumberWidth) << (code ? check.measuredCode : NumberText(check.measured))
        << std::setw(kNumberWidth) << ToleranceText(check) << ' ' << std::left << std::setw(8) << check.unit
        << (check.Passed() ? "ok" : "FAILED") << '\n';
}

nlohmann::ordered_json AsJson(const SelfCheck& check) {
    nlohmann::ordered_json json{{"signal", check.signal}, {"value", check.value}};
    if (check.expectedCode.empty()) {
        // What is not a number becomes null.
        json["expected"] = check.expected;
        json["measured"] = check.measured;
        json["tolerance"] = check.atMost ? nlohmann::ordered_json() : nlohmann::ordered_json(check.tolerance);
        json["at_most"] = check.atMost;
        json["unit"] = check.unit;
    } else {
        json["expected"] = check.expectedCode;
        json["measured"] = check.measuredCode;
    }
    json["passed"] = check.Passed();
    return json;
}

auto FailedOf(const std::vector<SelfCheck>& checks) {
    return std::count_if(checks.begin(), checks.end(),
                         [](const SelfCheck& check) { return !check.Passed(); });
}

std::string SelfTestTable(const std::vector<SelfCheck>& checks) {
    std::ostringstream out;
    out << std::left << std::setw(kSignalWidth) << "Signal" << std::setw(kValueWidth) << "Value" << std::right
        << std::setw(kNumberWidth) << "expected" << std::setw(kNumberWidth) << "measured"
        << std::setw(kNumberWidth) << "tolerance" << '\n';
    for (const SelfCheck& check : checks) AddLine(out, check);
    if (const auto failed = FailedOf(checks))
        out << failed << " of " << checks.size() << " checks FAILED.\n";
    else
        out << "All " << checks.size() << " checks passed.\n";
    return out.str();
}

std::string SelfTestJson(const std::vector<SelfCheck>& checks) {
    nlohmann::ordered_json json;
    json["passed"] = FailedOf(checks) == 0;
    json["checks"] = nlohmann::ordered_json::array();
    for (const SelfCheck& check : checks) json["checks"].push_back(AsJson(check));
    return json.dump() + '\n';
}

}  // namespace

int ReportSelfTest(const std::vector<SelfCheck>& checks, bool json) {
    Print(json ? SelfTestJson(checks) : SelfTestTable(checks));
    return FailedOf(checks) == 0 ? kMeasured : kFailed;
}

int SelfTest(bool json) {
    return ReportSelfTest(RunSelfTest(), json);
}

}  // namespace sonavex::measure
