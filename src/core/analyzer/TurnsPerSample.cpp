#include "core/analyzer/TurnsPerSample.h"

#include <cmath>
#include <numbers>

namespace sonavex {
namespace {

constexpr double kCoarseSteps = 67108864.0;  // 2^26

double WithoutWholeTurns(double turns) {
    return turns - std::nearbyint(turns);
}

}  // namespace

TurnsPerSample FrequencyOf(double hertz, double rateHz) {
    const double coarse = std::nearbyint(hertz / rateHz * kCoarseSteps) / kCoarseSteps;
    return {coarse, std::fma(-coarse, rateHz, hertz) / rateHz};
}

double PhaseTurns(const TurnsPerSample& frequency, double m) {
    // The first product has at most 48 significant bits, so it is exact.
    const double exact = WithoutWholeTurns(WithoutWholeTurns(frequency.coarse) * m);
    return WithoutWholeTurns(exact + frequency.fine * m);
}

std::complex<double> UnitPhasor(double turns) {
    // Angles of at most 45 degrees, where sine and cosine are most precise.
    const double quarters = std::nearbyint(4.0 * turns);
    const double angle = 2.0 * std::numbers::pi * (turns - 0.25 * quarters);
    const double cosine = std::cos(angle);
    const double sine = std::sin(angle);
    switch (static_cast<int>(quarters) & 3) {
        case 0:
            return {cosine, sine};
        case 1:
            return {-sine, cosine};
        case 2:
            return {-cosine, -sine};
        default:
            return {sine, -cosine};
    }
}

}  // namespace sonavex
