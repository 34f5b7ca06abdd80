#pragma once

#include <chrono>
#include <cstdint>
#include <optional>

#include "core/audio/FineStream.h"
#include "core/audio/StreamEngine.h"
#include "core/ports/EventLoop.h"

namespace sonavex {

// Finds out whether an input of more than 16 bits moves only the upper 16. Nothing follows from samples that
// this program may have rounded to 16 bits itself: while its 16-bit output plays, nothing is concluded. The
// same holds while the input is constant.
class UsedBits {
public:
    // All must outlive this object.
    UsedBits(const EventLoop& loop, StreamEngine& engine, const FineStream& fine)
        : loop_(loop), engine_(engine), fine_(fine) {}

    // Call about once a second.
    void Observe();
    // True after ten seconds in which only the upper 16 bits moved, until a lower bit moves or the capture
    // starts again.
    bool Only16() const noexcept { return only16_; }
    // Whether this program's output may have rounded to 16 bits what was captured during the last `blocks`
    // blocks.
    bool OutputHidesBits(std::uint64_t blocks = 0) const;

private:
    const EventLoop& loop_;
    StreamEngine& engine_;
    const FineStream& fine_;
    std::uint64_t starts_ = 0;                       // of the capture, at the last call
    std::optional<std::chrono::nanoseconds> since_;  // only the upper bits have moved since then
    bool only16_ = false;
};

}  // namespace sonavex
