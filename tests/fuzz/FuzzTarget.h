#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

// Entry point of a fuzz target: handles the bytes as the instrument handles such input, and ends the program
// when a property does not hold. Returns 0.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace sonavex::fuzz {

// Ends the program with a message if the condition does not hold.
void Require(bool condition, const char* property, std::string_view detail = {});

// Whether the text is valid UTF-8 without overlong sequences.
bool IsUtf8(std::string_view text);

// The text with a question mark for each invalid byte.
std::string AsUtf8(std::string_view text);

// Reads an input from its front. After its end, zeros and empty texts follow.
class Input {
public:
    Input(const std::uint8_t* data, std::size_t size) : rest_(reinterpret_cast<const char*>(data), size) {}
    explicit Input(std::string_view bytes) noexcept : rest_(bytes) {}

    bool AtEnd() const noexcept { return rest_.empty(); }
    std::uint8_t Byte();
    // A two-byte number, little-endian.
    std::uint16_t Word();
    // The text up to the next line break, which is consumed too.
    std::string_view Line();
    std::string_view Bytes(std::size_t count);
    std::string_view Rest() const noexcept { return rest_; }

private:
    std::string_view rest_;
};

}  // namespace sonavex::fuzz
