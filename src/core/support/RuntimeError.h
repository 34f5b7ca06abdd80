#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>

namespace sonavex {

// Numbers of the run-time errors that the core raises. Sound devices add the published DirectSound result
// codes (core/ports/SoundErrors.h).
namespace error_number {
inline constexpr std::int32_t kInvalidCall = 5;
inline constexpr std::int32_t kOverflow = 6;
inline constexpr std::int32_t kOutOfMemory = 7;
inline constexpr std::int32_t kSubscript = 9;
inline constexpr std::int32_t kDivisionByZero = 11;
inline constexpr std::int32_t kTypeMismatch = 13;
inline constexpr std::int32_t kObjectMissing = 91;
}  // namespace error_number

// A failure with the number and the text that the error log and the message box show.
class RuntimeError : public std::runtime_error {
public:
    RuntimeError(std::int32_t number, const std::string& text) : std::runtime_error(text), number_(number) {}

    // Uses the standard text of the number.
    explicit RuntimeError(std::int32_t number) : RuntimeError(number, StandardText(number)) {}

    std::int32_t Number() const noexcept { return number_; }

    // "Overflow" for 6, "Type mismatch" for 13, ...; "Application-defined or object-defined error" for a
    // number without a text.
    static const char* StandardText(std::int32_t number) noexcept;

private:
    std::int32_t number_;
};

}  // namespace sonavex
