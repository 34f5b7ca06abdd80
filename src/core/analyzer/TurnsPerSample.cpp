#include "core/analyzer/TurnsPerSample.h"

#include <cmath>

namespace sonavex {

TurnsPerSample FrequencyOf(double hertz, double rateHz) {
    constexpr double kCoarseSteps = 0x1p26;
    const double coarse = std::nearbyint(hertz / rateHz * kCoarseSteps) / kCoarseSteps;
    return {coarse, std::fma(-coarse, rateHz, hertz) / rateHz};
}

}  // namespace sonavex
