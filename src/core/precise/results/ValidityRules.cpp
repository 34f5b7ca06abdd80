#include "core/precise/results/ValidityRules.h"

#include <string>

#include "core/text/Decimals.h"

namespace sonavex {
namespace {

constexpr double kSourceBetterDb = 10.0;
constexpr double kThirdDb = 9.542425094393248;  // 20 lg 3

RuleResult SourceRule(const std::string& what, double measuredDb, double sourceDb) {
    return {"source", sourceDb <= measuredDb - kSourceBetterDb,
            "The " + what + " of the source is " + WithDecimals(sourceDb, 2) +
                " dB; it must be 10 dB below the " + WithDecimals(measuredDb, 2) + " dB measured."};
}

RuleResult IdleRule(double distortionDbfs, double idleDbfs) {
    return {"idle", idleDbfs < distortionDbfs - kThirdDb,
            "The noise with the generator off is " + WithDecimals(idleDbfs, 2) +
                " dBFS; it must be below a third of the distortion and noise measured, " +
                WithDecimals(distortionDbfs, 2) + " dBFS."};
}

RuleResult FundamentalRule(const Reading& reading) {
    const double highestHz = reading.band.highHz / reading.highestOrder;
    return {"fundamental", *reading.frequencyHz.value <= highestHz,
            "The harmonics to order " + std::to_string(reading.highestOrder) +
                " lie in the band up to a fundamental of " + WithDigits(highestHz, 6) + " Hz."};
}

}  // namespace

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

}  // namespace sonavex
