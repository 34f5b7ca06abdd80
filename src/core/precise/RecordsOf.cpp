#include "core/precise/RecordsOf.h"

#include <algorithm>

namespace sonavex {

std::size_t CountRecords(std::int64_t frames, std::size_t length) {
    const auto total = static_cast<std::size_t>(frames);
    const std::size_t quarter = length / 4;
    return total <= length ? 1 : 1 + (total - length + quarter - 1) / quarter;
}

RecordsOf::RecordsOf(OpenRecording& recording, std::size_t channel, std::size_t length)
    : recording_(recording), channel_(channel), length_(length) {
    samples_.reserve(length_ + length_ / 4);
}

std::optional<std::size_t> RecordsOf::Count() const {
    const std::optional<std::int64_t> frames = recording_.Frames();
    if (!frames) return std::nullopt;
    return CountRecords(*frames, length_);
}

bool RecordsOf::Next() {
    if (!begun_) {
        begun_ = true;
        Append(length_);
        return true;
    }
    if (samples_.size() < length_) return false;
    shift_ = Append(length_ / 4);
    samples_.erase(samples_.begin(), samples_.begin() + static_cast<std::ptrdiff_t>(shift_));
    start_ += shift_;
    return shift_ > 0;
}

void RecordsOf::MoveTo(std::size_t index) {
    const auto total = static_cast<std::size_t>(recording_.Frames().value());
    start_ = total <= length_ ? 0 : std::min(index * (length_ / 4), total - length_);
    recording_.MoveTo(static_cast<std::int64_t>(start_));
    shift_ = 0;
    begun_ = true;
    samples_.clear();
    Append(length_);
}

double RecordsOf::StartSeconds() const noexcept {
    return static_cast<double>(start_) / recording_.RateHz();
}

std::size_t RecordsOf::Append(std::size_t frames) {
    stereo_.resize(2 * frames);
    const std::size_t read = recording_.Read(stereo_);
    for (std::size_t i = 0; i < read; ++i) samples_.push_back(stereo_[2 * i + channel_]);
    return read;
}

}  // namespace sonavex
