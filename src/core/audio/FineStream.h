#pragma once

#include <array>
#include <cstdint>
#include <functional>
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
};

// The fine samples of the engine's devices: drains captured frames and keeps the output supplied. A timer
// runs it, so that neither lost notifications nor messages interrupt it. The engine's block path does not
// notice it.
class FineStream {
public:
    // Interleaved stereo, left-justified in 32 bits, in the order captured. StreamEngine::CaptureCounts
    // reports how many frames were lost or missing.
    using Sink = std::function<void(std::span<const std::int32_t> samples)>;

    // Both must outlive this object.
    FineStream(EventLoop& loop, StreamEngine& engine);
    ~FineStream();
    FineStream(const FineStream&) = delete;
    FineStream& operator=(const FineStream&) = delete;

    // Plays this source while the engine plays; null plays the block meter's output again. The source
    // bypasses the 16-bit limiter, not the volume. It must stay valid until replaced.
    void SetSource(FineSource* source);
    // Captured frames go there from now on; an empty sink ends that.
    void SetSink(Sink sink);

private:
    void RunIfNeeded();
    void Move();
    void Drain();
    void Supply();

    EventLoop& loop_;
    StreamEngine& engine_;
    FineSource* source_ = nullptr;
    Sink sink_;
    EventLoop::TimerId timer_ = 0;
    std::array<std::int32_t, kBlockSamples> captured_{};
    std::array<std::int32_t, kBlockSamples> supplied_{};
    std::size_t queued_ = kBlockSamples;  // samples of supplied_ that the device's queue has taken
};

}  // namespace sonavex
