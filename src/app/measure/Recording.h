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

    // Throws MeasureError for a file that cannot be read, is empty, has a rate outside these limits, or is a
    // WAV, AIFF or CAF file that is shorter than its header says. Lengths of 2 GB in a WAV header mean that
    // the length was unknown when it was written.
    explicit Recording(const std::string& path);

    std::int32_t RateHz() const noexcept { return info_.samplerate; }
    // Bits of a sample: those of integers, stored as they are or without loss; 24 for floats of 32 bits and
    // 53 for those of 64; 16 for formats with loss, except that A-law and µ-law have 8.
    int Bits() const noexcept;
    bool FloatingPoint() const noexcept;
    int Channels() const noexcept { return info_.channels; }

    // Fills `stereo` (interleaved) with the next frames and returns their number, which is smaller at the end
    // only. One channel feeds both; of many the first two count. Floating-point files may deliver infinities
    // and NaN. Throws MeasureError when the file is damaged or shorter than its header says.
    std::size_t Read(std::span<double> stereo);

private:
    void RequireAllFrames(std::int64_t present, std::int64_t declared) const;
    void RequireEnd() const;
    // The length that the header states, or the one found where it states none.
    std::int64_t DeclaredFrames() const;

    std::string name_;
    SF_INFO info_{};
    std::unique_ptr<SNDFILE, int (*)(SNDFILE*)> file_;
    std::vector<double> samples_;
    std::int64_t readFrames_ = 0;
};

// libsndfile's message about its last failure, without its prefix.
std::string ReasonOf(SNDFILE* file);

}  // namespace sonavex::measure
