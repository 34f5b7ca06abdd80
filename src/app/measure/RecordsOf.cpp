#include "app/measure/RecordsOf.h"

namespace sonavex::measure {

RecordsOf::RecordsOf(Recording& recording, int channel, std::size_t length)
    : recording_(recording), channel_(static_cast<std::size_t>(channel)), length_(length) {
    samples_.reserve(length_ + length_ / 4);
}

bool RecordsOf::Next() {
    if (!begun_) {
        begun_ = true;
        return Append(length_) > 0;
    }
    if (samples_.size() < length_) return false;
    const std::size_t appended = Append(length_ / 4);
    samples_.erase(samples_.begin(), samples_.begin() + static_cast<std::ptrdiff_t>(appended));
    start_ += appended;
    return appended > 0;
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

}  // namespace sonavex::measure
