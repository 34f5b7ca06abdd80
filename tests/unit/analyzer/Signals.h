#pragma once

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <numbers>
#include <random>
#include <vector>

// Signals with exact phases for the tests of the analyzer.
namespace sonavex::signals {

using Samples = std::vector<double>;

// A frequency as a whole number of 2^-64 turns per sample. Phases are sums of whole numbers, so they are
// exact.
class ExactFrequency {
public:
    ExactFrequency(double hertz, double rateHz)
        : steps_(static_cast<std::uint64_t>(std::ldexp(static_cast<long double>(hertz) / rateHz, 64))),
          rateHz_(rateHz) {}

    ExactFrequency Times(std::uint64_t order) const {
        ExactFrequency result = *this;
        result.steps_ *= order;
        return result;
    }

    double Hertz() const {
        return static_cast<double>(std::ldexp(static_cast<long double>(steps_), -64) * rateHz_);
    }

    // Phase at sample n in radians, -pi to pi.
    long double Phase(std::uint64_t n) const {
        const auto turns = static_cast<std::int64_t>(steps_ * n);
        return std::ldexp(static_cast<long double>(turns), -63) * std::numbers::pi_v<long double>;
    }

private:
    std::uint64_t steps_;
    double rateHz_;
};

// x += amplitude sin(2 pi f n + phase), rounded once from the precision of long double.
inline void AddSine(Samples& x, const ExactFrequency& frequency, double amplitude, double phase = 0.0) {
    for (std::size_t n = 0; n < x.size(); ++n)
        x[n] +=
            static_cast<double>(amplitude * std::sin(frequency.Phase(n) + static_cast<long double>(phase)));
}

inline Samples Sine(std::size_t length, const ExactFrequency& frequency, double amplitude,
                    double phase = 0.0) {
    Samples x(length);
    AddSine(x, frequency, amplitude, phase);
    return x;
}

inline void AddWhiteNoise(Samples& x, double rms, std::uint32_t seed) {
    std::mt19937_64 random(seed);
    std::normal_distribution<double> gaussian(0.0, rms);
    for (double& value : x) value += gaussian(random);
}

// Dither of triangular density and rounding to words of this many bits.
inline void QuantiseWithDither(Samples& x, int bits, std::uint32_t seed) {
    std::mt19937_64 random(seed);
    std::uniform_real_distribution<double> half(-0.5, 0.5);
    const double codes = std::ldexp(1.0, bits - 1);
    for (double& value : x) value = std::nearbyint(value * codes + half(random) + half(random)) / codes;
}

inline void Quantise(Samples& x, int bits) {
    const double codes = std::ldexp(1.0, bits - 1);
    for (double& value : x) value = std::nearbyint(value * codes) / codes;
}

}  // namespace sonavex::signals
