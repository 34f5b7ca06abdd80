#pragma once

#include <algorithm>
#include <array>
#include <atomic>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <vector>

#include "core/support/RuntimeError.h"

namespace sonavex {

// Positions in a ring are those of 16-bit stereo.
inline constexpr std::int32_t kFrameBytes = 4;

using Frame16 = std::array<std::int16_t, 2>;
// Left-justified samples: a sample of n bits is in the upper n bits, and the lower ones are 0.
using FineFrame = std::array<std::int32_t, 2>;
inline constexpr std::size_t kFineFrameBytes = sizeof(FineFrame);

constexpr FineFrame Fine(const Frame16& frame) noexcept {
    return {frame[0] * 65536, frame[1] * 65536};
}
constexpr FineFrame Fine(const FineFrame& frame) noexcept {
    return frame;
}

// Rounds half to even to the upper `bits` of 2 to 31, and saturates.
constexpr std::int32_t Rounded(std::int32_t sample, int bits) noexcept {
    const int dropped = 32 - bits;
    const std::int32_t step = std::int32_t{1} << dropped;
    const std::int32_t limited = std::min(sample, std::numeric_limits<std::int32_t>::max() - step + 1);
    return (limited + step / 2 - 1 + ((limited >> dropped) & 1)) & -step;
}

// Rounds half to even to 16 bits, and saturates.
constexpr std::int16_t Narrowed(std::int32_t sample) noexcept {
    return static_cast<std::int16_t>(Rounded(sample, 16) >> 16);
}

// The memory of a ring, one atomic word for each frame. A reader that is overtaken by the writer gets old or
// new frames, never a mixture of both in one frame. Store and Load are for any thread. The upper half of a
// word holds the upper 16 bits of both samples, so that a frame from a 16-bit source is read and written at
// once.
class RingFrames {
public:
    // Bytes of 16-bit stereo; must be a positive multiple of a frame (error 5).
    explicit RingFrames(std::int32_t bytes) : frames_(CheckedFrames(bytes)) {}

    std::size_t Size() const noexcept { return frames_.size(); }
    std::int32_t Bytes() const noexcept { return static_cast<std::int32_t>(frames_.size()) * kFrameBytes; }

    void Store(std::size_t frame, const Frame16& samples) noexcept {
        frames_[frame].store(WordOf(samples, {}), std::memory_order_relaxed);
    }
    void Store(std::size_t frame, const FineFrame& samples) noexcept {
        frames_[frame].store(WordOf({UpperHalf(samples[0]), UpperHalf(samples[1])},
                                    {LowerHalf(samples[0]), LowerHalf(samples[1])}),
                             std::memory_order_relaxed);
    }
    FineFrame LoadFine(std::size_t frame) const noexcept {
        return FineOf(frames_[frame].load(std::memory_order_relaxed));
    }
    // Rounds half to even to 16 bits, and saturates.
    Frame16 Load16(std::size_t frame) const noexcept {
        const std::uint64_t word = frames_[frame].load(std::memory_order_relaxed);
        if (static_cast<std::uint32_t>(word) == 0) return Halves(word >> 32U);
        const FineFrame samples = FineOf(word);
        return {Narrowed(samples[0]), Narrowed(samples[1])};
    }

    // The frame at the offset. Error 5 unless [offset, offset + samples) are whole frames inside the ring.
    std::size_t CheckedRange(std::int32_t offset, std::size_t samples) const {
        const bool whole = offset >= 0 && offset % kFrameBytes == 0 && samples % 2 == 0;
        const auto first = static_cast<std::size_t>(offset / kFrameBytes);
        if (!whole || first + samples / 2 > frames_.size()) throw RuntimeError(error_number::kInvalidCall);
        return first;
    }

private:
    using Word = std::atomic<std::uint64_t>;
    static_assert(Word::is_always_lock_free);

    static std::int16_t UpperHalf(std::int32_t sample) noexcept {
        return static_cast<std::int16_t>(sample >> 16);
    }
    static std::int16_t LowerHalf(std::int32_t sample) noexcept { return static_cast<std::int16_t>(sample); }
    static Frame16 Halves(std::uint64_t word) noexcept {
        return std::bit_cast<Frame16>(static_cast<std::uint32_t>(word));
    }
    static std::uint64_t WordOf(const Frame16& upper, const Frame16& lower) noexcept {
        return std::uint64_t{std::bit_cast<std::uint32_t>(upper)} << 32U |
               std::bit_cast<std::uint32_t>(lower);
    }
    static FineFrame FineOf(std::uint64_t word) noexcept {
        const Frame16 upper = Halves(word >> 32U);
        const Frame16 lower = Halves(word);
        return {upper[0] * 65536 + static_cast<std::uint16_t>(lower[0]),
                upper[1] * 65536 + static_cast<std::uint16_t>(lower[1])};
    }
    static std::size_t CheckedFrames(std::int32_t bytes) {
        if (bytes <= 0 || bytes % kFrameBytes != 0) throw RuntimeError(error_number::kInvalidCall);
        return static_cast<std::size_t>(bytes / kFrameBytes);
    }

    std::vector<Word> frames_;
};

}  // namespace sonavex
