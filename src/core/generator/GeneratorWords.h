#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "core/generator/Generator.h"

namespace sonavex {

// Describes the generator's state and its sweeps.
struct GeneratorWords {
    static constexpr std::string_view kLongestState = "Generator playing 8 tones";

    std::string state;
    std::string detail;  // empty when nothing sweeps

    // clockRuns: the sweep clock runs, so unfinished sweeps advance.
    static GeneratorWords Of(const Generator& generator, bool clockRuns);
};

// A frequency in whole hertz: "1000 Hz".
std::string FrequencyWords(double hertz);

// How many of the memory's tones are in use: "3 of 8".
std::string MemoryWords(std::int32_t tones);

}  // namespace sonavex
