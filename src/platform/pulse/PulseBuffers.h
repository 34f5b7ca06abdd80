#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "platform/pulse/PulseStream.h"
#include "platform/ring/CaptureRing.h"
#include "platform/ring/ClockMeter.h"
#include "platform/ring/NotificationHub.h"
#include "platform/ring/PlaybackRing.h"

namespace sonavex {

// A playback ring that a stream to the server empties. The stream runs as long as the buffer lives
// and carries silence while the buffer is stopped.
class PulsePlaybackBuffer : public PlaybackBuffer {
public:
    PulsePlaybackBuffer(PulseContext& context, EventLoop& loop, const SoundDeviceInfo& device,
                        const BufferDescription& description, PulseStream::LostHandler onLost);

    BufferCursors GetCurrentPosition() override { return Ring().Cursors(); }
    void WriteBuffer(std::int32_t offset, std::span<const std::int16_t> samples) override {
        Ring().Write(offset, samples);
    }
    void SetCurrentPosition(std::int32_t offset) override { Ring().SetPosition(offset); }
    void PlayLooping() override { Ring().Play(); }
    void Stop() override { ring_.Stop(); }
    void SetVolume(std::int32_t hundredthsDb) override { Ring().SetVolume(hundredthsDb); }
    std::string PathNote() const override { return stream_.PathNote(); }
    std::uint64_t Underruns() const override { return stream_.Underruns(); }
    std::optional<std::chrono::nanoseconds> ClockLead() const override { return clock_.Lead(); }
    std::string ClockName() const override { return stream_.ClockName(); }

private:
    static void OnWritable(pa_stream* stream, std::size_t bytes, void* self);
    // Frames written and not yet audible.
    std::size_t DelayFrames(pa_stream* stream, std::size_t writing) const noexcept;
    PlaybackRing& Ring() {
        stream_.RequireDevice();
        return ring_;
    }

    std::uint32_t rateHz_;
    PlaybackRing ring_;
    ClockMeter clock_;
    PulseStream stream_;
};

// A capture ring that a stream from the server fills. What arrives while the buffer is stopped is
// dropped; a gap in the stream becomes silence of its length.
class PulseCaptureBuffer : public CaptureBuffer {
public:
    PulseCaptureBuffer(PulseContext& context, EventLoop& loop, const NotificationHub& hub,
                       const SoundDeviceInfo& device, const BufferDescription& description,
                       PulseStream::LostHandler onLost);
    ~PulseCaptureBuffer() override { ring_.Stop(); }
    PulseCaptureBuffer(const PulseCaptureBuffer&) = delete;
    PulseCaptureBuffer& operator=(const PulseCaptureBuffer&) = delete;

    void SetNotificationPositions(std::span<const PositionNotification> positions) override;
    void StartLooping() override { Ring().Start(); }
    void Stop() override { ring_.Stop(); }
    void ReadBuffer(std::int32_t offset, std::span<std::int16_t> samples) override {
        Ring().Read(offset, samples);
    }
    CaptureStatistics Statistics() const override { return ring_.Statistics(); }
    std::string PathNote() const override { return stream_.PathNote(); }
    std::optional<std::chrono::nanoseconds> ClockLead() const override { return clock_.Lead(); }
    std::string ClockName() const override { return stream_.ClockName(); }

private:
    static void OnReadable(pa_stream* stream, std::size_t bytes, void* self);
    CaptureRing& Ring() {
        stream_.RequireDevice();
        return ring_;
    }

    const NotificationHub& hub_;
    CaptureRing ring_;
    ClockMeter clock_;
    PulseStream stream_;
};

}  // namespace sonavex
