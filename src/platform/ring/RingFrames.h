#pragma once

#include <atomic>
#include <bit>
#include <cstdint>
#include <span>
#include <vector>

#include "core/support/RuntimeError.h"

namespace sonavex {

inline constexpr std::int32_t kFrameBytes = 4;

// The memory of a ring, one atomic word for each frame. A reader that is overtaken by the writer gets old or
// new frames, never a mixture of both in one frame. Store and Load are for any thread.
class RingFrames {
public:
    // Bytes must be a positive multiple of a frame (error 5).
    explicit RingFrames(std::int32_t bytes) : frames_(CheckedFrames(bytes)) {}

    std::size_t Size() const noexcept { return frames_.size(); }
    std::int32_t Bytes() const noexcept { return static_cast<std::int32_t>(frames_.size()) * kFrameBytes; }

    void Store(std::size_t frame, std::int16_t first, std::int16_t second) noexcept {
        const auto low = std::bit_cast<std::uint16_t>(first);
        const auto high = std::bit_cast<std::uint16_t>(second);
        frames_[frame].store(low | static_cast<std::uint32_t>(high) << 16U, std::memory_order_relaxed);
    }

    void Load(std::size_t frame, std::int16_t* samples) const noexcept {
        const std::uint32_t word = frames_[frame].load(std::memory_order_relaxed);
        samples[0] = std::bit_cast<std::int16_t>(static_cast<std::uint16_t>(word));
        samples[1] = std::bit_cast<std::int16_t>(static_cast<std::uint16_t>(word >> 16U));
    }

    // Error 5 unless [offset, offset + samples) are whole frames inside the ring.
    void CheckRange(std::int32_t offset, std::size_t samples) const {
        const bool whole = offset >= 0 && offset % kFrameBytes == 0 && samples % 2 == 0;
        if (!whole || static_cast<std::size_t>(offset) / kFrameBytes + samples / 2 > frames_.size())
            throw RuntimeError(error_number::kInvalidCall);
    }

private:
    static std::size_t CheckedFrames(std::int32_t bytes) {
        if (bytes <= 0 || bytes % kFrameBytes != 0) throw RuntimeError(error_number::kInvalidCall);
        return static_cast<std::size_t>(bytes / kFrameBytes);
    }

    std::vector<std::atomic<std::uint32_t>> frames_;
};

}  // namespace sonavex
