#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "core/ports/SoundSystem.h"

namespace sonavex {

inline constexpr std::int32_t kSegmentBytes = 8192;
inline constexpr std::int32_t kCaptureBytes = 4 * kSegmentBytes;
inline constexpr std::int32_t kPlaybackBytes = 8 * kSegmentBytes;

// Description of a stereo buffer.
BufferDescription Stereo(std::int32_t bytes, std::int32_t rateHz);

// Random samples of a full playback buffer; no frame is silent.
std::vector<std::int16_t> RandomPattern(std::uint32_t seed);

// Arms the four segments of a capture buffer and stores them when they are notified.
class SegmentRecorder {
public:
    SegmentRecorder(SoundSystem& system, CaptureBuffer& buffer);
    // The buffer must still exist; the destructor stops it.
    ~SegmentRecorder();
    SegmentRecorder(const SegmentRecorder&) = delete;
    SegmentRecorder& operator=(const SegmentRecorder&) = delete;

    // Segment numbers in the order of their notifications.
    const std::vector<std::int32_t>& Order() const noexcept { return order_; }
    // Samples of these segments, concatenated.
    const std::vector<std::int16_t>& Samples() const noexcept { return samples_; }

private:
    void Take(std::int32_t segment);

    SoundSystem& system_;
    CaptureBuffer& buffer_;
    std::vector<EventHandle> events_;
    std::vector<std::int32_t> order_;
    std::vector<std::int16_t> samples_;
};

// Comparison of a recording with a pattern played in a loop.
struct LoopComparison {
    std::size_t firstFrame = 0;       // first frame of the recording that is not silent
    std::size_t comparedFrames = 0;   // from there to the end
    std::size_t differentFrames = 0;  // of these
};
// startFrame: the frame of the pattern that was played first.
LoopComparison CompareLoop(std::span<const std::int16_t> recording, std::span<const std::int16_t> pattern,
                           std::size_t startFrame);

}  // namespace sonavex
