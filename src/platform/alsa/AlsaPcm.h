#pragma once

#include <alsa/asoundlib.h>

#include <cstdint>
#include <memory>
#include <string>

#include "core/ports/SoundSystem.h"
#include "platform/alsa/AlsaDevices.h"

namespace sonavex {

// A PCM of libasound, opened for 16-bit interleaved stereo at one rate, in non-blocking mode. When a device
// of a card lacks the rate, 16 bits or stereo, it is opened through libasound's conversions. A PCM of the
// user's configuration is used as it is defined.
class AlsaPcm {
public:
    // Requested frames. The device grants the nearest numbers that it can.
    struct Shape {
        std::uint32_t bufferFrames;
        std::uint32_t periodFrames;
    };

    // Opens the device. Throws kAllocated when another program uses it, kNoDriver when it does not exist,
    // kBadFormat when it cannot run at this rate, kGeneric for any other failure.
    AlsaPcm(const AlsaDevice& device, snd_pcm_stream_t direction, std::uint32_t rateHz, Shape wanted);

    snd_pcm_t* Handle() const noexcept { return pcm_.get(); }
    std::uint32_t RateHz() const noexcept { return rateHz_; }
    std::uint32_t BufferFrames() const noexcept { return bufferFrames_; }
    std::uint32_t PeriodFrames() const noexcept { return periodFrames_; }

    // Wakes poll when this many frames can be moved. The device starts only by snd_pcm_start.
    void SetWakeUp(std::uint32_t frames);

    // For the user: how samples are converted. Empty when they pass bit for bit.
    const std::string& Note() const noexcept { return note_; }

    // "card N" with the system's number of the card; empty when there is no card.
    std::string ClockName() const;

private:
    // Properties that the device itself lacks.
    struct Lacks {
        bool rate = false;
        bool format = false;  // 16 bits
        bool channels = false;
        bool Any() const { return rate || format || channels; }
    };
    enum class Resampling { kForbidden, kAllowed };

    struct Close {
        void operator()(snd_pcm_t* pcm) const noexcept;
    };

    void Open(const std::string& name);
    Lacks Missing(Resampling resampling) const;
    void Configure(Shape wanted);
    std::string ConversionNote(const Lacks& lacks) const;
    [[noreturn]] void RefuseFormat(const Lacks& lacks) const;
    void Require(int result) const;

    AlsaDevice device_;
    snd_pcm_stream_t direction_;
    std::uint32_t rateHz_;
    std::unique_ptr<snd_pcm_t, Close> pcm_;
    std::uint32_t bufferFrames_ = 0;
    std::uint32_t periodFrames_ = 0;
    std::string note_;
};

}  // namespace sonavex
