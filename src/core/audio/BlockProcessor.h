#pragma once

#include <cstdint>
#include <span>

namespace sonavex {

// What the stream engine has done with every captured block. User-interface thread only.
class BlockProcessor {
public:
    virtual ~BlockProcessor() = default;

    // The sampling rate or the band changed. Edges in Hz.
    virtual void SetUpAnalysis(std::int32_t lowHz, std::int32_t highHz) = 0;

    // captured: 4096 interleaved samples. playback: receives the next 4096 samples to play.
    virtual void ProcessCapturedBlock(std::span<const std::int16_t> captured,
                                      std::span<std::int16_t> playback) = 0;

    // The next block does not simply continue the one before: blocks were lost, or playback is being
    // started.
    virtual void StreamDisturbed() = 0;
};

}  // namespace sonavex
