#include "core/analyzer/Weightings.h"

#include <cmath>

namespace sonavex {
namespace {

constexpr double kReferenceHz = 1000.0;

// Without the constant factor, which the value at 1 kHz cancels.
double UnscaledA(double hertz) {
    const double f2 = hertz * hertz;
    return f2 * f2 /
           ((f2 + 20.598997 * 20.598997) * (f2 + 12194.217 * 12194.217) *
            std::sqrt((f2 + 107.65265 * 107.65265) * (f2 + 737.86223 * 737.86223)));
}

double Unscaled468(double hertz) {
    const double f2 = hertz * hertz;
    const double h1 =
        ((-4.737338981378384e-24 * f2 + 2.043828333606125e-15) * f2 - 1.363894795463638e-7) * f2 + 1.0;
    const double h2 =
        ((1.306612257412824e-19 * f2 - 2.118150887518656e-11) * f2 + 5.559488023498642e-4) * hertz;
    return hertz / std::hypot(h1, h2);
}

}  // namespace

double AWeighting(double hertz) {
    static const double reference = UnscaledA(kReferenceHz);
    return UnscaledA(hertz) / reference;
}

double Weighting468(double hertz) {
    static const double reference = Unscaled468(kReferenceHz);
    return Unscaled468(hertz) / reference;
}

double CcirRmsWeighting(double hertz) {
    static const double factor = std::pow(10.0, -5.63 / 20.0);
    return factor * Weighting468(hertz);
}

double NotchPowerGain(double hertz, double fundamentalHz) {
    constexpr double kQuality = 2.0;
    const double difference = fundamentalHz * fundamentalHz - hertz * hertz;
    const double width = fundamentalHz * hertz / kQuality;
    const double square = difference * difference;
    return square / (square + width * width);
}

}  // namespace sonavex
