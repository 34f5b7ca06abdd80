#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace sonavex {

// One block of a recorded sine: within it the frequency stands still.
struct SineBlock {
    double radiansPerSample = 0.0;
    double peak = 0.0;
    double firstPhase = 0.0;  // of its first sample, radians
    double residue = 0.0;     // largest difference between the samples and the sine
};

// A recording of a sine whose frequency may change from block to block, cut into its blocks.
class PhaseTrack {
public:
    // The recording begins anywhere in the silence before the sine; the first sample that is not 0 begins
    // the first block of 2048. What is left at the end is no block.
    explicit PhaseTrack(std::span<const std::int16_t> recording);

    const std::vector<SineBlock>& Blocks() const noexcept { return blocks_; }
    // The largest jump of the phase from the end of one block to the beginning of the next, radians.
    double LargestJump() const;
    // Of the samples, the largest difference from the block's sine.
    double LargestResidue() const;
    // Number of frequencies that differ from the block's before.
    std::size_t Changes() const;

private:
    std::vector<SineBlock> blocks_;
};

// The largest difference between neighbouring samples.
int LargestStep(std::span<const std::int16_t> samples);
// The largest magnitude.
int LargestMagnitude(std::span<const std::int16_t> samples);

}  // namespace sonavex
