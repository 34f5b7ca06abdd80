#pragma once

#include <atomic>
#include <chrono>
#include <cstdint>
#include <span>

#include "core/ports/SoundSystem.h"
#include "platform/ring/FineQueue.h"
#include "platform/ring/RingFrames.h"

namespace sonavex {

// The looping memory of a playback buffer. An audio thread pulls the samples that the device needs. The ring
// applies the volume, rounds to the device's bits and keeps the cursors. Pull is for one audio thread and
// takes no lock and no memory; everything else is for the user-interface thread.
class PlaybackRing {
public:
    // Error 5 unless `bytes` is a positive multiple of a frame. rateHz sets the lengths of the volume ramp
    // and of the queue of fine frames.
    PlaybackRing(std::int32_t bytes, std::int32_t rateHz);

    // Fills `samples` (2 x frames) with the next frames, or with silence while stopped. deviceDelay is the
    // number of frames that the device took earlier and has not made audible yet. Samples of 32 bits are
    // left-justified. After the volume, each sample is rounded half to even, once.
    void Pull(std::int16_t* samples, std::size_t frames, std::size_t deviceDelay) noexcept;
    void Pull(std::int32_t* samples, std::size_t frames, std::size_t deviceDelay) noexcept;

    // The bits of the device, 8 to 32; at first 16. Any thread.
    void SetBits(int bits) noexcept { bits_.store(bits, std::memory_order_relaxed); }

    void Write(std::int32_t offset, std::span<const std::int16_t> samples);

    // Frames that are played in place of the ring's; see PlaybackBuffer.
    void PlayFine(bool on);
    std::size_t QueueFine(std::span<const std::int32_t> samples) noexcept;
    std::size_t CutFine(std::chrono::milliseconds keep) noexcept;
    std::size_t FineFramesWaiting() const noexcept { return fine_.Waiting(); }
    std::uint64_t FineFramesMissing() const noexcept { return fineMissing_.load(std::memory_order_relaxed); }

    // Both are 0 while stopped. Write: next frame that the device takes. Play: write minus the frames of this
    // ring still in the device, never before the position last set.
    BufferCursors Cursors() const noexcept;
    void SetPosition(std::int32_t offset);
    void Play() noexcept { playing_.store(true); }
    void Stop() noexcept { playing_.store(false); }
    bool Playing() const noexcept { return playing_.load(); }

    // Hundredths of a decibel, -10000 (silence) to 0 (samples unchanged, bit for bit); error 5 outside. A
    // change while playing is a ramp of 5 ms. A change while stopped applies from the first frame.
    void SetVolume(std::int32_t hundredthsDb);

private:
    // The position and the number of frames taken since it was set. Both are in one atomic word, so that they
    // always match.
    struct Place {
        std::uint32_t frame;
        std::uint32_t handedOver;
    };
    Place Claim(std::size_t frames) noexcept;
    template <class Sample>
    void PullAs(Sample* samples, std::size_t frames, std::size_t deviceDelay) noexcept;
    void Copy16(std::size_t at, std::int16_t* samples, std::size_t frames) const noexcept;
    void Fetch(std::size_t at, std::span<FineFrame> frames) noexcept;
    std::size_t TakeFine(std::span<FineFrame> frames) noexcept;
    void FollowTarget(double target) noexcept;
    template <class Sample>
    void Amplify(std::span<const FineFrame> frames, double target, Sample* samples, int bits) noexcept;
    std::size_t After(std::size_t frame) const noexcept {
        return frame + 1 == frames_.Size() ? 0 : frame + 1;
    }

    RingFrames frames_;
    std::int32_t rateHz_;
    FineQueue<FineFrame> fine_;
    std::atomic<std::uint64_t> fineMissing_{0};
    std::atomic<Place> place_{Place{0, 0}};
    std::atomic<std::uint32_t> delay_{0};  // frames in the device after the last Pull
    std::atomic<bool> playing_{false};
    std::atomic<double> targetGain_{1.0};
    std::atomic<int> bits_{16};
    // Audio thread.
    bool audible_ = false;  // the last Pull was not silence because of Stop
    double gain_ = 1.0;
    double rampTarget_ = 1.0;
    double gainStep_ = 0.0;  // per frame, until gain_ has reached rampTarget_
    double rampShare_;       // share of a gain change that one frame covers
};

}  // namespace sonavex
