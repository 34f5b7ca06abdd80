#include "platform/pulse/PulseBuffers.h"

#include <algorithm>
#include <utility>

#include "platform/ring/StreamTiming.h"

namespace sonavex {
namespace {

constexpr std::uint32_t kUnset = static_cast<std::uint32_t>(-1);
constexpr auto kFineBytes = static_cast<std::uint32_t>(kFineFrameBytes);

pa_buffer_attr PlaybackAttributes(std::uint32_t rateHz) noexcept {
    return {kUnset, stream_timing::PlaybackFrames(rateHz) * kFineBytes, kUnset, kUnset, kUnset};
}

pa_buffer_attr CaptureAttributes(std::uint32_t rateHz) noexcept {
    return {kUnset, kUnset, kUnset, kUnset, stream_timing::CaptureFrames(rateHz) * kFineBytes};
}

}  // namespace

PulsePlaybackBuffer::PulsePlaybackBuffer(PulseContext& context, EventLoop& loop,
                                         const SoundDeviceInfo& device, const BufferDescription& description,
                                         PulseStream::LostHandler onLost)
    : RingPlaybackBuffer(description),
      rateHz_(description.format.samplesPerSecond),
      stream_(context, loop, device, std::move(onLost)) {
    const auto connect = [this](pa_stream* stream, const char* name, pa_stream_flags_t flags) {
        pa_stream_set_write_callback(stream, OnWritable, this);
        const pa_buffer_attr attributes = PlaybackAttributes(rateHz_);
        // Full volume, so that samples pass unchanged: the server may remember another volume of an
        // earlier stream. The flag keeps it from changing the volume of the device.
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
    std::size_t left = bytes / kFineFrameBytes;
    while (left > 0) {
        me.stream_.CountMovement();
        void* memory = nullptr;
        std::size_t room = left * kFineFrameBytes;
        if (pa_stream_begin_write(stream, &memory, &room) < 0) return;
        const std::size_t frames = std::min(room / kFineFrameBytes, left);
        me.Pull(static_cast<std::int32_t*>(memory), frames, me.DelayFrames(stream, frames));
        if (pa_stream_write(stream, memory, frames * kFineFrameBytes, nullptr, 0, PA_SEEK_RELATIVE) < 0)
            return;
        left -= frames;
    }
}

std::size_t PulsePlaybackBuffer::DelayFrames(pa_stream* stream, std::size_t writing) const noexcept {
    const pa_timing_info* const timing = pa_stream_get_timing_info(stream);
    pa_usec_t latencyUs = 0;
    int negative = 0;
    if (timing != nullptr && timing->playing != 0 &&
        pa_stream_get_latency(stream, &latencyUs, &negative) == 0)
        return negative != 0 ? 0 : latencyUs * rateHz_ / PA_USEC_PER_SEC;
    // No timing yet: the server starts playback when its buffer is full.
    const std::size_t full = pa_stream_get_buffer_attr(stream)->tlength / kFineFrameBytes;
    return full - std::min(writing, full);
}

PulseCaptureBuffer::PulseCaptureBuffer(PulseContext& context, EventLoop& loop, const NotificationHub& hub,
                                       const SoundDeviceInfo& device, const BufferDescription& description,
                                       PulseStream::LostHandler onLost)
    : RingCaptureBuffer(hub, description), stream_(context, loop, device, std::move(onLost)) {
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
            me.PushSilence(bytes / kFineFrameBytes);
        else
            me.Push(static_cast<const std::int32_t*>(memory), bytes / kFineFrameBytes);
        pa_stream_drop(stream);
    }
}

}  // namespace sonavex
