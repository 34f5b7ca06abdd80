#pragma once

#include <alsa/asoundlib.h>

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>

namespace sonavex {

// A sample format of a card, in the byte order of the machine.
struct AlsaFormat {
    snd_pcm_format_t code;
    const char* name;
    int bits;
    std::size_t frameBytes;  // of a stereo frame
};

// The widest first. S24 is right-justified in 32 bits.
inline constexpr std::array kAlsaFormats{
    AlsaFormat{SND_PCM_FORMAT_S32, "S32", 32, 8},
    AlsaFormat{std::endian::native == std::endian::little ? SND_PCM_FORMAT_S24_3LE : SND_PCM_FORMAT_S24_3BE,
               "S24_3", 24, 6},
    AlsaFormat{SND_PCM_FORMAT_S24, "S24", 24, 8}, AlsaFormat{SND_PCM_FORMAT_S16, "S16", 16, 4}};

// "S32, S16"
std::string NamesOf(std::span<const AlsaFormat> formats);

// Converts left-justified samples of 32 bits to the card's samples or back, in place. The card's samples
// begin at the same address. Not for S16. Audio thread.
void ToCard(const AlsaFormat& format, std::int32_t* samples, std::size_t count) noexcept;
void FromCard(const AlsaFormat& format, std::int32_t* samples, std::size_t count) noexcept;

}  // namespace sonavex
