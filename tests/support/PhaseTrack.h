#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace sonavex {

// One block of a recorded sine with constant frequency.
struct SineBlock {
    double radiansPerSample = 0.0;
    double peak = 0.0;
    double firstPhase = 0.0;  // phase of the first sample, radians
    double residue = 0.0;     // largest difference between the samples and the sine
};

// A recording of a sine whose frequency can change between blocks, divided into blocks.
class PhaseTrack {
public:
    // The recording starts in the silence before the sine. The first nonzero sample starts the first block of
    // 2048. An incomplete last block is ignored.
    explicit PhaseTrack(std::span<const std::int16_t> recording);

    const std::vector<SineBlock>& Blocks() const noexcept { return blocks_; }
    // Largest phase jump between consecutive blocks, radians.
    double LargestJump() const;
    // Largest difference between the samples and the fitted sines.
    double LargestResidue() const;
    // Number of blocks with another frequency than the block before.
    std::size_t Changes() const;

private:
    std::vector<SineBlock> blocks_;
};

// Largest difference between neighbouring samples.
int LargestStep(std::span<const std::int16_t> samples);
// Largest magnitude of a sample.
int LargestMagnitude(std::span<const std::int16_t> samples);

}  // namespace sonavex
