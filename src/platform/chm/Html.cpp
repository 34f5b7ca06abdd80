#include "platform/chm/Html.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdint>
#include <utility>

namespace sonavex {
namespace {

constexpr std::array<std::pair<std::string_view, std::string_view>, 10> kEntities{{
    {"amp", "&"},
    {"lt", "<"},
    {"gt", ">"},
    {"quot", "\""},
    {"apos", "'"},
    {"nbsp", " "},
    {"ndash", "\xE2\x80\x93"},
    {"minus", "\xE2\x88\x92"},
    {"times", "\xC3\x97"},
    {"micro", "\xC2\xB5"},
}};
constexpr std::size_t kLongestEntity = 10;

bool IsSpace(char c) {
    return c == ' ' || c == '\t' || c == '\r' || c == '\n';
}

std::string Utf8(std::uint32_t code) {
    const auto tail = [&](unsigned shift) { return static_cast<char>(0x80U | ((code >> shift) & 0x3FU)); };
    if (code < 0x80) return {static_cast<char>(code)};
    if (code < 0x800) return {static_cast<char>(0xC0U | (code >> 6U)), tail(0)};
    if (code < 0x10000) return {static_cast<char>(0xE0U | (code >> 12U)), tail(6), tail(0)};
    return {static_cast<char>(0xF0U | (code >> 18U)), tail(12), tail(6), tail(0)};
}

// The character of an entity such as "amp", "#8722" or "#x2212"; empty for an unknown entity.
std::string Decoded(std::string_view entity) {
    for (const auto& [name, character] : kEntities)
        if (name == entity) return std::string(character);
    if (entity.size() < 2 || entity[0] != '#') return {};
    const bool hexadecimal = entity[1] == 'x' || entity[1] == 'X';
    const std::string_view digits = entity.substr(hexadecimal ? 2 : 1);
    std::uint32_t code = 0;
    const auto [end, error] =
        std::from_chars(digits.data(), digits.data() + digits.size(), code, hexadecimal ? 16 : 10);
    const bool character = code > 0 && code <= 0x10FFFF && (code < 0xD800 || code > 0xDFFF);
    if (error != std::errc() || end != digits.data() + digits.size() || !character) return {};
    return Utf8(code);
}

// Removes name="value", name=value or name from the start of `rest` and returns it.
std::pair<std::string, std::string> TakeAttribute(std::string_view& rest) {
    const auto skip = [&] {
        while (!rest.empty() && IsSpace(rest.front())) rest.remove_prefix(1);
    };
    std::size_t length = 0;
    while (length < rest.size() && !IsSpace(rest[length]) && rest[length] != '=') ++length;
    std::pair<std::string, std::string> attribute{Lower(rest.substr(0, length)), {}};
    rest.remove_prefix(length);
    skip();
    if (rest.empty() || rest.front() != '=') return attribute;
    rest.remove_prefix(1);
    skip();
    const bool quoted = !rest.empty() && (rest.front() == '"' || rest.front() == '\'');
    const std::string ends = quoted ? std::string(1, rest.front()) : " \t\r\n";
    if (quoted) rest.remove_prefix(1);
    length = std::min(rest.find_first_of(ends), rest.size());
    attribute.second = DecodeEntities(rest.substr(0, length));
    rest.remove_prefix(std::min(length + (quoted ? 1 : 0), rest.size()));
    return attribute;
}

HtmlTag ParseTag(std::string_view inside) {
    HtmlTag tag;
    std::size_t length = 0;
    while (length < inside.size() && !IsSpace(inside[length])) ++length;
    tag.name = Lower(inside.substr(0, length));
    inside.remove_prefix(length);
    for (;;) {
        while (!inside.empty() && (IsSpace(inside.front()) || inside.front() == '/')) inside.remove_prefix(1);
        if (inside.empty()) return tag;
        // Skips a "=" without a name.
        if (inside.front() == '=')
            inside.remove_prefix(1);
        else
            tag.attributes.push_back(TakeAttribute(inside));
    }
}

// Appends the words of a text with single blanks between them.
void AppendWords(std::string& text, std::string_view more) {
    for (const char c : more) {
        if (!IsSpace(c))
            text += c;
        else if (!text.empty() && text.back() != ' ')
            text += ' ';
    }
}

// Tags that may stand inside a word.
bool InsideWords(std::string_view name) {
    if (!name.empty() && name.front() == '/') name.remove_prefix(1);
    constexpr std::array<std::string_view, 8> kInline{"a", "b", "i", "em", "strong", "code", "sub", "sup"};
    return std::find(kInline.begin(), kInline.end(), name) != kInline.end();
}

}  // namespace

std::string Lower(std::string_view text) {
    std::string lower(text);
    for (char& c : lower)
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
    return lower;
}

std::string HtmlTag::Attribute(std::string_view wanted) const {
    for (const auto& [attributeName, value] : attributes)
        if (attributeName == wanted) return value;
    return {};
}

std::string DecodeEntities(std::string_view text) {
    std::string decoded;
    while (!text.empty()) {
        const std::size_t ampersand = std::min(text.find('&'), text.size());
        decoded += text.substr(0, ampersand);
        text.remove_prefix(ampersand);
        if (text.empty()) break;
        const std::size_t end = text.substr(0, kLongestEntity + 1).find(';');
        std::string character;
        if (end != std::string_view::npos) character = Decoded(text.substr(1, end - 1));
        decoded += character.empty() ? "&" : character;
        text.remove_prefix(character.empty() ? 1 : end + 1);
    }
    return decoded;
}

bool HtmlReader::Next(std::string& text, HtmlTag& tag) {
    const std::size_t open = html_.find('<', at_);
    const std::size_t close = open == std::string_view::npos ? open : html_.find('>', open);
    if (close == std::string_view::npos) {
        text = DecodeEntities(html_.substr(std::min(at_, html_.size())));
        at_ = html_.size();
        return false;
    }
    text = DecodeEntities(html_.substr(at_, open - at_));
    tag = ParseTag(html_.substr(open + 1, close - open - 1));
    at_ = close + 1;
    return true;
}

PageText TextOfPage(std::string_view html) {
    PageText page;
    HtmlReader reader(html);
    HtmlTag tag;
    std::string text;
    bool inTitle = false;
    bool hidden = false;
    for (bool more = true; more;) {
        more = reader.Next(text, tag);
        if (inTitle)
            AppendWords(page.title, text);
        else if (!hidden)
            AppendWords(page.text, text);
        if (!more) break;
        if (tag.name == "title" || tag.name == "/title") inTitle = tag.name == "title";
        if (tag.name == "style" || tag.name == "script") hidden = true;
        if (tag.name == "/style" || tag.name == "/script") hidden = false;
        if (!InsideWords(tag.name)) AppendWords(inTitle ? page.title : page.text, " ");
    }
    while (!page.text.empty() && page.text.back() == ' ') page.text.pop_back();
    return page;
}

}  // namespace sonavex
