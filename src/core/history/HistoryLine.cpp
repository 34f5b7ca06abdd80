#include "core/history/HistoryLine.h"

namespace sonavex {
namespace {

constexpr std::string_view kSumName = ",\"sum\":\"";
constexpr std::string_view kSumEnd = "\"}";
constexpr std::size_t kSumDigits = 16;
constexpr std::size_t kSealLength = kSumName.size() + kSumDigits + kSumEnd.size();

}  // namespace

std::uint64_t Fnv1a(std::string_view bytes) noexcept {
    std::uint64_t sum = 0xCBF29CE484222325;
    for (const char byte : bytes) sum = (sum ^ static_cast<unsigned char>(byte)) * 0x100000001B3;
    return sum;
}

std::string SixteenDigits(std::uint64_t number) {
    std::string text(kSumDigits, '0');
    for (std::size_t i = kSumDigits; i-- > 0; number >>= 4U) text[i] = "0123456789abcdef"[number & 15U];
    return text;
}

std::string SealedLine(std::string_view object) {
    std::string line(object.substr(0, object.size() - 1));
    const std::string sum = SixteenDigits(Fnv1a(line));
    return line.append(kSumName).append(sum).append(kSumEnd);
}

std::optional<std::string_view> UnsealedLine(std::string_view line) {
    if (line.size() <= kSealLength) return std::nullopt;
    const std::string_view object = line.substr(0, line.size() - kSealLength);
    std::string seal(kSumName);
    seal.append(SixteenDigits(Fnv1a(object))).append(kSumEnd);
    return line.substr(object.size()) == seal ? std::optional(object) : std::nullopt;
}

}  // namespace sonavex
