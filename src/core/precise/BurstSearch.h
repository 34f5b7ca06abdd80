#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

#include "core/audio/FineStream.h"

namespace sonavex {

// Searches captured frames for a path burst while they arrive.
class BurstSearch {
public:
    // mostFrames: after as many frames the search ends without a result.
    BurstSearch(double rateHz, std::size_t channel, std::size_t mostFrames);

    // Lost frames end the search.
    void Add(const FineFrames& block);

    // Number of the captured frame at which the burst begins; empty if it was not found.
    std::optional<std::uint64_t> Found() const noexcept { return found_; }
    bool Ended() const noexcept { return ended_ || found_; }

private:
    double rateHz_;
    std::size_t channel_;
    std::size_t mostFrames_;
    std::size_t searched_ = 0;
    std::uint64_t firstFrame_ = 0;
    std::vector<double> samples_;
    std::optional<std::uint64_t> found_;
    bool ended_ = false;
};

}  // namespace sonavex
