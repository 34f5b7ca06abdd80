#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "platform/alsa/AlsaPcm.h"
#include "platform/alsa/AlsaStream.h"
#include "platform/ring/RingBuffers.h"

namespace sonavex {

// Memory for frames on their way between a ring and a card, in the card's format. It has room for them as
// 32-bit samples, which are converted in place.
class AlsaFrames {
public:
    AlsaFrames(const AlsaFormat& format, std::size_t frames) : format_(format), memory_(2 * frames) {}

    std::byte* At(std::size_t frame) noexcept {
        return reinterpret_cast<std::byte*>(memory_.data()) + frame * format_.frameBytes;
    }
    // True for S16: the memory then holds Samples16, otherwise Samples32.
    bool Narrow() const noexcept { return format_.code == SND_PCM_FORMAT_S16; }
    std::int16_t* Samples16() noexcept { return reinterpret_cast<std::int16_t*>(memory_.data()); }
    std::int32_t* Samples32() noexcept { return memory_.data(); }
    void ToCard(std::size_t frames) noexcept { sonavex::ToCard(format_, memory_.data(), 2 * frames); }
    void FromCard(std::size_t frames) noexcept { sonavex::FromCard(format_, memory_.data(), 2 * frames); }

private:
    AlsaFormat format_;
    std::vector<std::int32_t> memory_;
};

// A playback buffer whose ring is emptied by a card. The card runs as long as the buffer exists.
class AlsaPlaybackBuffer : public RingPlaybackBuffer, private AlsaMover {
public:
    // Opens and starts the card; throws as AlsaPcm and AlsaStream::Run.
    AlsaPlaybackBuffer(EventLoop& loop, const AlsaDevice& device, const BufferDescription& description,
                       AlsaStream::LostHandler onLost);

    const RateList& ExtendedRates() const noexcept { return pcm_.ExtendedRates(); }

private:
    const RingDevice& Device() const noexcept override { return stream_; }
    int Start() noexcept override;
    snd_pcm_sframes_t Move() noexcept override;
    // Writes at most this many frames. Returns the frames written, or an error of libasound.
    snd_pcm_sframes_t Write(std::size_t frames) noexcept;
    void PullScratch() noexcept;
    // Frames written and not yet audible.
    std::size_t DelayFrames() const noexcept;

    AlsaPcm pcm_;
    std::size_t targetFrames_;  // fill of the card's buffer that Move restores
    AlsaFrames scratch_;
    // Frames that were taken from the ring into scratch_, and how many at their end are not written yet.
    std::size_t scratchFrames_ = 0;
    std::size_t pendingFrames_ = 0;
    AlsaStream stream_;
};

// A capture buffer whose ring is filled by a card. An overrun becomes silence of about the lost length.
class AlsaCaptureBuffer : public RingCaptureBuffer, private AlsaMover {
public:
    // Opens and starts the card; throws as AlsaPcm and AlsaStream::Run.
    AlsaCaptureBuffer(EventLoop& loop, const NotificationHub& hub, const AlsaDevice& device,
                      const BufferDescription& description, AlsaStream::LostHandler onLost);

    const RateList& ExtendedRates() const noexcept { return pcm_.ExtendedRates(); }

private:
    using Clock = std::chrono::steady_clock;

    const RingDevice& Device() const noexcept override { return stream_; }
    int Start() noexcept override;
    snd_pcm_sframes_t Move() noexcept override;
    void PushScratch(std::size_t frames) noexcept;
    std::size_t LostFrames() const noexcept;

    AlsaPcm pcm_;
    AlsaFrames scratch_;
    bool started_ = false;         // every later start follows an overrun
    Clock::time_point readUntil_;  // when the card's buffer was last emptied
    AlsaStream stream_;
};

}  // namespace sonavex
