#include "fuzz/FuzzTarget.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>

namespace sonavex::fuzz {
namespace {

// Length in bytes of the UTF-8 character at the start of the text; 0 if there is none.
std::size_t CharacterLength(std::string_view text) {
    const auto byte = [text](std::size_t at) { return static_cast<unsigned char>(text[at]); };
    const auto tail = [&](std::size_t at, unsigned from, unsigned to) {
        return at < text.size() && byte(at) >= from && byte(at) <= to;
    };
    const unsigned first = byte(0);
    if (first < 0x80) return 1;
    if (first >= 0xC2 && first <= 0xDF) return tail(1, 0x80, 0xBF) ? 2 : 0;
    if (first >= 0xE0 && first <= 0xEF) {
        const bool second = tail(1, first == 0xE0 ? 0xA0 : 0x80, first == 0xED ? 0x9F : 0xBF);
        return second && tail(2, 0x80, 0xBF) ? 3 : 0;
    }
    if (first >= 0xF0 && first <= 0xF4) {
        const bool second = tail(1, first == 0xF0 ? 0x90 : 0x80, first == 0xF4 ? 0x8F : 0xBF);
        return second && tail(2, 0x80, 0xBF) && tail(3, 0x80, 0xBF) ? 4 : 0;
    }
    return 0;
}

}  // namespace

void Require(bool condition, const char* property, std::string_view detail) {
    if (condition) return;
    std::fprintf(stderr, "\nNot so: %s\n%.*s\n", property, static_cast<int>(detail.size()), detail.data());
    std::abort();
}

bool IsUtf8(std::string_view text) {
    while (!text.empty()) {
        const std::size_t length = CharacterLength(text);
        if (length == 0) return false;
        text.remove_prefix(length);
    }
    return true;
}

std::string AsUtf8(std::string_view text) {
    std::string converted;
    while (!text.empty()) {
        const std::size_t length = CharacterLength(text);
        converted += length == 0 ? "?" : text.substr(0, length);
        text.remove_prefix(std::max<std::size_t>(length, 1));
    }
    return converted;
}

std::uint8_t Input::Byte() {
    if (rest_.empty()) return 0;
    const auto byte = static_cast<std::uint8_t>(rest_.front());
    rest_.remove_prefix(1);
    return byte;
}

std::uint16_t Input::Word() {
    const unsigned low = Byte();
    return static_cast<std::uint16_t>(low | (unsigned{Byte()} << 8U));
}

std::string_view Input::Line() {
    const std::size_t end = std::min(rest_.find('\n'), rest_.size());
    const std::string_view line = rest_.substr(0, end);
    rest_.remove_prefix(std::min(end + 1, rest_.size()));
    return line;
}

std::string_view Input::Bytes(std::size_t count) {
    const std::string_view bytes = rest_.substr(0, count);
    rest_.remove_prefix(bytes.size());
    return bytes;
}

}  // namespace sonavex::fuzz
