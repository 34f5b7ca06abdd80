#pragma once

#include <cstddef>
#include <cstdint>

#include "platform/pulse/PulseStream.h"
#include "platform/ring/RingBuffers.h"

namespace sonavex {

// A playback buffer whose ring is emptied by a stream to the server. The stream runs as long as the
// buffer exists.
class PulsePlaybackBuffer : public RingPlaybackBuffer {
public:
    // Opens the stream; throws as PulseStream::Open.
    PulsePlaybackBuffer(PulseContext& context, EventLoop& loop, const SoundDeviceInfo& device,
                        const BufferDescription& description, PulseStream::LostHandler onLost);

private:
    static void OnWritable(pa_stream* stream, std::size_t bytes, void* self);
    const RingDevice& Device() const noexcept override { return stream_; }
    // Frames written and not yet audible, when `writing` more are about to be written.
    std::size_t DelayFrames(pa_stream* stream, std::size_t writing) const noexcept;

    std::uint32_t rateHz_;
    PulseStream stream_;
};

// A capture buffer whose ring is filled by a stream from the server. A gap in the stream becomes silence
// of its length.
class PulseCaptureBuffer : public RingCaptureBuffer {
public:
    // Opens the stream; throws as PulseStream::Open.
    PulseCaptureBuffer(PulseContext& context, EventLoop& loop, const NotificationHub& hub,
                       const SoundDeviceInfo& device, const BufferDescription& description,
                       PulseStream::LostHandler onLost);

private:
    static void OnReadable(pa_stream* stream, std::size_t bytes, void* self);
    const RingDevice& Device() const noexcept override { return stream_; }

    PulseStream stream_;
};

}  // namespace sonavex
