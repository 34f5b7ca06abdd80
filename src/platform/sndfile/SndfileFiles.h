#pragma once

#include "core/ports/MeasurementFiles.h"

namespace sonavex {

// Recordings in the formats of libsndfile, and files on disk.
class SndfileFiles : public MeasurementFiles {
public:
    std::unique_ptr<OpenRecording> Open(const std::string& path) const override;
    void WriteText(const std::string& path, const std::string& text) const override;
    void WriteFloatWav(const std::string& path, std::span<const double> samples, std::int32_t rateHz,
                       const std::string& comment) const override;
};

}  // namespace sonavex
