#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

// The one function of a fuzz target: does with the bytes what the instrument does with such input, and
// ends the program when a property does not hold. Returns 0.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace sonavex::fuzz {

// Ends the program with a message when the condition does not hold.
void Require(bool condition, const char* property, std::string_view detail = {});

// Whether every byte of the text belongs to a character of UTF-8, none of them written too long.
bool IsUtf8(std::string_view text);

// The same text with a question mark in the place of each byte that belongs to no character.
std::string AsUtf8(std::string_view text);

// Reads an input piece by piece from its front. Where it ends, zeros and empty texts follow.
class Input {
public:
    Input(const std::uint8_t* data, std::size_t size) : rest_(reinterpret_cast<const char*>(data), size) {}
    explicit Input(std::string_view bytes) noexcept : rest_(bytes) {}

    bool AtEnd() const noexcept { return rest_.empty(); }
    std::uint8_t Byte();
    // A number of two bytes, lower one first.
    std::uint16_t Word();
    // Up to the next line break, which is taken off too.
    std::string_view Line();
    std::string_view Bytes(std::size_t count);
    std::string_view Rest() const noexcept { return rest_; }

private:
    std::string_view rest_;
};

}  // namespace sonavex::fuzz
