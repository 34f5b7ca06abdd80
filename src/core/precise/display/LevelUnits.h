#pragma once

#include <array>
#include <optional>
#include <string>
#include <vector>

#include "core/analyzer/Reading.h"
#include "core/precise/calibration/Calibration.h"

namespace sonavex {

// The units of a level, as the Analyzer offers them.
struct LevelUnits {
    enum Unit { kDbfs, kDbv, kDbu, kVolts, kCount };
    static constexpr std::array<const char*, kCount> kNames{"dBFS", "dBV", "dBu", "V"};

    // Volts need a calibration.
    static std::vector<std::string> Names(bool calibrated, const char* volts = kNames[kVolts]);
    // A level in dBFS in another unit, with its uncertainty.
    static Value Converted(const Value& dbfs, int unit, const std::optional<Calibration>& calibration);
    static int Decimals(int unit) { return unit == kVolts ? 6 : 2; }
};

}  // namespace sonavex
