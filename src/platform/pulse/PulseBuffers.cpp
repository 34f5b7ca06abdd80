#include "platform/pulse/PulseBuffers.h"

#include <algorithm>
#include <utility>
#include <vector>

#include "core/support/BlockSize.h"

namespace sonavex {
namespace {

// What the engine's distances between the cursors are made for.
constexpr std::uint32_t kMostDelayFrames = 3 * kBlockFrames;
constexpr std::uint32_t kUnset = static_cast<std::uint32_t>(-1);

constexpr std::uint32_t FramesOf(std::uint32_t rateHz, std::uint32_t milliseconds) noexcept {
    return static_cast<std::uint32_t>(std::uint64_t{rateHz} * milliseconds / 1000);
}

// Enough to outlast a busy moment of the machine, short enough that the delay stays far below three
// blocks even when the server adds its own.
pa_buffer_attr PlaybackAttributes(std::uint32_t rateHz) noexcept {
    const std::uint32_t frames = std::min(FramesOf(rateHz, 80), std::uint32_t{kBlockFrames * 3 / 2});
    return {kUnset, frames * kFrameBytes, kUnset, kUnset, kUnset};
}

// Small against a block, so that its end is noticed soon after it was captured; not smaller, because
// PipeWire runs its whole graph at the next lower power of two.
pa_buffer_attr CaptureAttributes(std::uint32_t rateHz) noexcept {
    const std::uint32_t frames = std::clamp(FramesOf(rateHz, 12), 1U, std::uint32_t{kBlockFrames / 4});
    return {kUnset, kUnset, kUnset, kUnset, frames * kFrameBytes};
}

}  // namespace

PulsePlaybackBuffer::PulsePlaybackBuffer(PulseContext& context, EventLoop& loop,
                                         const SoundDeviceInfo& device, const BufferDescription& description,
                                         PulseStream::LostHandler onLost)
    : rateHz_(description.format.samplesPerSecond),
      ring_(description.bytes, static_cast<std::int32_t>(rateHz_)),
      clock_(rateHz_),
      stream_(context, loop, device, std::move(onLost)) {
    const auto connect = [this](pa_stream* stream, const char* name, pa_stream_flags_t flags) {
        pa_stream_set_write_callback(stream, OnWritable, this);
        const pa_buffer_attr attributes = PlaybackAttributes(rateHz_);
        // The samples unchanged, whatever volume an earlier stream was given, and without touching
        // the volume of the device.
        pa_cvolume volume;
        pa_cvolume_reset(&volume, 2);
        const auto allFlags =
            static_cast<pa_stream_flags_t>(flags | PA_STREAM_RELATIVE_VOLUME | PA_STREAM_START_UNMUTED);
        return pa_stream_connect_playback(stream, name, &attributes, allFlags, &volume, nullptr);
    };
    const PulseDeadline deadline;
    stream_.Open(rateHz_, "Generator", connect, deadline);
    stream_.FollowPath(PulseDirection::kPlayback, deadline);
}

void PulsePlaybackBuffer::OnWritable(pa_stream* stream, std::size_t bytes, void* self) {
    auto& me = *static_cast<PulsePlaybackBuffer*>(self);
    std::size_t left = bytes / kFrameBytes;
    while (left > 0) {
        me.stream_.CountMovement();
        void* memory = nullptr;
        std::size_t room = left * kFrameBytes;
        if (pa_stream_begin_write(stream, &memory, &room) < 0) return;
        const std::size_t frames = std::min(room / kFrameBytes, left);
        const std::size_t delayFrames = me.DelayFrames(stream, frames);
        me.ring_.Pull(static_cast<std::int16_t*>(memory), frames, delayFrames);
        me.clock_.Moved(frames, delayFrames + frames);
        if (pa_stream_write(stream, memory, frames * kFrameBytes, nullptr, 0, PA_SEEK_RELATIVE) < 0) return;
        left -= frames;
    }
}

std::size_t PulsePlaybackBuffer::DelayFrames(pa_stream* stream, std::size_t writing) const noexcept {
    const auto most =
        static_cast<pa_usec_t>(kMostDelayFrames - std::min<std::size_t>(writing, kMostDelayFrames));
    const pa_timing_info* const timing = pa_stream_get_timing_info(stream);
    pa_usec_t latencyUs = 0;
    int negative = 0;
    if (timing != nullptr && timing->playing != 0 &&
        pa_stream_get_latency(stream, &latencyUs, &negative) == 0)
        return negative != 0 ? 0 : std::min(latencyUs * rateHz_ / PA_USEC_PER_SEC, most);
    // Not started or not measured yet: the server starts once its buffer is full.
    const pa_usec_t full = pa_stream_get_buffer_attr(stream)->tlength / kFrameBytes;
    return std::min(full - std::min<pa_usec_t>(writing, full), most);
}

PulseCaptureBuffer::PulseCaptureBuffer(PulseContext& context, EventLoop& loop, const NotificationHub& hub,
                                       const SoundDeviceInfo& device, const BufferDescription& description,
                                       PulseStream::LostHandler onLost)
    : hub_(hub),
      ring_(description.bytes),
      clock_(description.format.samplesPerSecond),
      stream_(context, loop, device, std::move(onLost)) {
    const std::uint32_t rateHz = description.format.samplesPerSecond;
    const auto connect = [&](pa_stream* stream, const char* name, pa_stream_flags_t flags) {
        pa_stream_set_read_callback(stream, OnReadable, this);
        const pa_buffer_attr attributes = CaptureAttributes(rateHz);
        return pa_stream_connect_record(stream, name, &attributes, flags);
    };
    const PulseDeadline deadline;
    stream_.Open(rateHz, "Meter", connect, deadline);
    stream_.ResetCaptureVolume(deadline);
    stream_.FollowPath(PulseDirection::kCapture, deadline);
}

void PulseCaptureBuffer::OnReadable(pa_stream* stream, std::size_t, void* self) {
    auto& me = *static_cast<PulseCaptureBuffer*>(self);
    const void* memory = nullptr;
    std::size_t bytes = 0;
    while (pa_stream_peek(stream, &memory, &bytes) == 0 && bytes > 0) {
        me.stream_.CountMovement();
        if (memory == nullptr)
            me.ring_.PushSilence(bytes / kFrameBytes);
        else
            me.ring_.Push(static_cast<const std::int16_t*>(memory), bytes / kFrameBytes);
        me.clock_.Moved(bytes / kFrameBytes, 0);
        pa_stream_drop(stream);
    }
}

void PulseCaptureBuffer::SetNotificationPositions(std::span<const PositionNotification> positions) {
    std::vector<CaptureRing::Position> ringPositions;
    for (const PositionNotification& position : positions)
        ringPositions.push_back({position.offset, hub_.SignalOf(position.event)});
    Ring().SetPositions(std::move(ringPositions));
}

}  // namespace sonavex
