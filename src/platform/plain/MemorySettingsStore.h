#pragma once

#include <map>
#include <string>

#include "core/ports/SettingsStore.h"

namespace sonavex {

// Settings in memory, for tests and for the headless meter, which must not change the user's settings.
class MemorySettingsStore : public SettingsStore {
public:
    std::string Get(std::string_view section, std::string_view key, std::string_view fallback) const override;
    void Save(std::string_view section, std::string_view key, std::string_view value) override;
    void DeleteSection(std::string_view section) override;
    std::string Location() const override { return "settings in memory"; }

    // The number of stored values.
    std::size_t Size() const noexcept;

private:
    std::map<std::string, std::map<std::string, std::string, std::less<>>, std::less<>> sections_;
};

}  // namespace sonavex
