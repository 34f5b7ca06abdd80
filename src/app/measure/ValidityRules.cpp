#include "app/measure/ValidityRules.h"

#include <array>
#include <cmath>
#include <cstdio>
#include <fstream>
#include <nlohmann/json.hpp>

#include "app/measure/MeasureError.h"

namespace sonavex::measure {
namespace {

constexpr double kSourceBetterDb = 10.0;
constexpr double kThirdDb = 9.542425094393248;  // 20 lg 3

template <typename... Arguments>
std::string Sentence(const char* format, Arguments... arguments) {
    std::array<char, 200> text{};
    std::snprintf(text.data(), text.size(), format, arguments...);
    return text.data();
}

std::optional<double> NumberIn(const nlohmann::json& object, const char* name) {
    const auto found = object.find(name);
    if (found == object.end() || !found->is_number()) return std::nullopt;
    return found->get<double>();
}

RuleResult SourceRule(const char* what, double measuredDb, double sourceDb) {
    return {"source", sourceDb <= measuredDb - kSourceBetterDb,
            Sentence("The %s of the source is %.2f dB; it must be 10 dB below the %.2f dB measured.", what,
                     sourceDb, measuredDb)};
}

RuleResult IdleRule(double distortionDbfs, double idleDbfs) {
    return {"idle", idleDbfs < distortionDbfs - kThirdDb,
            Sentence("The noise with the generator off is %.2f dBFS; it must be below a third of the "
                     "distortion and noise measured, %.2f dBFS.",
                     idleDbfs, distortionDbfs)};
}

RuleResult FundamentalRule(const Reading& reading) {
    const double highestHz = reading.band.highHz / reading.highestOrder;
    return {"fundamental", *reading.frequencyHz.value <= highestHz,
            Sentence("The harmonics to order %d lie in the band up to a fundamental of %.6g Hz.",
                     reading.highestOrder, highestHz)};
}

}  // namespace

SavedReading ReadSavedReading(const std::string& path) {
    std::ifstream file(path);
    if (!file) throw MeasureError("The reading '" + path + "' cannot be read.");
    const auto object = nlohmann::json::parse(file, nullptr, false);
    if (!object.is_object() || !object.contains("valid") || !object.contains("noise_dbfs"))
        throw MeasureError("The file '" + path + "' contains no saved reading.");
    if (object["valid"] != true) throw MeasureError("The reading '" + path + "' is void.");
    return {NumberIn(object, "thd_db"), NumberIn(object, "thdn_db"), NumberIn(object, "noise_dbfs")};
}

std::vector<RuleResult> JudgeReading(const Reading& reading, const std::optional<SavedReading>& reference,
                                     const std::optional<SavedReading>& idle) {
    std::vector<RuleResult> rules;
    if (!reading.Valid()) return rules;
    if (reference && reference->thdDb && reading.thdDb.value)
        rules.push_back(SourceRule("THD", *reading.thdDb.value, *reference->thdDb));
    if (reference && reference->thdnDb && reading.thdnDb.value)
        rules.push_back(SourceRule("THD+N", *reading.thdnDb.value, *reference->thdnDb));
    if (idle && idle->noiseDbfs && reading.thdnDb.value && reading.levelDbfs.value)
        rules.push_back(IdleRule(*reading.levelDbfs.value + *reading.thdnDb.value, *idle->noiseDbfs));
    if (reading.frequencyHz.value) rules.push_back(FundamentalRule(reading));
    return rules;
}

}  // namespace sonavex::measure
