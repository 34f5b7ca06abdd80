#include "platform/alsa/AlsaFormats.h"

#include <cstring>

namespace sonavex {
namespace {

constexpr std::size_t kPackedBytes = 3;
// Of the upper 24 bits, in a sample of 32.
constexpr std::size_t kUpperBytes = std::endian::native == std::endian::little ? 1 : 0;

}  // namespace

std::string NamesOf(std::span<const AlsaFormat> formats) {
    std::string names;
    for (const AlsaFormat& format : formats) names += (names.empty() ? "" : ", ") + std::string(format.name);
    return names;
}

void ToCard(const AlsaFormat& format, std::int32_t* samples, std::size_t count) noexcept {
    if (format.bits == 32) return;
    auto* packed = reinterpret_cast<std::byte*>(samples);
    for (std::size_t i = 0; i < count; ++i) {
        const std::int32_t sample = samples[i];
        if (format.code == SND_PCM_FORMAT_S24)
            samples[i] = sample >> 8;
        else
            std::memcpy(packed + kPackedBytes * i, reinterpret_cast<const std::byte*>(&sample) + kUpperBytes,
                        kPackedBytes);
    }
}

// Backwards, because packed samples are shorter.
void FromCard(const AlsaFormat& format, std::int32_t* samples, std::size_t count) noexcept {
    if (format.bits == 32) return;
    const auto* packed = reinterpret_cast<const std::byte*>(samples);
    for (std::size_t i = count; i-- > 0;) {
        std::int32_t sample = 0;
        if (format.code == SND_PCM_FORMAT_S24)
            // The upper byte is undefined; the shift drops it.
            sample = static_cast<std::int32_t>(static_cast<std::uint32_t>(samples[i]) << 8U);
        else
            std::memcpy(reinterpret_cast<std::byte*>(&sample) + kUpperBytes, packed + kPackedBytes * i,
                        kPackedBytes);
        samples[i] = sample;
    }
}

}  // namespace sonavex
