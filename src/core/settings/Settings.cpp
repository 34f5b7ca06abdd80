#include "core/settings/Settings.h"

#include "core/support/RuntimeError.h"
#include "core/text/Numbers.h"

namespace sonavex {

template <class Convert>
auto Settings::Read(const SettingsKey& key, Convert convert) const {
    const std::string value = Text(key);
    try {
        return convert(std::string_view(value));
    } catch (const RuntimeError& error) {
        throw Located(error, key, value);
    }
}

std::string Settings::Text(const SettingsKey& key) const {
    return store_.Get(key.section, key.key, key.fallback);
}

std::int32_t Settings::Long(const SettingsKey& key) const {
    return Read(key, [](std::string_view text) { return CLng(text); });
}

std::int16_t Settings::Integer(const SettingsKey& key) const {
    return Read(key, [](std::string_view text) { return CInt(text); });
}

double Settings::Double(const SettingsKey& key) const {
    return Read(key, [](std::string_view text) { return CDbl(text); });
}

bool Settings::Boolean(const SettingsKey& key) const {
    return Read(key, [](std::string_view text) { return CBool(text); });
}

double Settings::Value(const SettingsKey& key) const {
    return Read(key, [](std::string_view text) { return Val(text); });
}

RuntimeError Settings::Failure(std::int32_t number, const SettingsKey& key) const {
    return Located(RuntimeError(number), key, Text(key));
}

RuntimeError Settings::Located(const RuntimeError& error, const SettingsKey& key,
                               const std::string& value) const {
    std::string text = error.what();
    text += ": section \"";
    text += key.section;
    text += "\", key \"";
    text += key.key;
    text += "\", value \"" + value + "\" (" + store_.Location() + ")";
    return {error.Number(), text};
}

std::string keys::Numbered(const SettingsKey& key, int number) {
    return std::string(key.key) + Str(number);
}

}  // namespace sonavex
