#pragma once

namespace sonavex {

// A frequency relative to the sampling rate, in turns per sample. A single double is not precise enough:
// after 65536 samples its rounding has become a phase error of 2e-11 rad (-214 dB).
struct TurnsPerSample {
    double coarse =
        0;  // a multiple of 2^-26; its products with a sample's time and a harmonic's order are exact
    double fine = 0;  // the rest

    double Sum() const noexcept { return coarse + fine; }
    double Hertz(double rateHz) const noexcept { return coarse * rateHz + fine * rateHz; }

    // n times this frequency; |n| <= 1024.
    TurnsPerSample Times(int n) const noexcept { return {coarse * n, fine * n}; }
    TurnsPerSample Plus(const TurnsPerSample& other) const noexcept {
        return {coarse + other.coarse, fine + other.fine};
    }
};

TurnsPerSample FrequencyOf(double hertz, double rateHz);

}  // namespace sonavex
