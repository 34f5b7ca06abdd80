#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "core/ports/MeasurementFiles.h"

namespace sonavex {

// How many records of this length overlap by 75 % in as many frames, the last one ending at the last frame.
std::size_t CountRecords(std::int64_t frames, std::size_t length);

// The records of one channel of a recording. They overlap by 75 %; the last one ends at the last frame. Holds
// one record at a time. Throws FileError when the file is damaged.
class RecordsOf {
public:
    // channel: 0 left, 1 right. The recording must outlive this object.
    RecordsOf(OpenRecording& recording, std::size_t channel, std::size_t length);

    // How many there are; empty if the length of the recording is not known.
    std::optional<std::size_t> Count() const;

    // Moves to the next record, first to the first one, which is empty if the recording is. False when there
    // is none.
    bool Next();
    // Moves to a record, 0 to Count() - 1.
    void MoveTo(std::size_t index);

    // The record; fewer samples than its length if the recording is shorter.
    std::span<const double> Samples() const noexcept { return samples_; }
    double StartSeconds() const noexcept;

    // Samples from the start of the record before to the start of this one; 0 for the first.
    std::size_t Shift() const noexcept { return shift_; }

private:
    // Appends at most `frames` frames of the channel and returns how many there were.
    std::size_t Append(std::size_t frames);

    OpenRecording& recording_;
    std::size_t channel_;
    std::size_t length_;
    std::size_t start_ = 0;
    std::size_t shift_ = 0;
    bool begun_ = false;
    std::vector<double> samples_;
    std::vector<double> stereo_;
};

}  // namespace sonavex
