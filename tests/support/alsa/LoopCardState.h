#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>

namespace sonavex {

// Content of a loop card's file, mapped by the streams of all processes and by the tests. A file of zeros is
// a connected, silent card.
struct LoopCardState {
    static constexpr std::size_t kFrames = std::size_t{1} << 18U;

    std::atomic<std::uint32_t> unplugged;
    std::atomic<std::uint32_t> stalled;    // its clock is stopped
    std::atomic<std::uint32_t> suspended;  // as after the computer's sleep
    std::atomic<std::uint32_t> failing;    // every stream is interrupted as soon as it runs
    // Ring of played frames, numbered from the clock's zero at the stream's rate. Frame n is at n % kFrames:
    // the lower 48 bits are two samples of 24 bits, the upper 16 are n / kFrames + 1, which detects stale
    // frames.
    std::atomic<std::uint64_t> frames[kFrames];
};

}  // namespace sonavex
