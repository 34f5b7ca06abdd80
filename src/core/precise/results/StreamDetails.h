#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace sonavex {

class StreamEngine;

// Additional data of a live measurement.
struct StreamDetails {
    std::string input;  // device names
    std::string output;
    std::int32_t rateHz = 0;
    int inputBits = 0;  // that the devices deliver and take
    int outputBits = 0;
    bool simulated = false;
    std::vector<std::string> notes;  // what changes the samples between instrument and cards
    std::uint64_t blocksLost = 0;
    std::uint64_t framesMissing = 0;  // in the input, replaced by silence
    std::uint64_t overruns = 0;       // the output was not written in time
    std::uint64_t underruns = 0;      // the output device ran out of samples
    // Of the precise measurement: captured frames that came too late, and silence in place of its stimulus.
    std::uint64_t fineFramesLost = 0;
    std::uint64_t fineFramesMissing = 0;
};

// simulated: of the sound system.
StreamDetails DetailsOf(const StreamEngine& engine, std::int32_t rateHz, bool simulated);

}  // namespace sonavex
