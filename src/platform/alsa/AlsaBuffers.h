#pragma once

#include <chrono>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "platform/alsa/AlsaPcm.h"
#include "platform/alsa/AlsaStream.h"
#include "platform/ring/CaptureRing.h"
#include "platform/ring/ClockMeter.h"
#include "platform/ring/NotificationHub.h"
#include "platform/ring/PlaybackRing.h"

namespace sonavex {

// A playback ring that a card empties. The card runs as long as the buffer lives and plays silence
// while the buffer is stopped.
class AlsaPlaybackBuffer : public PlaybackBuffer, private AlsaMover {
public:
    AlsaPlaybackBuffer(EventLoop& loop, const AlsaDevice& device, const BufferDescription& description,
                       AlsaStream::LostHandler onLost);

    BufferCursors GetCurrentPosition() override { return Ring().Cursors(); }
    void WriteBuffer(std::int32_t offset, std::span<const std::int16_t> samples) override {
        Ring().Write(offset, samples);
    }
    void SetCurrentPosition(std::int32_t offset) override { Ring().SetPosition(offset); }
    void PlayLooping() override { Ring().Play(); }
    void Stop() override { ring_.Stop(); }
    void SetVolume(std::int32_t hundredthsDb) override { Ring().SetVolume(hundredthsDb); }
    std::string PathNote() const override { return pcm_.Note(); }
    std::uint64_t Underruns() const override { return stream_.Xruns(); }
    std::optional<std::chrono::nanoseconds> ClockLead() const override { return clock_.Lead(); }
    std::string ClockName() const override { return pcm_.ClockName(); }

private:
    int Start() noexcept override;
    snd_pcm_sframes_t Move() noexcept override;
    // Writes up to so many frames of the ring. Frames, or an error of libasound.
    snd_pcm_sframes_t Write(std::size_t frames) noexcept;
    // Frames written and not yet audible.
    std::size_t DelayFrames(std::size_t writing) const noexcept;
    PlaybackRing& Ring() {
        stream_.RequireDevice();
        return ring_;
    }

    PlaybackRing ring_;
    ClockMeter clock_;
    AlsaPcm pcm_;
    std::size_t targetFrames_;  // how full the card's buffer is kept
    std::vector<std::int16_t> scratch_;
    std::size_t pendingFrames_ = 0;  // at the end of what is in scratch_: taken from the ring, not yet
    std::size_t scratchFrames_ = 0;  // written
    AlsaStream stream_;
};

// A capture ring that a card fills. What arrives while the buffer is stopped is dropped; what an
// overrun loses becomes silence of about its length.
class AlsaCaptureBuffer : public CaptureBuffer, private AlsaMover {
public:
    AlsaCaptureBuffer(EventLoop& loop, const NotificationHub& hub, const AlsaDevice& device,
                      const BufferDescription& description, AlsaStream::LostHandler onLost);
    ~AlsaCaptureBuffer() override { ring_.Stop(); }
    AlsaCaptureBuffer(const AlsaCaptureBuffer&) = delete;
    AlsaCaptureBuffer& operator=(const AlsaCaptureBuffer&) = delete;

    void SetNotificationPositions(std::span<const PositionNotification> positions) override;
    void StartLooping() override { Ring().Start(); }
    void Stop() override { ring_.Stop(); }
    void ReadBuffer(std::int32_t offset, std::span<std::int16_t> samples) override {
        Ring().Read(offset, samples);
    }
    CaptureStatistics Statistics() const override { return ring_.Statistics(); }
    std::string PathNote() const override { return pcm_.Note(); }
    std::optional<std::chrono::nanoseconds> ClockLead() const override { return clock_.Lead(); }
    std::string ClockName() const override { return pcm_.ClockName(); }

private:
    using Clock = std::chrono::steady_clock;

    int Start() noexcept override;
    snd_pcm_sframes_t Move() noexcept override;
    std::size_t LostFrames() const noexcept;
    CaptureRing& Ring() {
        stream_.RequireDevice();
        return ring_;
    }

    const NotificationHub& hub_;
    CaptureRing ring_;
    ClockMeter clock_;
    AlsaPcm pcm_;
    std::vector<std::int16_t> scratch_;
    bool started_ = false;         // once; what follows are overruns
    Clock::time_point readUntil_;  // when the card's buffer was last emptied
    AlsaStream stream_;
};

}  // namespace sonavex
