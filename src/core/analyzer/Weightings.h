#pragma once

namespace sonavex {

// Gains for an amplitude, 1 at 1 kHz except CCIR-RMS. Frequencies in Hz, from 0.

// A weighting, IEC 61672-1 annex E.
double AWeighting(double hertz);

// Weighting of ITU-R BS.468-4. The noise it weights is read as true rms, not as quasi-peak.
double Weighting468(double hertz);

// The 468 weighting lowered by 5.63 dB, AES17 5.2.7.
double CcirRmsWeighting(double hertz);

// Squared gain of a notch of quality 2 at a fundamental (AES17 5.2.8 allows 1.2 to 3): 0 at the fundamental,
// -0.46 dB at its double.
double NotchPowerGain(double hertz, double fundamentalHz);

}  // namespace sonavex
