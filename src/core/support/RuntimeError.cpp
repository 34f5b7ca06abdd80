#include "core/support/RuntimeError.h"

namespace sonavex {

const char* RuntimeError::StandardText(std::int32_t number) noexcept {
    switch (number) {
        case error_number::kInvalidCall:
            return "Invalid procedure call or argument";
        case error_number::kOverflow:
            return "Overflow";
        case error_number::kOutOfMemory:
            return "Out of memory";
        case error_number::kSubscript:
            return "Subscript out of range";
        case error_number::kDivisionByZero:
            return "Division by zero";
        case error_number::kTypeMismatch:
            return "Type mismatch";
        case error_number::kObjectMissing:
            return "Object variable not set";
        default:
            return "Application-defined or object-defined error";
    }
}

}  // namespace sonavex
