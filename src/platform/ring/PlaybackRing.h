#pragma once

#include <atomic>
#include <cstdint>
#include <span>

#include "core/ports/SoundSystem.h"
#include "platform/ring/RingFrames.h"

namespace sonavex {

// The looping memory of a playback buffer. An audio thread pulls the samples that the device needs. The ring
// applies the volume and keeps the cursors. Pull is for one audio thread and takes no lock and no memory;
// everything else is for the user-interface thread.
class PlaybackRing {
public:
    // Error 5 unless `bytes` is a positive multiple of a frame. rateHz sets the length of the volume ramp.
    PlaybackRing(std::int32_t bytes, std::int32_t rateHz);

    // Fills `samples` (2 x frames) with the next frames, or with silence while stopped. deviceDelay is the
    // number of frames that the device took earlier and has not made audible yet.
    void Pull(std::int16_t* samples, std::size_t frames, std::size_t deviceDelay) noexcept;

    void Write(std::int32_t offset, std::span<const std::int16_t> samples);

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
    void Amplify(std::int16_t* samples, std::size_t frames) noexcept;

    RingFrames frames_;
    std::atomic<Place> place_{Place{0, 0}};
    std::atomic<std::uint32_t> delay_{0};  // frames in the device after the last Pull
    std::atomic<bool> playing_{false};
    std::atomic<double> targetGain_{1.0};
    // Audio thread.
    bool audible_ = false;  // the last Pull was not silence because of Stop
    double gain_ = 1.0;
    double rampTarget_ = 1.0;
    double gainStep_ = 0.0;  // per frame, until gain_ has reached rampTarget_
    double rampShare_;       // share of a gain change that one frame covers
};

}  // namespace sonavex
