#pragma once

#include <cstddef>
#include <span>
#include <vector>

#include "app/measure/Recording.h"

namespace sonavex::measure {

// The records of one channel of a recording. They overlap by 75 %; the last one ends at the last frame.
class RecordsOf {
public:
    RecordsOf(Recording& recording, int channel, std::size_t length);

    // Moves to the next record. False when there is none. Throws MeasureError when the file is damaged.
    bool Next();

    // The record; fewer samples than its length if the recording is shorter.
    std::span<const double> Samples() const noexcept { return samples_; }
    double StartSeconds() const noexcept;

private:
    // Appends at most `frames` frames of the channel and returns how many there were.
    std::size_t Append(std::size_t frames);

    Recording& recording_;
    std::size_t channel_;
    std::size_t length_;
    std::size_t start_ = 0;
    bool begun_ = false;
    std::vector<double> samples_;
    std::vector<double> stereo_;
};

}  // namespace sonavex::measure
