#pragma once

#include <string>

#include "platform/plain/MemorySettingsStore.h"
#include "support/CallLog.h"

namespace sonavex {

// Settings in memory: "Get SECTION|KEY|DEFAULT", "Save SECTION|KEY|VALUE", "DeleteSection SECTION".
class RecordingSettings : public SettingsStore {
public:
    explicit RecordingSettings(CallLog& log) noexcept : log_(log) {}

    std::string Get(std::string_view section, std::string_view key,
                    std::string_view fallback) const override {
        log_.Call("Get", Joined(section, key, fallback));
        return Stored.Get(section, key, fallback);
    }
    void Save(std::string_view section, std::string_view key, std::string_view value) override {
        log_.Call("Save", Joined(section, key, value));
        Stored.Save(section, key, value);
    }
    void DeleteSection(std::string_view section) override {
        log_.Call("DeleteSection", std::string(section));
        Stored.DeleteSection(section);
    }
    std::string Location() const override { return "recorded settings"; }

    // The stored values, accessible without recording.
    MemorySettingsStore Stored;

private:
    static std::string Joined(std::string_view section, std::string_view key, std::string_view value) {
        std::string text(section);
        text += '|';
        text += key;
        text += '|';
        text += value;
        return text;
    }

    CallLog& log_;
};

}  // namespace sonavex
