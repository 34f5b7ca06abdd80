#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>

namespace sonavex {

// The content of a loop card's file, which the streams of all processes and the tests map. A file of
// zeros is a card that is plugged in and silent.
struct LoopCardState {
    static constexpr std::size_t kFrames = std::size_t{1} << 18U;

    std::atomic<std::uint32_t> unplugged;
    std::atomic<std::uint32_t> stalled;    // its clock stands still
    std::atomic<std::uint32_t> suspended;  // as a computer's sleep leaves it
    std::atomic<std::uint32_t> failing;    // every stream is interrupted as soon as it runs
    // What is on the cable: the frame of number n (since the clock's zero, at the stream's rate) at
    // n modulo kFrames. The low half holds its two samples, the high half its number plus one, so that
    // what was played long ago is not heard again.
    std::atomic<std::uint64_t> frames[kFrames];
};

}  // namespace sonavex
