#include "core/analyzer/Record.h"

namespace sonavex {

std::size_t DefaultRecordLength(double rateHz) {
    std::size_t length = kShortestRecord;
    while (static_cast<double>(length) < rateHz && length < kLongestRecord) length *= 2;
    return length;
}

Record Record::Last(std::size_t length) const {
    Record last = *this;
    last.samples = samples.last(length);
    last.startSeconds += static_cast<double>(samples.size() - length) / rateHz;
    return last;
}

}  // namespace sonavex
