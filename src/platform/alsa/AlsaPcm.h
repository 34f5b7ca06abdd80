#pragma once

#include <alsa/asoundlib.h>

#include <cstdint>
#include <memory>
#include <string>

#include "core/ports/SoundSystem.h"
#include "platform/alsa/AlsaDevices.h"

namespace sonavex {

// A PCM of libasound, opened for 16-bit interleaved stereo at one rate. It never blocks. A card's
// device that lacks the rate, 16 bits or stereo is opened through libasound's conversions instead; a
// device of the user's configuration is used as it is defined.
class AlsaPcm {
public:
    // Frames that are asked for; the device grants something near.
    struct Shape {
        std::uint32_t bufferFrames;
        std::uint32_t periodFrames;
    };

    // Opens the device. Throws kAllocated when another program holds it, kNoDriver when it is not
    // there, kBadFormat when it cannot be used at this rate, kGeneric otherwise.
    AlsaPcm(const AlsaDevice& device, snd_pcm_stream_t direction, std::uint32_t rateHz, Shape wanted);

    snd_pcm_t* Handle() const noexcept { return pcm_.get(); }
    std::uint32_t RateHz() const noexcept { return rateHz_; }
    std::uint32_t BufferFrames() const noexcept { return bufferFrames_; }
    std::uint32_t PeriodFrames() const noexcept { return periodFrames_; }

    // Wakes poll once so many frames can be moved; the device starts only when told to.
    void SetWakeUp(std::uint32_t frames);

    // What happens to the samples on their way, for the user; empty when they pass bit for bit.
    const std::string& Note() const noexcept { return note_; }

    // "card N" with the system's number of the card; empty when the device is no card's.
    std::string ClockName() const;

private:
    // What the device cannot do by itself.
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
