#include "platform/ring/PlaybackRing.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

#include "core/support/BlockSize.h"

namespace sonavex {
namespace {

constexpr double kRampSeconds = 0.005;
constexpr std::int32_t kSilence = -10000;
constexpr std::uint32_t kMostHandedOver = std::numeric_limits<std::uint32_t>::max();

constexpr std::size_t kChunkFrames = 64;

// Outlasts a user-interface thread that is blocked for a second, and some blocks at low rates.
std::size_t FineFrames(std::int32_t rateHz) noexcept {
    return static_cast<std::size_t>(std::max(rateHz + rateHz / 2, 4 * kBlockFrames));
}

template <class Sample>
constexpr int kBitsOf = 8 * sizeof(Sample);

template <class Sample>
void Copy(std::span<const FineFrame> frames, Sample* samples, int bits) noexcept {
    for (const FineFrame& frame : frames)
        for (const std::int32_t sample : frame)
            *samples++ =
                static_cast<Sample>((bits < 32 ? Rounded(sample, bits) : sample) >> (32 - kBitsOf<Sample>));
}

}  // namespace

PlaybackRing::PlaybackRing(std::int32_t bytes, std::int32_t rateHz)
    : frames_(bytes),
      rateHz_(rateHz),
      fine_(FineFrames(rateHz)),
      rampShare_(1.0 / std::max(kRampSeconds * rateHz, 1.0)) {}

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
    // A queue that was opened again has room only after this thread has passed the frames put before.
    TakeFine({});
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
    const double target = targetGain_.load();
    const bool unchanged = gain_ == 1.0 && target == 1.0;
    if constexpr (kBitsOf<Sample> == 16)
        if (unchanged && bits == 16 && !fine_.Opened()) return Copy16(from.frame, samples, frames);
    FollowTarget(target);
    std::array<FineFrame, kChunkFrames> chunk;
    for (std::size_t done = 0; done < frames; done += kChunkFrames) {
        const std::span<FineFrame> part(chunk.data(), std::min(frames - done, kChunkFrames));
        Fetch((from.frame + done) % frames_.Size(), part);
        if (unchanged)
            Copy(part, samples + 2 * done, bits);
        else
            Amplify(part, target, samples + 2 * done, bits);
    }
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

void PlaybackRing::Fetch(std::size_t at, std::span<FineFrame> frames) noexcept {
    if (!fine_.Opened()) {
        for (FineFrame& frame : frames) {
            frame = frames_.LoadFine(at);
            at = After(at);
        }
        return;
    }
    const bool used = fine_.Used();
    const std::size_t taken = TakeFine(frames);
    std::fill(frames.begin() + static_cast<std::ptrdiff_t>(taken), frames.end(), FineFrame{});
    if (used) fineMissing_.fetch_add(frames.size() - taken, std::memory_order_relaxed);
}

std::size_t PlaybackRing::TakeFine(std::span<FineFrame> frames) noexcept {
    const auto take = [&](std::size_t i, const FineFrame& frame) {
        frames[i] = frame;
        return true;
    };
    return fine_.Take(take, frames.size());
}

void PlaybackRing::FollowTarget(double target) noexcept {
    if (target == rampTarget_) return;
    rampTarget_ = target;
    gainStep_ = std::abs(target - gain_) * rampShare_;
}

template <class Sample>
void PlaybackRing::Amplify(std::span<const FineFrame> frames, double target, Sample* samples,
                           int bits) noexcept {
    // The gain is at most 1, so that only rounding can exceed full scale.
    const double step = std::exp2(32 - bits);
    const double highest = std::exp2(bits - 1) - 1.0;
    const auto unit = static_cast<Sample>(std::int64_t{1} << (kBitsOf<Sample> - bits));
    for (const FineFrame& frame : frames) {
        gain_ += std::clamp(target - gain_, -gainStep_, gainStep_);
        for (const std::int32_t sample : frame) {
            const double steps = std::min(gain_ / step * sample, highest);
            *samples++ = static_cast<Sample>(std::lrint(steps) * unit);
        }
    }
}

void PlaybackRing::PlayFine(bool on) {
    on ? fine_.Open() : fine_.Close();
}

std::size_t PlaybackRing::QueueFine(std::span<const std::int32_t> samples) noexcept {
    return 2 * fine_.Put(
                   [&](std::size_t i) {
                       return FineFrame{samples[2 * i], samples[2 * i + 1]};
                   },
                   samples.size() / 2);
}

std::size_t PlaybackRing::CutFine(std::chrono::milliseconds keep) noexcept {
    return fine_.Cut(static_cast<std::size_t>(keep.count() * rateHz_ / 1000));
}

void PlaybackRing::Write(std::int32_t offset, std::span<const std::int16_t> samples) {
    const std::size_t first = frames_.CheckedRange(offset, samples.size());
    for (std::size_t i = 0; i < samples.size() / 2; ++i)
        frames_.Store(first + i, Frame16{samples[2 * i], samples[2 * i + 1]});
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
