#include "core/precise/RecordCollection.h"

#include <algorithm>
#include <utility>

namespace sonavex {
std::string FramesSentence(std::uint64_t frames, const char* fate) {
    return std::to_string(frames) + (frames == 1 ? " frame " : " frames ") + fate;
}

RecordCollection::RecordCollection(std::size_t length, std::size_t channel, std::size_t shift)
    : length_(length), channel_(channel), shift_(shift != 0 ? shift : length / 4), ring_(length) {}

void RecordCollection::BeginAt(std::uint64_t frame, std::string cause) {
    begin_ = frame;
    StartOver(std::move(cause));
}

void RecordCollection::StartOver(std::string cause) {
    collected_ = 0;
    fresh_ = 0;
    next_ = 0;
    cause_ = std::move(cause);
    ++restarts_;
}

void RecordCollection::Add(const FineFrames& block) {
    if (block.lostBefore > 0) StartOver(FramesSentence(block.lostBefore, "lost"));
    const std::size_t frames = block.samples.size() / 2;
    nextFrame_ = block.firstFrame + frames;
    const std::uint64_t early = begin_ > block.firstFrame ? begin_ - block.firstFrame : 0;
    if (early < frames) Append(block.samples.subspan(2 * static_cast<std::size_t>(early)));
}

void RecordCollection::Append(std::span<const std::int32_t> samples) {
    for (std::size_t i = 0; i < samples.size(); i += 2) {
        ring_[next_] = samples[i + channel_];
        next_ = next_ + 1 == length_ ? 0 : next_ + 1;
    }
    collected_ = std::min(length_, collected_ + samples.size() / 2);
    fresh_ += samples.size() / 2;
}

std::vector<double> RecordCollection::Take() {
    fresh_ = 0;
    std::vector<double> record(length_);
    const auto oldest = ring_.begin() + static_cast<std::ptrdiff_t>(next_);
    std::rotate_copy(ring_.begin(), oldest, ring_.end(), record.begin());
    for (double& sample : record) sample *= kFineStep;
    return record;
}

}  // namespace sonavex
