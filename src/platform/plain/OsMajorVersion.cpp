#include "platform/plain/OsMajorVersion.h"

#include <charconv>
#include <cstdlib>

namespace sonavex {
namespace {

constexpr std::int32_t kHighestOsMajorVersion = 1000;

}  // namespace

std::string_view OsMajorVersionText() {
    const char* const value = std::getenv("SONAVEX_OS_MAJOR");
    return value != nullptr ? value : "";
}

std::optional<std::int32_t> ParseOsMajorVersion(std::string_view text) {
    if (text.empty()) return kOsMajorVersion;
    const char* const end = text.data() + text.size();
    std::int32_t version = 0;
    const auto [read, error] = std::from_chars(text.data(), end, version);
    const bool whole = error == std::errc() && read == end;
    if (!whole || version < 1 || version > kHighestOsMajorVersion) return std::nullopt;
    return version;
}

}  // namespace sonavex
