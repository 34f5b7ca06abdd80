#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace sonavex {

// A tag of a page ("object", "/ul") with its attributes, names in lower case, entities decoded.
struct HtmlTag {
    std::string name;
    std::vector<std::pair<std::string, std::string>> attributes;

    // The value; empty when there is no such attribute.
    std::string Attribute(std::string_view wanted) const;
};

// Splits a page into texts and tags. Never fails: characters that are not part of a tag are text.
class HtmlReader {
public:
    explicit HtmlReader(std::string_view html) noexcept : html_(html) {}

    // Returns the text before the next tag, with entities decoded, and the tag. At the end of the page it
    // returns false and the last text.
    bool Next(std::string& text, HtmlTag& tag);

private:
    std::string_view html_;
    std::size_t at_ = 0;
};

// Lower case of the letters A to Z; other characters stay. Enough for an English book.
std::string Lower(std::string_view text);

// Replaces entities such as "&amp;" and "&#8722;" by their characters in UTF-8. Unknown entities stay.
std::string DecodeEntities(std::string_view text);

// The visible text of a page: its title, and its words with single blanks between them.
struct PageText {
    std::string title;
    std::string text;
};
PageText TextOfPage(std::string_view html);

}  // namespace sonavex
