#include "platform/alsa/AlsaBuffers.h"

#include <algorithm>
#include <cerrno>
#include <utility>

#include "platform/ring/StreamTiming.h"

namespace sonavex {
namespace {

using namespace std::chrono_literals;

constexpr std::size_t kScratchFrames = 1024;
// The longest overrun that is replaced by silence of its length.
constexpr auto kLongestGap = 2s;

constexpr AlsaPcm::Shape PlaybackShape(std::uint32_t rateHz) noexcept {
    const std::uint32_t frames = stream_timing::PlaybackFrames(rateHz);
    return {frames, frames / 4};
}

// A large buffer outlasts long interruptions and adds no delay, because it is emptied at every period.
constexpr AlsaPcm::Shape CaptureShape(std::uint32_t rateHz) noexcept {
    return {std::max(stream_timing::FramesOf(rateHz, 500), 64U), stream_timing::CaptureFrames(rateHz)};
}

std::size_t TargetFrames(const AlsaPcm& pcm) {
    const std::uint32_t wanted =
        std::max(stream_timing::PlaybackFrames(pcm.RateHz()), 2 * pcm.PeriodFrames());
    return std::min(wanted, pcm.BufferFrames());
}

}  // namespace

AlsaPlaybackBuffer::AlsaPlaybackBuffer(EventLoop& loop, const AlsaDevice& device,
                                       const BufferDescription& description, AlsaStream::LostHandler onLost)
    : RingPlaybackBuffer(description),
      pcm_(device, SND_PCM_STREAM_PLAYBACK, description.format.samplesPerSecond,
           PlaybackShape(description.format.samplesPerSecond)),
      targetFrames_(TargetFrames(pcm_)),
      scratch_(pcm_.Format(), kScratchFrames),
      stream_(loop, pcm_, device.info.description, std::move(onLost)) {
    // Wake up when the fill is one period below its target.
    const std::uint32_t beyondTarget = pcm_.BufferFrames() - static_cast<std::uint32_t>(targetFrames_);
    pcm_.SetWakeUp(std::min(beyondTarget + pcm_.PeriodFrames(), pcm_.BufferFrames()));
    stream_.Run(*this);
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
        PullScratch();
    }
    const snd_pcm_sframes_t written = snd_pcm_writei(
        pcm_.Handle(), scratch_.At(scratchFrames_ - pendingFrames_), std::min(pendingFrames_, frames));
    if (written > 0) pendingFrames_ -= static_cast<std::size_t>(written);
    return written;
}

void AlsaPlaybackBuffer::PullScratch() noexcept {
    if (scratch_.Narrow()) return Pull(scratch_.Samples16(), scratchFrames_, DelayFrames());
    Pull(scratch_.Samples32(), scratchFrames_, DelayFrames());
    scratch_.ToCard(scratchFrames_);
}

std::size_t AlsaPlaybackBuffer::DelayFrames() const noexcept {
    snd_pcm_sframes_t delay = 0;
    if (snd_pcm_delay(pcm_.Handle(), &delay) < 0 || delay < 0) return 0;
    return static_cast<std::size_t>(delay);
}

AlsaCaptureBuffer::AlsaCaptureBuffer(EventLoop& loop, const NotificationHub& hub, const AlsaDevice& device,
                                     const BufferDescription& description, AlsaStream::LostHandler onLost)
    : RingCaptureBuffer(hub, description),
      pcm_(device, SND_PCM_STREAM_CAPTURE, description.format.samplesPerSecond,
           CaptureShape(description.format.samplesPerSecond)),
      scratch_(pcm_.Format(), kScratchFrames),
      stream_(loop, pcm_, device.info.description, std::move(onLost)) {
    pcm_.SetWakeUp(pcm_.PeriodFrames());
    stream_.Run(*this);
}

int AlsaCaptureBuffer::Start() noexcept {
    const int error = snd_pcm_start(pcm_.Handle());
    if (error < 0) return error;
    // The length is an estimate, so the clock must not count it.
    if (started_) Ring().PushSilence(LostFrames());
    started_ = true;
    readUntil_ = Clock::now();
    return 0;
}

// At least one, so that every overrun is counted.
std::size_t AlsaCaptureBuffer::LostFrames() const noexcept {
    const std::chrono::duration<double> gap =
        std::min<Clock::duration>(Clock::now() - readUntil_, kLongestGap);
    return std::max<std::size_t>(static_cast<std::size_t>(gap.count() * pcm_.RateHz()), 1);
}

void AlsaCaptureBuffer::PushScratch(std::size_t frames) noexcept {
    if (scratch_.Narrow()) return Push(scratch_.Samples16(), frames);
    scratch_.FromCard(frames);
    Push(scratch_.Samples32(), frames);
}

snd_pcm_sframes_t AlsaCaptureBuffer::Move() noexcept {
    const snd_pcm_sframes_t waiting = snd_pcm_avail(pcm_.Handle());
    if (waiting < 0) return waiting;
    snd_pcm_sframes_t moved = 0;
    while (moved < waiting) {
        const auto frames = std::min<snd_pcm_sframes_t>(waiting - moved, kScratchFrames);
        const snd_pcm_sframes_t read =
            snd_pcm_readi(pcm_.Handle(), scratch_.At(0), static_cast<snd_pcm_uframes_t>(frames));
        if (read < 0) return read == -EAGAIN && moved > 0 ? moved : read;
        if (read == 0) break;
        PushScratch(static_cast<std::size_t>(read));
        moved += read;
    }
    if (moved > 0) readUntil_ = Clock::now();
    return moved;
}

}  // namespace sonavex
