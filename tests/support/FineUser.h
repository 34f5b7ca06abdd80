#pragma once

#include <algorithm>
#include <cstdint>
#include <span>
#include <string>

#include "core/audio/FineStream.h"

namespace sonavex {

// Uses the fine path as a measurement does: follows the captured frames and plays silence. Its owner ends it
// before the stream.
class FineUser : private FineSource {
public:
    explicit FineUser(FineStream& stream) : stream_(stream) { Listen(true); }
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
    }
    void FillFine(std::span<std::int32_t> block) override {
        std::fill(block.begin(), block.end(), 0);
        filled_ += block.size() / 2;
    }

    FineStream& stream_;
    std::uint64_t next_ = 0;
    std::uint64_t frames_ = 0;
    std::uint64_t restarts_ = 0;
    std::uint64_t filled_ = 0;
    std::string fault_;
};

}  // namespace sonavex
