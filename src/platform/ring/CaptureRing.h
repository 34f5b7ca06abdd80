#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include "core/ports/EventLoop.h"
#include "core/ports/SoundSystem.h"
#include "platform/ring/FineQueue.h"
#include "platform/ring/RingFrames.h"

namespace sonavex {

// The looping memory of a capture buffer. An audio thread pushes the samples that the device delivers.
// Each time a notification position has been filled, its signal is raised. Push and PushSilence are for
// one audio thread and take no lock and no memory; everything else is for the user-interface thread.
class CaptureRing {
public:
    // Error 5 unless `bytes` is a positive multiple of a frame. fineFrames: length of the queue of fine
    // frames.
    explicit CaptureRing(std::int32_t bytes, std::size_t fineFrames = 1)
        : frames_(bytes), fine_(fineFrames) {}

    struct Position {
        std::int32_t offset;  // bytes
        std::shared_ptr<Signal> signal;
    };
    // Only while stopped. Error 5 otherwise, and for an offset outside the ring.
    void SetPositions(std::vector<Position> positions);

    // Starts at position 0. Samples that are pushed while stopped are dropped.
    void Start() noexcept;
    // Waits for a push that is under way. No signal is raised afterwards.
    void Stop() noexcept;

    // Interleaved stereo, 2 x frames samples, of 16 bits or left-justified in 32.
    void Push(const std::int16_t* samples, std::size_t frames) noexcept;
    void Push(const std::int32_t* samples, std::size_t frames) noexcept;
    // Silence in place of frames that the device left out; they are counted as missing.
    void PushSilence(std::size_t frames) noexcept;

    // Rounds half to even to 16 bits, and saturates.
    void Read(std::int32_t offset, std::span<std::int16_t> samples) const;
    CaptureStatistics Statistics() const noexcept;
    // See CaptureBuffer.
    std::uint32_t TakeMovedBits() noexcept { return moved_.exchange(0, std::memory_order_relaxed); }

    // The frames of every push, for a reader that does not depend on notifications; see CaptureBuffer.
    void CaptureFine(bool on);
    FineRun TakeFine(std::span<std::int32_t> samples) noexcept;

private:
    struct NumberedFrame {
        FineFrame samples;
        std::uint64_t number;  // frames captured before it
    };

    // False when the ring is stopped and nothing was stored.
    template <class FrameAt>
    bool PushFrames(FrameAt frameAt, std::size_t frames, bool missing = false) noexcept;
    template <class FrameAt>
    void PutFine(FrameAt frameAt, std::size_t frames, std::uint64_t number) noexcept;
    void NoteMovedBits(const std::int32_t* samples, std::size_t frames) noexcept;
    void Notify(std::size_t frame) noexcept;

    RingFrames frames_;
    FineQueue<NumberedFrame> fine_;
    std::vector<Position> positions_;  // changed only while no push reads it
    std::atomic<bool> running_{false};
    std::atomic<bool> rewind_{false};  // set by Start: the next push begins at frame 0
    std::atomic<bool> pushing_{false};
    // Audio thread.
    std::size_t next_ = 0;
    FineFrame last_{};  // of the samples of 32 bits

    std::atomic<std::uint32_t> moved_{0};
    std::atomic<std::uint64_t> captured_{0};
    std::atomic<std::uint64_t> completed_{0};
    std::atomic<std::uint64_t> lost_{0};
    std::atomic<std::uint64_t> missing_{0};
    std::atomic<std::uint64_t> fineLost_{0};
};

}  // namespace sonavex
