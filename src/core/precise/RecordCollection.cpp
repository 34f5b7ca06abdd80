#include "core/precise/RecordCollection.h"

#include <algorithm>
#include <utility>

namespace sonavex {
std::string FramesSentence(std::uint64_t frames, const char* fate) {
    return std::to_string(frames) + (frames == 1 ? " frame " : " frames ") + fate;
}

RecordCollection::RecordCollection(std::size_t length, std::size_t shift)
    : length_(length), shift_(shift != 0 ? shift : length / 4) {
    for (std::vector<double>& channel : ring_) channel.resize(length);
}

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
        for (std::size_t c = 0; c < ring_.size(); ++c)
            ring_[c][next_] = kFineStep * static_cast<double>(samples[i + c]);
        next_ = next_ + 1 == length_ ? 0 : next_ + 1;
    }
    collected_ = std::min(length_, collected_ + samples.size() / 2);
    fresh_ += samples.size() / 2;
}

RecordCollection::Channels RecordCollection::Take() {
    fresh_ = 0;
    Channels record = ring_;
    for (std::vector<double>& channel : record)
        std::rotate(channel.begin(), channel.begin() + static_cast<std::ptrdiff_t>(next_), channel.end());
    return record;
}

}  // namespace sonavex
