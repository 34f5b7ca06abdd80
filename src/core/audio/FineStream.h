#pragma once

#include <array>
#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <span>

#include "core/audio/StreamEngine.h"
#include "core/ports/EventLoop.h"
#include "core/support/BlockSize.h"

namespace sonavex {

// Supplies what is played in place of the block meter's output.
class FineSource {
public:
    virtual ~FineSource() = default;
    // Fills the block with the next samples: interleaved stereo, left-justified in 32 bits.
    virtual void FillFine(std::span<std::int32_t> block) = 0;
    // Goes back by this many frames, which were filled and will not be played.
    virtual void Rewind(std::uint64_t /*frames*/) {}
    // Bits of the dithered samples; 0 without dither.
    virtual int DitherBits() const { return 0; }
};

// One step of a left-justified 32-bit sample; full scale is 1.
inline constexpr double kFineStep = 0x1p-31;

// Consecutive captured frames.
struct FineFrames {
    std::span<const std::int32_t> samples;  // interleaved stereo, left-justified in 32 bits
    std::uint64_t firstFrame = 0;           // frames captured before it since the device was opened
    std::uint64_t lostBefore = 0;           // frames lost since the block before
    // The first block after a start of the capture or after SetSink. It does not continue the block before.
    bool restarted = false;
};

// The fine samples of the engine's devices: drains captured frames and keeps the output supplied, by
// timers, so that neither lost notifications nor messages interrupt it. The engine's block path does not
// notice it. StreamEngine reports bits, capture counts and missing output.
class FineStream {
public:
    using Sink = std::function<void(const FineFrames& block)>;

    // Both must outlive this object.
    FineStream(EventLoop& loop, StreamEngine& engine);
    ~FineStream();
    FineStream(const FineStream&) = delete;
    FineStream& operator=(const FineStream&) = delete;

    // Plays this source while the engine plays; null plays the block meter's output again. The source
    // bypasses the 16-bit limiter, not the volume. It must stay valid until replaced. A new source follows
    // the former one without a gap. A source that throws is removed, and the error goes to the event loop.
    void SetSource(FineSource* source);
    const FineSource* Source() const noexcept { return source_; }
    // Call after the source's samples have changed. The change is heard within 50 ms plus the delay of the
    // device: frames that were filled and would be played later are dropped, and the source is rewound.
    void Refill();
    // Frames that the source has filled and the device has not taken.
    std::uint64_t FramesAhead() const;

    // Captured frames go there from now on; an empty sink ends that. A sink may call any function of this
    // object and close devices. A sink that throws is removed, and the error goes to the event loop.
    void SetSink(Sink sink);

private:
    void Repeat(EventLoop::TimerId& timer, bool needed, std::chrono::milliseconds interval,
                void (FineStream::*step)());
    void Drain();
    void Deliver(std::span<const std::int32_t> samples, std::uint64_t firstFrame);
    void Supply();
    void Fill();
    std::size_t Unqueued() const noexcept { return (supplied_.size() - queued_) / 2; }

    EventLoop& loop_;
    StreamEngine& engine_;
    FineSource* source_ = nullptr;
    std::shared_ptr<const Sink> sink_;  // null without a sink
    EventLoop::TimerId supplyTimer_ = 0;
    EventLoop::TimerId drainTimer_ = 0;
    std::array<std::int32_t, kBlockSamples> captured_{};
    bool draining_ = false;        // captured_ is in use by the sink
    bool restarted_ = false;       // no block was delivered since the restart
    std::uint64_t starts_ = 0;     // of the capture, at the last block
    std::uint64_t nextFrame_ = 0;  // after the last block
    std::array<std::int32_t, kBlockSamples> supplied_{};
    bool supplying_ = false;              // supplied_ is in use by the source
    bool replaced_ = false;               // SetSource was called since supplied_ was requested
    std::size_t queued_ = kBlockSamples;  // samples of supplied_ that the device's queue has taken
};

}  // namespace sonavex
