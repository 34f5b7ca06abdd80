#include "core/text/Characters.h"

#include <algorithm>

namespace sonavex {
namespace {

// Length in bytes of the UTF-8 character that starts with this byte.
std::size_t AnnouncedBytes(unsigned char first) noexcept {
    if (first >= 0xF0U && first < 0xF8U) return 4;
    if (first >= 0xE0U && first < 0xF0U) return 3;
    if (first >= 0xC0U && first < 0xE0U) return 2;
    return 1;
}

bool Continues(char byte) noexcept {
    return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80U;
}

}  // namespace

std::string_view Left(std::string_view text, std::size_t characters) noexcept {
    std::size_t end = 0;
    for (; characters > 0 && end < text.size(); --characters) {
        std::size_t left = AnnouncedBytes(static_cast<unsigned char>(text[end]));
        ++end;
        while (--left > 0 && end < text.size() && Continues(text[end])) ++end;
    }
    return text.substr(0, end);
}

std::string UpperCase(std::string_view text) {
    std::string upper(text);
    std::transform(upper.begin(), upper.end(), upper.begin(), [](char letter) {
        return letter >= 'a' && letter <= 'z' ? static_cast<char>(letter - 'a' + 'A') : letter;
    });
    return upper;
}

}  // namespace sonavex
