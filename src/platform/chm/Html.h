#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace sonavex {

// A tag of a page ("object", "/ul") with its attributes, names in lower case, entities decoded.
struct HtmlTag {
    std::string name;
    std::vector<std::pair<std::string, std::string>> attributes;

    // Empty when there is no such attribute.
    std::string Attribute(std::string_view wanted) const;
};

// Reads a page piece by piece: text up to a tag, then the tag. Never fails; what is no tag is text.
class HtmlReader {
public:
    explicit HtmlReader(std::string_view html) noexcept : html_(html) {}

    // The text up to the next tag, entities decoded, and the tag; false at the end, with the last text.
    bool Next(std::string& text, HtmlTag& tag);

private:
    std::string_view html_;
    std::size_t at_ = 0;
};

// In lower case, letters without accents only: the words of an English book.
std::string Lower(std::string_view text);

// "&amp;" to "&" and so on; numbers to UTF-8. Unknown entities stay.
std::string DecodeEntities(std::string_view text);

// The page as a reader sees it: its title, and its text with single blanks between the words.
struct PageText {
    std::string title;
    std::string text;
};
PageText TextOfPage(std::string_view html);

}  // namespace sonavex
