#pragma once

#include <cmath>
#include <complex>
#include <cstddef>
#include <cstdint>
#include <numbers>
#include <vector>

namespace sonavex {

// Interleaved stereo with the same 16-bit sine on both channels: `cycles` cycles in periodFrames.
inline std::vector<std::int16_t> StereoSine(double peak, double cycles, std::size_t periodFrames,
                                            std::size_t frames) {
    std::vector<std::int16_t> samples;
    samples.reserve(2 * frames);
    for (std::size_t n = 0; n < frames; ++n) {
        const double angle =
            2.0 * std::numbers::pi * cycles * static_cast<double>(n) / static_cast<double>(periodFrames);
        const auto sample = static_cast<std::int16_t>(std::lrint(peak * std::sin(angle)));
        samples.insert(samples.end(), {sample, sample});
    }
    return samples;
}

// One line of the discrete Fourier transform of one channel, computed by definition. Scaled so that its
// magnitude is the peak of a sine on that line (twice the mean for line 0).
inline std::complex<double> SpectralLine(const std::int16_t* interleaved, std::size_t frames,
                                         std::size_t line, std::size_t channel = 0) {
    std::complex<double> sum = 0.0;
    for (std::size_t n = 0; n < frames; ++n) {
        // Reduces the product first, so that angles stay small and exact.
        const auto turn = static_cast<double>(line * n % frames) / static_cast<double>(frames);
        sum += std::polar(static_cast<double>(interleaved[2 * n + channel]), -2.0 * std::numbers::pi * turn);
    }
    return sum * 2.0 / static_cast<double>(frames);
}

inline double LinePeak(const std::vector<std::int16_t>& interleaved, std::size_t line) {
    return std::abs(SpectralLine(interleaved.data(), interleaved.size() / 2, line));
}

}  // namespace sonavex
