#pragma once

#include <cstdint>

namespace sonavex {

// The word number `index` of the sequence of Steele, Lea and Flood ("Fast splittable pseudorandom number
// generators", 2014).
inline std::uint64_t RandomWord(std::uint64_t index) noexcept {
    std::uint64_t word = (index + 1) * 0x9E3779B97F4A7C15U;
    word = (word ^ (word >> 30U)) * 0xBF58476D1CE4E5B9U;
    word = (word ^ (word >> 27U)) * 0x94D049BB133111EBU;
    return word ^ (word >> 31U);
}

}  // namespace sonavex
