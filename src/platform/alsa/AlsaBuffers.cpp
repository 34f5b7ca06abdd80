#include "platform/alsa/AlsaBuffers.h"

#include <algorithm>
#include <cerrno>
#include <utility>

#include "core/support/BlockSize.h"

namespace sonavex {
namespace {

using namespace std::chrono_literals;

// What the engine's distances between the cursors are made for.
constexpr std::size_t kMostDelayFrames = 3 * std::size_t{kBlockFrames};
constexpr std::size_t kScratchFrames = 1024;
// Of the gap that an overrun leaves; a longer one says no more.
constexpr auto kLongestGap = 2s;

constexpr std::uint32_t FramesOf(std::uint32_t rateHz, std::uint32_t milliseconds) noexcept {
    return static_cast<std::uint32_t>(std::uint64_t{rateHz} * milliseconds / 1000);
}

// Enough to outlast a busy moment of the machine, short enough that the delay stays far below three
// blocks.
constexpr std::uint32_t PlaybackFrames(std::uint32_t rateHz) noexcept {
    return std::max(std::min(FramesOf(rateHz, 80), std::uint32_t{kBlockFrames * 3 / 2}), 16U);
}

constexpr AlsaPcm::Shape PlaybackShape(std::uint32_t rateHz) noexcept {
    return {PlaybackFrames(rateHz), PlaybackFrames(rateHz) / 4};
}

// Periods that are small against a block, so that its end is noticed soon after it was captured, in a
// buffer that outlasts long hold-ups: what waits in it costs no time.
constexpr AlsaPcm::Shape CaptureShape(std::uint32_t rateHz) noexcept {
    return {std::max(FramesOf(rateHz, 500), 64U),
            std::clamp(FramesOf(rateHz, 12), 16U, std::uint32_t{kBlockFrames / 4})};
}

std::size_t TargetFrames(const AlsaPcm& pcm) {
    const std::uint32_t wanted = std::max(PlaybackFrames(pcm.RateHz()), 2 * pcm.PeriodFrames());
    return std::min(wanted, pcm.BufferFrames());
}

}  // namespace

AlsaPlaybackBuffer::AlsaPlaybackBuffer(EventLoop& loop, const AlsaDevice& device,
                                       const BufferDescription& description, AlsaStream::LostHandler onLost)
    : ring_(description.bytes, static_cast<std::int32_t>(description.format.samplesPerSecond)),
      clock_(description.format.samplesPerSecond),
      pcm_(device, SND_PCM_STREAM_PLAYBACK, description.format.samplesPerSecond,
           PlaybackShape(description.format.samplesPerSecond)),
      targetFrames_(TargetFrames(pcm_)),
      scratch_(2 * kScratchFrames),
      stream_(loop, device.info.description, std::move(onLost)) {
    // Once a period is missing from the fill that is kept.
    const std::uint32_t beyondTarget = pcm_.BufferFrames() - static_cast<std::uint32_t>(targetFrames_);
    pcm_.SetWakeUp(std::min(beyondTarget + pcm_.PeriodFrames(), pcm_.BufferFrames()));
    stream_.Run(pcm_, *this);
}

int AlsaPlaybackBuffer::Start() noexcept {
    pendingFrames_ = 0;
    const snd_pcm_sframes_t filled = Move();
    return filled < 0 ? static_cast<int>(filled) : snd_pcm_start(pcm_.Handle());
}

snd_pcm_sframes_t AlsaPlaybackBuffer::Move() noexcept {
    const snd_pcm_sframes_t room = snd_pcm_avail(pcm_.Handle());
    if (room < 0) return room;
    const std::size_t fill = pcm_.BufferFrames() - std::min<std::size_t>(room, pcm_.BufferFrames());
    std::size_t left = targetFrames_ - std::min(fill, targetFrames_);
    snd_pcm_sframes_t moved = 0;
    while (left > 0) {
        const snd_pcm_sframes_t written = Write(left);
        if (written < 0) return written == -EAGAIN && moved > 0 ? moved : written;
        if (written == 0) break;
        moved += written;
        left -= static_cast<std::size_t>(written);
    }
    return moved;
}

snd_pcm_sframes_t AlsaPlaybackBuffer::Write(std::size_t frames) noexcept {
    if (pendingFrames_ == 0) {
        scratchFrames_ = std::min(frames, kScratchFrames);
        pendingFrames_ = scratchFrames_;
        const std::size_t delayFrames = DelayFrames(scratchFrames_);
        ring_.Pull(scratch_.data(), scratchFrames_, delayFrames);
        clock_.Moved(scratchFrames_, delayFrames + scratchFrames_);
    }
    const std::int16_t* const samples = scratch_.data() + 2 * (scratchFrames_ - pendingFrames_);
    const snd_pcm_sframes_t written =
        snd_pcm_writei(pcm_.Handle(), samples, std::min(pendingFrames_, frames));
    if (written > 0) pendingFrames_ -= static_cast<std::size_t>(written);
    return written;
}

std::size_t AlsaPlaybackBuffer::DelayFrames(std::size_t writing) const noexcept {
    snd_pcm_sframes_t delay = 0;
    if (snd_pcm_delay(pcm_.Handle(), &delay) < 0 || delay < 0) return 0;
    return std::min(static_cast<std::size_t>(delay), kMostDelayFrames - std::min(writing, kMostDelayFrames));
}

AlsaCaptureBuffer::AlsaCaptureBuffer(EventLoop& loop, const NotificationHub& hub, const AlsaDevice& device,
                                     const BufferDescription& description, AlsaStream::LostHandler onLost)
    : hub_(hub),
      ring_(description.bytes),
      clock_(description.format.samplesPerSecond),
      pcm_(device, SND_PCM_STREAM_CAPTURE, description.format.samplesPerSecond,
           CaptureShape(description.format.samplesPerSecond)),
      scratch_(2 * kScratchFrames),
      stream_(loop, device.info.description, std::move(onLost)) {
    pcm_.SetWakeUp(pcm_.PeriodFrames());
    stream_.Run(pcm_, *this);
}

int AlsaCaptureBuffer::Start() noexcept {
    const int error = snd_pcm_start(pcm_.Handle());
    if (error < 0) return error;
    if (started_) ring_.PushSilence(LostFrames());  // of unknown length: no matter of the clock
    started_ = true;
    readUntil_ = Clock::now();
    return 0;
}

// At least one, so that every overrun shows.
std::size_t AlsaCaptureBuffer::LostFrames() const noexcept {
    const std::chrono::duration<double> gap =
        std::min<Clock::duration>(Clock::now() - readUntil_, kLongestGap);
    return std::max<std::size_t>(static_cast<std::size_t>(gap.count() * pcm_.RateHz()), 1);
}

snd_pcm_sframes_t AlsaCaptureBuffer::Move() noexcept {
    const snd_pcm_sframes_t waiting = snd_pcm_avail(pcm_.Handle());
    if (waiting < 0) return waiting;
    snd_pcm_sframes_t moved = 0;
    while (moved < waiting) {
        const auto frames = std::min<snd_pcm_sframes_t>(waiting - moved, kScratchFrames);
        const snd_pcm_sframes_t read =
            snd_pcm_readi(pcm_.Handle(), scratch_.data(), static_cast<snd_pcm_uframes_t>(frames));
        if (read < 0) return read == -EAGAIN && moved > 0 ? moved : read;
        if (read == 0) break;
        ring_.Push(scratch_.data(), static_cast<std::size_t>(read));
        clock_.Moved(static_cast<std::size_t>(read), 0);
        moved += read;
    }
    if (moved > 0) readUntil_ = Clock::now();
    return moved;
}

void AlsaCaptureBuffer::SetNotificationPositions(std::span<const PositionNotification> positions) {
    std::vector<CaptureRing::Position> ringPositions;
    for (const PositionNotification& position : positions)
        ringPositions.push_back({position.offset, hub_.SignalOf(position.event)});
    Ring().SetPositions(std::move(ringPositions));
}

}  // namespace sonavex
