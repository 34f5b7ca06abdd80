#pragma once

#include <cstddef>
#include <optional>

#include "core/analyzer/MeasureTone.h"

namespace sonavex {

// Rolling average of measurements of equally long records that overlap by 75 %: harmonics as complex numbers,
// noise by power. Starts over after a void measurement and after a change of frequency (more than 4 sigma and
// 1e-7) or level (more than 0.01 dB). Call Restart after a change of settings.
class ToneAverage {
public:
    // records: after this many the oldest lose their weight gradually. 0: all count alike.
    ToneAverage(const RecordPlan& plan, std::size_t records);

    // The average including this measurement; the measurement itself if it is void.
    const ToneMeasurement& Add(const ToneMeasurement& measurement);
    void Restart();

private:
    bool Continues(const ToneMeasurement& next) const;

    const RecordPlan& plan_;
    std::size_t records_;
    std::optional<ToneMeasurement> mean_;
};

}  // namespace sonavex
