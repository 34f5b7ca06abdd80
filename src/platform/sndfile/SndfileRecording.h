#pragma once

#include <sndfile.h>

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "core/ports/MeasurementFiles.h"

namespace sonavex {

// A recording in any format of libsndfile.
class SndfileRecording : public OpenRecording {
public:
    static constexpr std::int32_t kLowestRateHz = 4000;
    static constexpr std::int32_t kHighestRateHz = 192000;

    // Throws FileError as MeasurementFiles::Open. Lengths of about 2 or 4 GB in a WAV header mean that the
    // length was unknown when it was written.
    explicit SndfileRecording(const std::string& path);

    std::int32_t RateHz() const noexcept override { return info_.samplerate; }
    int Bits() const noexcept override;
    bool FloatingPoint() const noexcept override;
    int Channels() const noexcept override { return info_.channels; }
    std::optional<std::int64_t> Frames() const noexcept override;
    std::size_t Read(std::span<double> stereo) override;
    void MoveTo(std::int64_t frame) override;

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

}  // namespace sonavex
