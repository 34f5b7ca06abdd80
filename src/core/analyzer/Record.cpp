#include "core/analyzer/Record.h"

namespace sonavex {

std::size_t DefaultRecordLength(double rateHz) {
    std::size_t length = kShortestRecord;
    while (static_cast<double>(length) < rateHz && length < kLongestRecord) length *= 2;
    return length;
}

}  // namespace sonavex
