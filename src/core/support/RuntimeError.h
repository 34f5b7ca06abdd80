#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>

namespace sonavex {

// Numbers of the run-time errors that the instrument itself raises. Sound devices add the
// published DirectSound result codes (see SoundErrors.h in ports).
namespace error_number {
inline constexpr std::int32_t kInvalidCall = 5;
inline constexpr std::int32_t kOverflow = 6;
inline constexpr std::int32_t kOutOfMemory = 7;
inline constexpr std::int32_t kSubscript = 9;
inline constexpr std::int32_t kDivisionByZero = 11;
inline constexpr std::int32_t kTypeMismatch = 13;
inline constexpr std::int32_t kObjectMissing = 91;
}  // namespace error_number

// A failure that carries the number and the text which the error log and the message box show.
class RuntimeError : public std::runtime_error {
public:
    RuntimeError(std::int32_t number, const std::string& text) : std::runtime_error(text), number_(number) {}

    // With the standard text of the number.
    explicit RuntimeError(std::int32_t number) : RuntimeError(number, StandardText(number)) {}

    std::int32_t Number() const noexcept { return number_; }

    // "Overflow" for 6, "Type mismatch" for 13, ...; "Application-defined or object-defined error"
    // for a number that has no text of its own.
    static const char* StandardText(std::int32_t number) noexcept;

private:
    std::int32_t number_;
};

}  // namespace sonavex
