#include "platform/plain/IniText.h"

#include <algorithm>
#include <array>
#include <optional>
#include <utility>

namespace sonavex {
namespace {

constexpr std::string_view kHead =
    "; Settings of Sonavex. May be edited; comments are not kept.\n"
    "; A value is the text up to the end of its line. In \"quotation marks\" blanks at the ends count,\n"
    "; and \\\" \\\\ \\n \\r \\t \\xHH stand for characters.\n";
constexpr std::string_view kBlanks = " \t";

constexpr std::array<std::pair<char, char>, 5> kEscapes{
    {{'"', '"'}, {'\\', '\\'}, {'n', '\n'}, {'r', '\r'}, {'t', '\t'}}};

bool IsControl(char character) {
    const auto code = static_cast<unsigned char>(character);
    return code < 0x20 || code == 0x7F;
}

std::string_view Trimmed(std::string_view text) {
    const auto first = text.find_first_not_of(kBlanks);
    if (first == std::string_view::npos) return {};
    return text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

int HexDigit(char character) {
    if (character >= '0' && character <= '9') return character - '0';
    if (character >= 'a' && character <= 'f') return character - 'a' + 10;
    if (character >= 'A' && character <= 'F') return character - 'A' + 10;
    return -1;
}

// Decodes one escape: the character and the length of its code; length 0 if the backslash is literal.
std::pair<char, std::size_t> Escaped(std::string_view rest) {
    for (const auto& [letter, character] : kEscapes)
        if (!rest.empty() && rest.front() == letter) return {character, 1};
    if (rest.size() >= 3 && rest[0] == 'x' && HexDigit(rest[1]) >= 0 && HexDigit(rest[2]) >= 0)
        return {static_cast<char>(HexDigit(rest[1]) * 16 + HexDigit(rest[2])), 3};
    return {'\\', 0};
}

struct Quoted {
    std::string text;
    std::string_view rest;  // after the closing quotation mark
};

// The quoted text at the beginning of the line. Null when there is none or its quotation mark is missing.
std::optional<Quoted> ReadQuoted(std::string_view line) {
    if (line.empty() || line.front() != '"') return std::nullopt;
    Quoted quoted;
    for (std::size_t i = 1; i < line.size(); ++i) {
        if (line[i] == '"') {
            quoted.rest = line.substr(i + 1);
            return quoted;
        }
        if (line[i] == '\\') {
            const auto [character, length] = Escaped(line.substr(i + 1));
            quoted.text += character;
            i += length;
        } else {
            quoted.text += line[i];
        }
    }
    return std::nullopt;
}

std::string ReadValue(std::string_view text) {
    text = Trimmed(text);
    auto quoted = ReadQuoted(text);
    return quoted && quoted->rest.empty() ? std::move(quoted->text) : std::string(text);
}

std::optional<std::string> ReadSection(std::string_view line) {
    if (line.front() != '[' || line.back() != ']') return std::nullopt;
    return ReadValue(line.substr(1, line.size() - 2));
}

struct Entry {
    std::string key;
    std::string value;
};

std::optional<Entry> ReadEntry(std::string_view line) {
    if (auto quoted = ReadQuoted(line)) {
        const std::string_view rest = Trimmed(quoted->rest);
        if (!rest.empty() && rest.front() == '=')
            return Entry{std::move(quoted->text), ReadValue(rest.substr(1))};
    }
    const auto sign = line.find('=');
    if (sign == std::string_view::npos) return std::nullopt;
    return Entry{std::string(Trimmed(line.substr(0, sign))), ReadValue(line.substr(sign + 1))};
}

std::string Quote(std::string_view text) {
    constexpr std::string_view kDigits = "0123456789ABCDEF";
    std::string quoted = "\"";
    for (const char character : text) {
        const auto* const escape = std::find_if(kEscapes.begin(), kEscapes.end(), [&](const auto& candidate) {
            return candidate.second == character;
        });
        if (escape != kEscapes.end()) {
            quoted += '\\';
            quoted += escape->first;
        } else if (IsControl(character)) {
            quoted += "\\x";
            quoted += kDigits[static_cast<unsigned char>(character) / 16];
            quoted += kDigits[static_cast<unsigned char>(character) % 16];
        } else {
            quoted += character;
        }
    }
    return quoted + '"';
}

bool NeedsQuotes(std::string_view text) {
    return text != Trimmed(text) || (!text.empty() && text.front() == '"') ||
           std::any_of(text.begin(), text.end(), IsControl);
}

std::string WriteValue(std::string_view text) {
    return NeedsQuotes(text) ? Quote(text) : std::string(text);
}

std::string WriteKey(std::string_view key) {
    const bool plain = !key.empty() && !NeedsQuotes(key) && key.find('=') == std::string_view::npos &&
                       key.find_first_of("[;#") != 0;
    return plain ? std::string(key) : Quote(key);
}

}  // namespace

IniReading ReadIni(std::string_view text) {
    constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
    constexpr std::string_view kLineEnds = "\r\n";
    if (text.substr(0, kByteOrderMark.size()) == kByteOrderMark) text.remove_prefix(kByteOrderMark.size());
    const bool binary = std::any_of(text.begin(), text.end(), [&](char character) {
        return IsControl(character) && character != '\t' &&
               kLineEnds.find(character) == std::string_view::npos;
    });
    IniReading reading;
    reading.damaged = binary;
    std::string section;
    while (!text.empty() && !binary) {
        const std::string_view line = Trimmed(text.substr(0, text.find_first_of(kLineEnds)));
        text.remove_prefix(std::min(text.size(), text.find_first_of(kLineEnds)));
        text.remove_prefix(std::min(text.size(), text.find_first_not_of(kLineEnds)));
        if (line.empty() || line.front() == ';' || line.front() == '#') continue;
        if (auto name = ReadSection(line)) {
            section = std::move(*name);
        } else if (auto entry = ReadEntry(line)) {
            reading.sections[section].insert_or_assign(std::move(entry->key), std::move(entry->value));
        } else {
            reading.damaged = true;
        }
    }
    return reading;
}

std::string WriteIni(const IniSections& sections) {
    std::string text(kHead);
    for (const auto& [section, values] : sections) {
        if (values.empty()) continue;
        text += "\n[" + WriteValue(section) + "]\n";
        for (const auto& [key, value] : values) text += WriteKey(key) + "=" + WriteValue(value) + "\n";
    }
    return text;
}

}  // namespace sonavex
