#include "core/precise/display/LevelUnits.h"

#include <numbers>

namespace sonavex {

std::vector<std::string> LevelUnits::Names(bool calibrated, const char* volts) {
    if (!calibrated) return {kNames[kDbfs]};
    return {kNames[kDbfs], kNames[kDbv], kNames[kDbu], volts};
}

Value LevelUnits::Converted(const Value& dbfs, int unit, const std::optional<Calibration>& calibration) {
    Value converted = dbfs;
    if (!calibration || !dbfs.value || unit == kDbfs) return converted;
    if (unit == kDbv) converted.value = calibration->Dbv(*dbfs.value);
    if (unit == kDbu) converted.value = calibration->Dbu(*dbfs.value);
    if (unit != kVolts) return converted;
    converted.value = calibration->Volts(*dbfs.value);
    if (dbfs.uncertainty)
        converted.uncertainty = *converted.value * *dbfs.uncertainty * std::numbers::ln10 / 20.0;
    return converted;
}

}  // namespace sonavex
