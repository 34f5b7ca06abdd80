#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "core/audio/FineStream.h"

namespace sonavex {

// The newest uninterrupted frames of one channel of a capture. Starts over after every interruption, so that
// a record never contains one.
class RecordCollection {
public:
    // length: frames of a record, a multiple of 4. channel: 0 left, 1 right. shift: frames that are new in
    // the next one; 0: a quarter.
    RecordCollection(std::size_t length, std::size_t channel, std::size_t shift = 0);

    // Starts over with this captured frame, or with the next one if it has passed. The cause is empty after a
    // change that was asked for.
    void BeginAt(std::uint64_t frame, std::string cause);

    // Lost frames start the collection over. The caller begins it again after a restart of the capture.
    void Add(const FineFrames& block);

    std::size_t Length() const noexcept { return length_; }
    // Uninterrupted frames, at most the length of a record.
    std::size_t Collected() const noexcept { return collected_; }
    // Number of the frame after the last one added.
    std::uint64_t NextFrame() const noexcept { return nextFrame_; }
    // Why the collection started over the last time, for example "512 frames lost".
    const std::string& Cause() const noexcept { return cause_; }
    // How often it started over.
    std::uint64_t Restarts() const noexcept { return restarts_; }

    // Whether a record is complete of which so much is newer than the last one taken.
    bool Due() const noexcept { return collected_ == length_ && fresh_ >= shift_; }
    // The newest record, full scale 1; only when Collected() is Length().
    std::vector<double> Take();

private:
    void StartOver(std::string cause);
    void Append(std::span<const std::int32_t> samples);

    std::size_t length_;
    std::size_t channel_;
    std::size_t shift_;
    std::vector<std::int32_t> ring_;  // as captured: half the memory of doubles
    std::size_t next_ = 0;            // place in the ring
    std::size_t collected_ = 0;
    std::size_t fresh_ = 0;    // frames since the last record was taken
    std::uint64_t begin_ = 0;  // captured frames before it do not count
    std::uint64_t nextFrame_ = 0;
    std::string cause_;
    std::uint64_t restarts_ = 0;
};

// "1 frame lost", "512 frames lost".
std::string FramesSentence(std::uint64_t frames, const char* fate);

}  // namespace sonavex
