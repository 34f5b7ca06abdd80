#pragma once

#include <cstddef>
#include <deque>
#include <optional>
#include <span>
#include <vector>

#include "core/analyzer/MeasureTone.h"

namespace sonavex {

// Rolling average of measurements of records that overlap by 75 %: harmonics as complex numbers, noise by
// power. Starts over after a void measurement and after a change of frequency (more than 4 sigma of the
// change and 1e-7) or level (more than 0.01 dB).
class ToneAverage {
public:
    // records: how many of the newest records count. 0: all since the start; memory then does not grow with
    // them. The plan must outlive the average.
    ToneAverage(const RecordPlan& plan, std::size_t records);

    // The average including this measurement; a void measurement is returned as it is. shift: samples from
    // the start of the record before to the start of this one; 0: a quarter of a record.
    const ToneMeasurement& Add(ToneMeasurement next, std::size_t shift = 0);
    // What Add returned last.
    const ToneMeasurement& Mean() const { return mean_.value(); }

    // After a change of settings.
    void Restart();

private:
    // A record whose spectrum is kept in half the memory, scaled into the range of a float.
    struct Kept {
        ToneMeasurement measurement;
        std::vector<float> scaledPower;
    };

    bool Continues(const ToneMeasurement& next) const;
    void Begin(ToneMeasurement first);
    void AddToAll(const ToneMeasurement& next, std::size_t shift);
    void AddToNewest(ToneMeasurement next, std::size_t shift);
    void Keep(ToneMeasurement next);
    void MeanOfKept();
    void CountRecords(std::size_t lastShift);

    std::size_t records_;
    const RecordOverlap& overlap_;
    std::deque<Kept> kept_;
    std::optional<ToneMeasurement> mean_;
};

// The average of two valid records that do not overlap, whatever their level and frequency.
ToneMeasurement MeanOfSeparate(const ToneMeasurement& one, const ToneMeasurement& other);

}  // namespace sonavex
