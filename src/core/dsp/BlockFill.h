#pragma once

#include <cstdint>
#include <span>

namespace sonavex {

// Adds the generator's signal to a block of output.
class BlockFill {
public:
    virtual ~BlockFill() = default;

    // Adds count samples to the content of both arrays. In the block path the first array becomes the second
    // sample of each output frame and the second array the first.
    virtual void FillGeneratorBlock(std::span<double> first, std::span<double> second,
                                    std::int32_t count) = 0;
};

}  // namespace sonavex
