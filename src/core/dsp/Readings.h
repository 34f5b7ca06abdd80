#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>

namespace sonavex {

// A level at or above this value is an overload. The output is limited to it. 16-bit steps.
inline constexpr double kFullScale = 32760.0;

// The steps of a block that have readings, in their order.
enum class BlockStep { kNothing, kInputLevel, kFrequency, kLock, kHarmonics, kOutputLevel };

// A harmonic, averaged over the 19 blocks of a cycle.
struct HarmonicReading {
    double averagePct = 0.0;        // distortion up to this harmonic (THD_R), percent
    std::optional<double> percent;  // the same minus the baseline if that is applied; none: not available
    std::optional<double> levelDb;  // this harmonic relative to the fundamental; none: not available
};

// Readings of one block. A block that ends with an error has the readings of the steps before it.
struct Readings {
    static constexpr std::size_t kHarmonics = 8;

    BlockStep reached = BlockStep::kNothing;  // the last step that is complete

    double inputPeak = 0.0;  // largest sample by sign, 16-bit steps; not above 0: no signal

    double measuredHz = 0.0;  // frequency of the strongest bin, whole Hz, rounded down
    bool automatic = false;   // measuredHz is the fundamental of the harmonics

    bool locked = false;

    // Harmonics averaged so far: none before the last block of a cycle, all when the step is complete.
    std::size_t harmonicsAveraged = 0;
    std::array<HarmonicReading, kHarmonics> harmonics{};  // element i: harmonic i + 2

    double outputPeak = 0.0;  // longest two-channel vector without the generator, 16-bit steps
    bool muted = false;
};

}  // namespace sonavex
