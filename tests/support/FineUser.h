#pragma once

#include <algorithm>
#include <cstdint>
#include <span>
#include <string>

#include "core/audio/FineStream.h"

namespace sonavex {

// Uses the fine path as a measurement does: follows the captured frames and plays numbered ones. Its owner
// ends it before the stream.
class FineUser : private FineSource {
public:
    // Bits of the frames that it plays.
    explicit FineUser(FineStream& stream, int bits = 16)
        : stream_(stream), step_(std::int32_t{1} << (32 - bits)) {
        Listen(true);
    }
    ~FineUser() override {
        Play(false);
        Listen(false);
    }
    FineUser(const FineUser&) = delete;
    FineUser& operator=(const FineUser&) = delete;

    void Listen(bool on) {
        if (on)
            stream_.SetSink([this](const FineFrames& block) { Note(block); });
        else
            stream_.SetSink({});
    }
    void Play(bool on) { stream_.SetSource(on ? this : nullptr); }
    bool Playing() const noexcept { return stream_.Source() == this; }

    // Counts since construction.
    std::uint64_t Frames() const noexcept { return frames_; }
    std::uint64_t Restarts() const noexcept { return restarts_; }
    std::uint64_t Filled() const noexcept { return filled_; }

    enum class Wire {
        kExact,
        kMaySkip,  // a busy sound server skips cycles without a report, on each channel by itself: frames are
                   // counted again after a skip
    };
    // While on, what it plays must return in order and bit for bit; silence in between is ignored. For a wire
    // of at least its bits at full volume.
    void ExpectReturn(bool on, Wire wire = Wire::kExact) {
        comparing_ = on;
        wire_ = wire;
        expected_ = 0;
        returned_ = 0;
    }
    // Frames that returned since the last ExpectReturn, without the first after each interruption.
    std::uint64_t Returned() const noexcept { return returned_; }

    // What was wrong with a block; empty if nothing was.
    const std::string& Fault() const noexcept { return fault_; }

private:
    void Note(const FineFrames& block) {
        if (block.samples.empty() || block.samples.size() % 2 != 0) fault_ = "a block without whole frames";
        if (block.restarted ? block.lostBefore != 0 : block.firstFrame != next_ + block.lostBefore)
            fault_ = "frame " + std::to_string(block.firstFrame) + " after " + std::to_string(next_) +
                     " with " + std::to_string(block.lostBefore) + " lost";
        if (block.restarted) ++restarts_;
        next_ = block.firstFrame + block.samples.size() / 2;
        frames_ += block.samples.size() / 2;
        if (block.restarted || block.lostBefore > 0) expected_ = 0;
        for (std::size_t i = 0; comparing_ && i < block.samples.size(); i += 2)
            Compare(block.samples[i], block.samples[i + 1]);
    }
    void Compare(std::int32_t first, std::int32_t second) {
        if (first == 0 && second == 0) return;
        const bool numbered = first > 0 && second == -first;
        // The output of the block meter, which is still on its way.
        if (expected_ == 0 && !numbered) return;
        if (expected_ != 0 && (!numbered || first != expected_) && wire_ == Wire::kMaySkip) {
            expected_ = numbered ? first : 0;
            returned_ = 0;
            if (!numbered) return;
        }
        if (expected_ == 0)
            expected_ = first;
        else
            ++returned_;
        if (!numbered || first != expected_)
            fault_ = "sample " + std::to_string(first) + " in place of " + std::to_string(expected_);
        expected_ = After(expected_);
    }
    // Numbers from 1 to the highest of its bits.
    std::int32_t After(std::int32_t sample) const noexcept {
        const std::int32_t highest = 0x7FFFFFFF / step_ * step_;
        return sample >= highest ? step_ : sample + step_;
    }
    void FillFine(std::span<std::int32_t> block) override {
        for (std::size_t i = 0; i < block.size(); i += 2) {
            played_ = After(played_);
            block[i] = played_;
            block[i + 1] = -played_;
        }
        filled_ += block.size() / 2;
    }

    FineStream& stream_;
    std::uint64_t next_ = 0;
    std::uint64_t frames_ = 0;
    std::uint64_t restarts_ = 0;
    std::uint64_t filled_ = 0;
    std::int32_t step_;
    std::int32_t played_ = 0;  // the last sample of the first channel
    bool comparing_ = false;
    Wire wire_ = Wire::kExact;
    std::int32_t expected_ = 0;  // 0: any
    std::uint64_t returned_ = 0;
    std::string fault_;
};

}  // namespace sonavex
