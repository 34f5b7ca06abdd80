#pragma once

#include <cstddef>
#include <vector>

namespace sonavex {

inline constexpr int kPreviewHighestOrder = 9;

// One period of a synchronised exponential sweep and a pause, which is played again and again. After one
// period any captured period holds the whole answer of the device, shifted by the delay of the path.
// Source: A. Novak, P. Lotton, L. Simon, "Synchronized Swept-Sine", J. Audio Eng. Soc. 63 (2015): the phase
// is 2 pi lowHz L exp(t / L) with a whole number lowHz L, so that each harmonic of the sweep is the sweep
// itself, earlier by L ln(order).
struct PreviewSweep {
    double rateHz = 0;
    double lowHz = 0;
    double highHz = 0;
    double timeConstant = 0;      // L, in seconds
    std::vector<double> samples;  // a power of two, about 11 s; peak 1; ramps of 5 ms

    // By how much the impulse response of an order precedes that of the first, in samples.
    double LeadOf(double order) const;
};

// From half of the start frequency, at least 5 Hz, to 0.48 of the rate.
// startHz: 0 to a tenth of the rate; otherwise std::invalid_argument.
PreviewSweep MakePreviewSweep(double startHz, double rateHz);

// Length of a period.
double PreviewSeconds(double rateHz);

}  // namespace sonavex
