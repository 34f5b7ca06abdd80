#pragma once

#include <atomic>
#include <cstdint>
#include <span>

#include "core/ports/SoundSystem.h"
#include "platform/ring/RingFrames.h"

namespace sonavex {

// The playback buffer of every adapter. An audio thread pulls what the device wants; the ring loops,
// applies the volume and tells where playing stands. Pull is for one audio thread, everything else
// for the user-interface thread; Pull neither locks, allocates nor logs.
class PlaybackRing {
public:
    // rateHz sets the length of the volume ramp.
    PlaybackRing(std::int32_t bytes, std::int32_t rateHz);

    // Fills `samples` (2 x frames) with the next frames, or with silence while stopped. deviceDelay:
    // frames that the device holds before these and has not yet made audible.
    void Pull(std::int16_t* samples, std::size_t frames, std::size_t deviceDelay) noexcept;

    void Write(std::int32_t offset, std::span<const std::int16_t> samples);

    // Both 0 while stopped. The write cursor is what has been handed to the device; the play cursor
    // lies behind it by what the device still holds of this ring, so never before the position that
    // was set last.
    BufferCursors Cursors() const noexcept;
    void SetPosition(std::int32_t offset);
    void Play() noexcept { playing_.store(true); }
    void Stop() noexcept { playing_.store(false); }
    bool Playing() const noexcept { return playing_.load(); }

    // Hundredths of a decibel, -10000 (silence) to 0 (samples unchanged, bit for bit); error 5
    // outside. A change while playing is a ramp of 5 ms; a change while stopped holds from the first
    // frame.
    void SetVolume(std::int32_t hundredthsDb);

private:
    // Position and frames handed over since it was set, in one word so that the two never disagree.
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
    bool audible_ = false;  // audio thread: the last Pull played
    // Audio thread.
    double gain_ = 1.0;
    double rampTarget_ = 1.0;
    double gainStep_ = 0.0;  // per frame, on the way to the ramp's target
    double rampShare_;       // of a change, per frame
};

}  // namespace sonavex
