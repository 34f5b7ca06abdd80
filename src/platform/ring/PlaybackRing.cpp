#include "platform/ring/PlaybackRing.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>

namespace sonavex {
namespace {

constexpr double kRampSeconds = 0.005;
constexpr std::int32_t kSilence = -10000;
constexpr std::uint32_t kMostHandedOver = std::numeric_limits<std::uint32_t>::max();

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

void PlaybackRing::Pull(std::int16_t* samples, std::size_t frames, std::size_t deviceDelay) noexcept {
    if (!playing_.load()) {
        std::memset(samples, 0, frames * kFrameBytes);
        audible_ = false;
        return;
    }
    if (!audible_) gain_ = rampTarget_ = targetGain_.load();
    audible_ = true;
    const Place from = Claim(frames);
    // Saturates as the count of frames does.
    delay_.store(static_cast<std::uint32_t>(std::min<std::size_t>(deviceDelay + frames, kMostHandedOver)));
    std::size_t at = from.frame;
    for (std::size_t i = 0; i < frames; ++i) {
        frames_.Load(at, samples + 2 * i);
        at = at + 1 == frames_.Size() ? 0 : at + 1;
    }
    Amplify(samples, frames);
}

void PlaybackRing::Amplify(std::int16_t* samples, std::size_t frames) noexcept {
    const double target = targetGain_.load();
    if (gain_ == 1.0 && target == 1.0) return;
    if (target != rampTarget_) {
        rampTarget_ = target;
        gainStep_ = std::abs(target - gain_) * rampShare_;
    }
    for (std::size_t i = 0; i < frames; ++i) {
        gain_ += std::clamp(target - gain_, -gainStep_, gainStep_);
        for (std::size_t channel = 0; channel < 2; ++channel) {
            std::int16_t& sample = samples[2 * i + channel];
            sample = static_cast<std::int16_t>(std::lrint(gain_ * sample));
        }
    }
}

void PlaybackRing::Write(std::int32_t offset, std::span<const std::int16_t> samples) {
    frames_.CheckRange(offset, samples.size());
    const auto first = static_cast<std::size_t>(offset / kFrameBytes);
    for (std::size_t i = 0; i < samples.size() / 2; ++i)
        frames_.Store(first + i, samples[2 * i], samples[2 * i + 1]);
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
