#pragma once

#include <cstddef>
#include <span>
#include <string>

namespace sonavex {

// Allowed lengths of a record in samples.
inline constexpr std::size_t kShortestRecord = 4096;
inline constexpr std::size_t kLongestRecord = 1048576;

// The power of two that lasts at least one second at this rate (4000 to 192000 Hz): 65536 samples at 48000
// Hz.
std::size_t DefaultRecordLength(double rateHz);

// Uninterrupted samples of one channel. Full scale is 1.
struct Record {
    std::span<const double> samples;
    double rateHz = 0;

    // Bits of a sample: 24 for 32-bit floats, 53 for 64-bit floats.
    int bits = 53;
    bool floatingPoint = true;

    // From a sound device, not from a recording. An overload then makes the reading void.
    bool live = false;

    // What the engine reported about losses inside the record, for example "512 frames lost". Empty: no loss.
    std::string loss = {};

    // When the record begins, for the sentences that name a time.
    double startSeconds = 0;

    // The signal may have been rounded to 16 bits by this program itself: nothing follows from its words.
    bool rounded = false;

    // Its last samples.
    Record Last(std::size_t length) const;
};

}  // namespace sonavex
