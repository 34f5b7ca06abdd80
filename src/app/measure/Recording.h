#pragma once

#include <sndfile.h>

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

namespace sonavex::measure {

// A recording in any format of libsndfile, read as doubles and never by way of 16 bits. Full scale is 1.
class Recording {
public:
    static constexpr std::int32_t kLowestRateHz = 4000;
    static constexpr std::int32_t kHighestRateHz = 192000;

    // Throws MeasureError for a file that cannot be read, is empty, or has a rate outside these limits.
    explicit Recording(const std::string& path);

    std::int32_t RateHz() const noexcept { return info_.samplerate; }
    // Bits of a sample: those of integers; 24 for floats of 32 bits and 53 for those of 64.
    int Bits() const noexcept;

    // Fills `stereo` (interleaved) with the next frames and returns their number, which is smaller at the end
    // only. One channel feeds both; of many the first two count. What is no number becomes 0. Throws
    // MeasureError when the file is damaged.
    std::size_t Read(std::span<double> stereo);

private:
    SF_INFO info_{};
    std::unique_ptr<SNDFILE, int (*)(SNDFILE*)> file_;
    std::vector<double> samples_;
};

// libsndfile's message about its last failure, without its prefix.
std::string ReasonOf(SNDFILE* file);

}  // namespace sonavex::measure
