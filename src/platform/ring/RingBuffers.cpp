#include "platform/ring/RingBuffers.h"

#include <algorithm>
#include <utility>
#include <vector>

#include "core/ports/SoundErrors.h"
#include "platform/ring/StreamTiming.h"

namespace sonavex {
namespace {

// Fine frames outlast a user-interface thread that is blocked for this time.
constexpr std::size_t kFineSeconds = 2;

}  // namespace

void RequireStereo16(const WaveFormat& format, const char* refusal) {
    if (format.formatTag == 1 && format.channels == 2 && format.bitsPerSample == 16 &&
        format.blockAlign == kFrameBytes && format.samplesPerSecond > 0)
        return;
    throw RuntimeError(sound_error::kBadFormat, refusal);
}

RingPlaybackBuffer::RingPlaybackBuffer(const BufferDescription& description)
    : ring_(description.bytes, static_cast<std::int32_t>(description.format.samplesPerSecond)),
      clock_(description.format.samplesPerSecond) {}

template <class Sample>
void RingPlaybackBuffer::PullAs(Sample* samples, std::size_t frames, std::size_t deviceDelay) noexcept {
    constexpr std::size_t kMost = stream_timing::kMostDelayFrames;
    const std::size_t delay = std::min(deviceDelay, kMost - std::min(frames, kMost));
    ring_.SetBits(Device().Bits());
    ring_.Pull(samples, frames, delay);
    clock_.Moved(frames, deviceDelay + frames);
}

void RingPlaybackBuffer::Pull(std::int16_t* samples, std::size_t frames, std::size_t deviceDelay) noexcept {
    PullAs(samples, frames, deviceDelay);
}

void RingPlaybackBuffer::Pull(std::int32_t* samples, std::size_t frames, std::size_t deviceDelay) noexcept {
    PullAs(samples, frames, deviceDelay);
}

RingCaptureBuffer::RingCaptureBuffer(const NotificationHub& hub, const BufferDescription& description)
    : hub_(hub),
      ring_(description.bytes, kFineSeconds * std::size_t{description.format.samplesPerSecond}),
      clock_(description.format.samplesPerSecond) {}

void RingCaptureBuffer::SetNotificationPositions(std::span<const PositionNotification> positions) {
    std::vector<CaptureRing::Position> ringPositions;
    for (const PositionNotification& position : positions)
        ringPositions.push_back({position.offset, hub_.SignalOf(position.event)});
    Checked().SetPositions(std::move(ringPositions));
}

void RingCaptureBuffer::Push(const std::int16_t* samples, std::size_t frames) noexcept {
    ring_.Push(samples, frames);
    clock_.Moved(frames, 0);
}

void RingCaptureBuffer::Push(const std::int32_t* samples, std::size_t frames) noexcept {
    ring_.Push(samples, frames);
    clock_.Moved(frames, 0);
}

void RingCaptureBuffer::PushSilence(std::size_t frames) noexcept {
    ring_.PushSilence(frames);
    clock_.Moved(frames, 0);
}

}  // namespace sonavex
