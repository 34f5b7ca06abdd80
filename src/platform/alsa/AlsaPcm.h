#pragma once

#include <alsa/asoundlib.h>

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "core/ports/SoundSystem.h"
#include "platform/alsa/AlsaDevices.h"
#include "platform/alsa/AlsaFormats.h"

namespace sonavex {

// A PCM of libasound, opened for interleaved stereo at one rate in the widest format that it has, in
// non-blocking mode. When a device of a card lacks the rate, all formats or stereo, it is opened through
// libasound's conversions with 16 bits. A PCM of the user's configuration is used as it is defined, with 16
// bits if it holds conversions.
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

    // Opens the device to read its extended rates, and closes it. Throws as the constructor.
    static RateList ReadExtendedRates(const AlsaDevice& device, snd_pcm_stream_t direction);

    snd_pcm_t* Handle() const noexcept { return pcm_.get(); }
    std::uint32_t RateHz() const noexcept { return rateHz_; }
    // Those of kExtendedRates that the device has itself. None with conversions of the user's configuration,
    // because they hide its rates.
    const RateList& ExtendedRates() const noexcept { return extendedRates_; }
    const AlsaFormat& Format() const noexcept { return format_; }
    // Significant bits of a sample: those that the device reports, of its format, at most 24.
    int Bits() const noexcept { return bits_; }
    std::uint32_t BufferFrames() const noexcept { return bufferFrames_; }
    std::uint32_t PeriodFrames() const noexcept { return periodFrames_; }

    // Wakes poll when this many frames can be moved. The device starts only by snd_pcm_start.
    void SetWakeUp(std::uint32_t frames);

    // For the user: how samples are converted, and with how many bits. Empty when they pass bit for bit.
    const std::string& Note() const noexcept { return note_; }

    // "card N" with the system's number of the card; empty when there is no card.
    std::string ClockName() const;

private:
    // Properties that the device itself lacks.
    struct Lacks {
        bool rate = false;
        bool format = false;
        bool channels = false;
        bool Any() const { return rate || format || channels; }
    };
    enum class Resampling { kForbidden, kAllowed };

    struct Close {
        void operator()(snd_pcm_t* pcm) const noexcept;
    };

    AlsaPcm(const AlsaDevice& device, snd_pcm_stream_t direction);
    // Without conversions.
    std::span<const AlsaFormat> NativeFormats() const noexcept;
    void Open(const std::string& name);
    void FindExtendedRates();
    Lacks Missing(Resampling resampling, const AlsaFormat& format, std::uint32_t rateHz) const;
    // Stores the formats of these that the device has. If it has none of them: what a conversion must change.
    Lacks FindFormats(Resampling resampling, std::span<const AlsaFormat> formats);
    void ConfigureInTurn(Shape wanted);
    void Configure(Shape wanted);
    std::string ConversionNote(const Lacks& lacks) const;
    [[noreturn]] void RefuseFormat(const Lacks& lacks) const;
    void Require(int result) const;

    AlsaDevice device_;
    snd_pcm_stream_t direction_;
    std::uint32_t rateHz_ = 0;
    RateList extendedRates_;
    std::vector<AlsaFormat> formats_;  // usable, the widest first
    AlsaFormat format_ = kAlsaFormats.back();
    int bits_ = 16;
    std::unique_ptr<snd_pcm_t, Close> pcm_;
    std::uint32_t bufferFrames_ = 0;
    std::uint32_t periodFrames_ = 0;
    std::string note_;
};

}  // namespace sonavex
