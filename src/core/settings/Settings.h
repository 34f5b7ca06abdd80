#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "core/ports/SettingsStore.h"
#include "core/settings/SettingsKeys.h"
#include "core/support/RuntimeError.h"

namespace sonavex {

// Typed access to stored values. A value that does not convert raises error 13 or 6; the text names section,
// key, value and the location of the settings. The store must outlive this object.
class Settings {
public:
    explicit Settings(SettingsStore& store) noexcept : store_(store) {}

    std::string Text(const SettingsKey& key) const;
    std::int32_t Long(const SettingsKey& key) const;
    std::int16_t Integer(const SettingsKey& key) const;
    double Double(const SettingsKey& key) const;
    bool Boolean(const SettingsKey& key) const;
    // Leading number of the stored text; 0 if there is none.
    double Value(const SettingsKey& key) const;

    void Save(const SettingsKey& key, std::string_view value) { store_.Save(key.section, key.key, value); }

    // The error for a stored value that converts but is not allowed, with a text like that of the conversion
    // errors.
    RuntimeError Failure(std::int32_t number, const SettingsKey& key) const;
    // The error with section, key, value and location of the settings appended to its text.
    RuntimeError Located(const RuntimeError& error, const SettingsKey& key, const std::string& value) const;

    // The same key with another default.
    static SettingsKey WithFallback(SettingsKey key, std::string_view fallback) noexcept {
        key.fallback = fallback;
        return key;
    }

    SettingsStore& Store() noexcept { return store_; }

private:
    template <class Convert>
    auto Read(const SettingsKey& key, Convert convert) const;

    SettingsStore& store_;
};

}  // namespace sonavex
