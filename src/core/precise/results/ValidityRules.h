#pragma once

#include <optional>
#include <vector>

#include "core/precise/results/AnalyzedReading.h"

namespace sonavex {

// What a saved reading says about the source, or about the noise with the generator off.
struct SavedReading {
    std::optional<double> thdDb;
    std::optional<double> thdnDb;
    std::optional<double> noiseDbfs;

    static SavedReading Of(const Reading& reading) {
        return {reading.thdDb.value, reading.thdnDb.value, reading.noiseDbfs.value};
    }
};

// The rules of IEC 60268-3 14.12.3.2 and 14.12.4.1 for a valid reading: a source 10 dB better than what was
// measured, a residual without signal below a third of the distortion, and a fundamental whose harmonics lie
// in the band.
std::vector<RuleResult> JudgeReading(const Reading& reading, const std::optional<SavedReading>& reference,
                                     const std::optional<SavedReading>& idle);

}  // namespace sonavex
