#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include "core/ports/EventLoop.h"
#include "core/ports/SoundSystem.h"
#include "platform/ring/RingFrames.h"

namespace sonavex {

// The capture buffer of every adapter. An audio thread pushes what the device delivers; each time a
// notification position has been filled its bell is rung. Push is for one audio thread, everything
// else for the user-interface thread; Push neither locks, allocates nor logs.
class CaptureRing {
public:
    explicit CaptureRing(std::int32_t bytes) : frames_(bytes) {}

    // Where to ring. Only while stopped; error 5 otherwise or for an offset outside the ring.
    struct Position {
        std::int32_t offset;  // bytes
        std::shared_ptr<Signal> bell;
    };
    void SetPositions(std::vector<Position> positions);

    // Starts at position 0. What is pushed while stopped is dropped.
    void Start() noexcept;
    void Stop() noexcept;

    // Interleaved stereo, 2 x frames samples.
    void Push(const std::int16_t* samples, std::size_t frames) noexcept;
    // The same with silence, for a gap in what the device delivered; counted as missing.
    void PushSilence(std::size_t frames) noexcept;

    void Read(std::int32_t offset, std::span<std::int16_t> samples) const;
    CaptureStatistics Statistics() const noexcept;

private:
    // False when the ring is stopped and nothing was stored.
    template <class Source>
    bool PushFrom(Source source, std::size_t frames) noexcept;
    void Notify(std::size_t frame) noexcept;

    RingFrames frames_;
    std::vector<Position> positions_;  // changed only while no Push can look at it
    // Raised by Start, taken by the next Push: from there on that thread owns `next_`.
    std::atomic<bool> running_{false};
    std::atomic<bool> rewind_{false};
    std::atomic<bool> pushing_{false};
    std::size_t next_ = 0;
    std::atomic<std::uint64_t> captured_{0};
    std::atomic<std::uint64_t> completed_{0};
    std::atomic<std::uint64_t> lost_{0};
    std::atomic<std::uint64_t> missing_{0};
};

}  // namespace sonavex
