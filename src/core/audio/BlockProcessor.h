#pragma once

#include <cstdint>
#include <span>

namespace sonavex {

// Processes captured blocks for the stream engine.
class BlockProcessor {
public:
    virtual ~BlockProcessor() = default;

    // Call when the sampling rate or the band has changed. Edges in Hz.
    virtual void SetUpAnalysis(std::int32_t lowHz, std::int32_t highHz) = 0;

    // captured: 4096 interleaved samples. playback: receives the next 4096 samples to play.
    virtual void ProcessCapturedBlock(std::span<const std::int16_t> captured,
                                      std::span<std::int16_t> playback) = 0;

    // The next block does not continue the previous one: blocks were lost, or playback is starting.
    virtual void StreamDisturbed() = 0;
};

}  // namespace sonavex
