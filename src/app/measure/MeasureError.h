#pragma once

#include <stdexcept>

namespace sonavex::measure {

// A failure that ends the program with status 1. The text is the line that the user reads.
class MeasureError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// Exit statuses.
inline constexpr int kMeasured = 0;
inline constexpr int kFailed = 1;
inline constexpr int kNeverLocked = 2;
inline constexpr int kVoid = 2;
inline constexpr int kBeyondLimit = 3;

}  // namespace sonavex::measure
