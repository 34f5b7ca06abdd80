#include "core/audio/UsedBits.h"

#include <utility>

namespace sonavex {
namespace {

using namespace std::chrono_literals;

constexpr int kOutputBits = 24;               // enough to move the lower bits
constexpr std::uint32_t kLowerBits = 0xFFFF;  // below the upper 16
constexpr std::chrono::nanoseconds kLongEnough = 10s;
// The block meter's output is silent when the playback buffer has been filled with silence, and when this
// has passed the devices.
constexpr std::uint64_t kSilentBlocks = 16;

}  // namespace

void UsedBits::Observe() {
    CaptureBuffer* const input = engine_.InputBuffer();
    const std::uint32_t moved = input != nullptr ? input->TakeMovedBits() : 0;
    const bool restarted = std::exchange(starts_, engine_.CaptureStarts) != engine_.CaptureStarts;
    const bool more = restarted || engine_.InputBits() <= 16 || (moved & kLowerBits) != 0;
    if (more) only16_ = false;
    if (more || moved == 0 || OutputHidesBits())
        since_.reset();
    else if (!since_)
        since_ = loop_.Now();
    else if (loop_.Now() - *since_ >= kLongEnough)
        only16_ = true;
}

bool UsedBits::OutputHidesBits(std::uint64_t blocks) const {
    if (const FineSource* const source = fine_.Source())
        return source->DitherBits() < kOutputBits || engine_.OutputBits() < kOutputBits;
    return engine_.SilentBlocks < kSilentBlocks + blocks;
}

}  // namespace sonavex
