#pragma once

#include <string>
#include <string_view>

namespace sonavex {

// The user's settings: string values addressed by section and key. The application name is fixed by the
// adapter.
class SettingsStore {
public:
    virtual ~SettingsStore() = default;

    // The stored string, or `fallback` when the value or its section does not exist. Reading creates
    // nothing. Never fails.
    virtual std::string Get(std::string_view section, std::string_view key,
                            std::string_view fallback) const = 0;

    // Stores the string, creating the section as needed. The value is visible to Get at once.
    virtual void Save(std::string_view section, std::string_view key, std::string_view value) = 0;

    // Removes a section with all its keys; removing an absent one is no error.
    virtual void DeleteSection(std::string_view section) = 0;

    // Location of the settings, for error messages.
    virtual std::string Location() const = 0;
};

}  // namespace sonavex
