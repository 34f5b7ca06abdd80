#include "platform/plain/MemorySettingsStore.h"

namespace sonavex {

std::string MemorySettingsStore::Get(std::string_view section, std::string_view key,
                                     std::string_view fallback) const {
    const auto inSection = sections_.find(section);
    if (inSection == sections_.end()) return std::string(fallback);
    const auto value = inSection->second.find(key);
    return value == inSection->second.end() ? std::string(fallback) : value->second;
}

void MemorySettingsStore::Save(std::string_view section, std::string_view key, std::string_view value) {
    sections_[std::string(section)][std::string(key)] = value;
}

void MemorySettingsStore::DeleteSection(std::string_view section) {
    const auto found = sections_.find(section);
    if (found != sections_.end()) sections_.erase(found);
}

std::size_t MemorySettingsStore::Size() const noexcept {
    std::size_t size = 0;
    for (const auto& [name, values] : sections_) size += values.size();
    return size;
}

}  // namespace sonavex
