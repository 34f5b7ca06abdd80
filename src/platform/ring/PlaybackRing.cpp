#include "platform/ring/PlaybackRing.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace sonavex {
namespace {

constexpr double kRampSeconds = 0.005;
constexpr std::int32_t kSilence = -10000;
constexpr std::uint32_t kMostHandedOver = std::numeric_limits<std::uint32_t>::max();

template <class Sample>
constexpr int kBitsOf = 8 * sizeof(Sample);

}  // namespace

PlaybackRing::PlaybackRing(std::int32_t bytes, std::int32_t rateHz)
    : frames_(bytes), rampShare_(1.0 / std::max(kRampSeconds * rateHz, 1.0)) {}

PlaybackRing::Place PlaybackRing::Claim(std::size_t frames) noexcept {
    Place old = place_.load();
    Place next{};
    do {
        next.frame = static_cast<std::uint32_t>((old.frame + frames) % frames_.Size());
        // Saturates: a count above the ring's length has no further meaning.
        const std::uint64_t handed = std::uint64_t{old.handedOver} + frames;
        next.handedOver = static_cast<std::uint32_t>(std::min<std::uint64_t>(handed, kMostHandedOver));
    } while (!place_.compare_exchange_weak(old, next));
    return old;
}

template <class Sample>
void PlaybackRing::PullAs(Sample* samples, std::size_t frames, std::size_t deviceDelay) noexcept {
    if (!playing_.load()) {
        std::fill_n(samples, 2 * frames, Sample{0});
        audible_ = false;
        return;
    }
    if (!audible_) gain_ = rampTarget_ = targetGain_.load();
    audible_ = true;
    const Place from = Claim(frames);
    // Saturates as the count of frames does.
    delay_.store(static_cast<std::uint32_t>(std::min<std::size_t>(deviceDelay + frames, kMostHandedOver)));
    const int bits = std::min(bits_.load(std::memory_order_relaxed), kBitsOf<Sample>);
    if (gain_ != 1.0 || targetGain_.load() != 1.0) return Amplify(from.frame, samples, frames, bits);
    if constexpr (kBitsOf<Sample> == 16)
        if (bits == 16) return Copy16(from.frame, samples, frames);
    Copy(from.frame, samples, frames, bits);
}

void PlaybackRing::Pull(std::int16_t* samples, std::size_t frames, std::size_t deviceDelay) noexcept {
    PullAs(samples, frames, deviceDelay);
}

void PlaybackRing::Pull(std::int32_t* samples, std::size_t frames, std::size_t deviceDelay) noexcept {
    PullAs(samples, frames, deviceDelay);
}

void PlaybackRing::Copy16(std::size_t at, std::int16_t* samples, std::size_t frames) const noexcept {
    for (std::size_t i = 0; i < frames; ++i, at = After(at)) {
        const Frame16 frame = frames_.Load16(at);
        std::copy(frame.begin(), frame.end(), samples + 2 * i);
    }
}

template <class Sample>
void PlaybackRing::Copy(std::size_t at, Sample* samples, std::size_t frames, int bits) const noexcept {
    for (std::size_t i = 0; i < frames; ++i, at = After(at)) {
        const FineFrame frame = frames_.LoadFine(at);
        for (std::size_t channel = 0; channel < 2; ++channel) {
            const std::int32_t sample = bits < 32 ? Rounded(frame[channel], bits) : frame[channel];
            samples[2 * i + channel] = static_cast<Sample>(sample >> (32 - kBitsOf<Sample>));
        }
    }
}

template <class Sample>
void PlaybackRing::Amplify(std::size_t at, Sample* samples, std::size_t frames, int bits) noexcept {
    const double target = targetGain_.load();
    if (target != rampTarget_) {
        rampTarget_ = target;
        gainStep_ = std::abs(target - gain_) * rampShare_;
    }
    // The gain is at most 1, so that only rounding can exceed full scale.
    const double step = std::exp2(32 - bits);
    const double highest = std::exp2(bits - 1) - 1.0;
    const auto unit = static_cast<Sample>(std::int64_t{1} << (kBitsOf<Sample> - bits));
    for (std::size_t i = 0; i < frames; ++i, at = After(at)) {
        gain_ += std::clamp(target - gain_, -gainStep_, gainStep_);
        const FineFrame frame = frames_.LoadFine(at);
        for (std::size_t channel = 0; channel < 2; ++channel) {
            const double steps = std::min(gain_ / step * frame[channel], highest);
            samples[2 * i + channel] = static_cast<Sample>(std::lrint(steps) * unit);
        }
    }
}

void PlaybackRing::Write(std::int32_t offset, std::span<const std::int16_t> samples) {
    const std::size_t first = frames_.CheckedRange(offset, samples.size());
    for (std::size_t i = 0; i < samples.size() / 2; ++i)
        frames_.Store(first + i, Frame16{samples[2 * i], samples[2 * i + 1]});
}

void PlaybackRing::WriteFine(std::int32_t offset, std::span<const std::int32_t> samples) {
    const std::size_t first = frames_.CheckedRange(offset, samples.size());
    for (std::size_t i = 0; i < samples.size() / 2; ++i)
        frames_.Store(first + i, FineFrame{samples[2 * i], samples[2 * i + 1]});
}

BufferCursors PlaybackRing::Cursors() const noexcept {
    if (!playing_.load()) return {};
    const Place place = place_.load();
    const auto size = static_cast<std::uint32_t>(frames_.Size());
    const std::uint32_t behind = std::min({delay_.load(), place.handedOver, size - 1});
    const std::uint32_t playFrame = (place.frame + size - behind) % size;
    return {static_cast<std::int32_t>(playFrame) * kFrameBytes,
            static_cast<std::int32_t>(place.frame) * kFrameBytes};
}

void PlaybackRing::SetPosition(std::int32_t offset) {
    if (offset < 0 || offset >= frames_.Bytes() || offset % kFrameBytes != 0)
        throw RuntimeError(error_number::kInvalidCall);
    place_.store(Place{static_cast<std::uint32_t>(offset / kFrameBytes), 0});
}

void PlaybackRing::SetVolume(std::int32_t hundredthsDb) {
    if (hundredthsDb < kSilence || hundredthsDb > 0) throw RuntimeError(error_number::kInvalidCall);
    targetGain_.store(hundredthsDb == kSilence ? 0.0 : std::pow(10.0, hundredthsDb / 2000.0));
}

}  // namespace sonavex
