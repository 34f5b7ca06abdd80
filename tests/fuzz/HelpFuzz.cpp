// Help files and pages with any content: the result is a readable, searchable book or a refusal.
//
// First byte: 0 a file as it is, 1 the frame of a file, 2 a sealed file made of the following parts, 3 a
// page. The library that unpacks compressed files does not survive damaged ones, which is why the instrument
// checks checksum and frame first. Files with compressed parts therefore get no valid checksum here.

#include <array>
#include <chrono>
#include <cstdint>
#include <string>
#include <vector>

#include "fuzz/FuzzTarget.h"
#include "fuzz/HelpFileMaker.h"
#include "fuzz/MemoryFile.h"
#include "platform/chm/ChmHelpBook.h"
#include "platform/chm/ChmStructure.h"
#include "platform/chm/Html.h"

namespace sonavex {
namespace {

using fuzz::Input;
using fuzz::IsUtf8;
using fuzz::MemoryFile;
using fuzz::Require;

constexpr std::array<const char*, 6> kParts{"/#SYSTEM",      "/#STRINGS",   "/#IVB",
                                            "/contents.hhc", "/index.html", "/more/a.html"};

void CheckChapters(const std::vector<HelpBook::Chapter>& chapters, const HelpBook& book, bool plainText) {
    for (const HelpBook::Chapter& chapter : chapters) {
        Require(!chapter.name.empty(), "a chapter has a name");
        if (plainText) Require(IsUtf8(chapter.name), "a chapter's name is UTF-8", chapter.name);
        book.Read(chapter.page);
        CheckChapters(chapter.chapters, book, plainText);
    }
}

void CheckSearch(const HelpBook& book, std::string_view words, bool plainText) {
    for (const HelpBook::Match& match : book.Search(words)) {
        Require(book.Read(match.page).has_value(), "a match is on a page", match.page);
        if (plainText)
            Require(IsUtf8(match.excerpt) && IsUtf8(match.title), "an excerpt is UTF-8", match.excerpt);
    }
}

void Use(const std::string& content, std::string_view words, bool plainText) {
    const MemoryFile file(content);
    try {
        const ChmHelpBook book(file.Path());
        Require(book.Read(book.Home()).has_value(), "there is a page to begin with", book.Home());
        CheckChapters(book.Contents(), book, plainText);
        CheckSearch(book, words, plainText);
        CheckSearch(book, "sound", plainText);
        for (const std::int32_t topic : {-1, 0, 1, 210, 305})
            if (const auto page = book.PageOfTopic(topic))
                Require(book.Read(*page).has_value() || page->back() == '/', "a topic has a page", *page);
    } catch (const HelpFileError& error) {
        Require(*error.what() != '\0', "a refusal is explained");
    }
}

void UseFrame(const std::string& content) {
    try {
        CheckStructure(content);
    } catch (const HelpFileError&) {
        return;
    }
    if (content.find("MSCompressed") == std::string::npos) Use(fuzz::Sealed(content), "a", false);
}

void UseParts(Input& input) {
    std::vector<fuzz::HelpPart> parts;
    const std::string words(input.Line());
    const bool plainText = IsUtf8(input.Rest()) && IsUtf8(words);
    for (const char* name : kParts) parts.push_back({name, std::string(input.Bytes(input.Word()))});
    bool partsArePlain = plainText;
    for (const fuzz::HelpPart& part : parts) partsArePlain = partsArePlain && IsUtf8(part.content);
    Use(fuzz::MakeHelpFile(parts), words, partsArePlain);
}

void ReadPage(std::string_view html) {
    const bool plainText = IsUtf8(html);
    HtmlReader reader(html);
    HtmlTag tag;
    std::string text;
    std::size_t tags = 0;
    while (reader.Next(text, tag)) {
        Require(++tags <= html.size(), "a page ends");
        if (plainText) Require(IsUtf8(text) && IsUtf8(tag.name), "pieces of a page are UTF-8", text);
        for (const auto& [name, value] : tag.attributes)
            if (plainText) Require(IsUtf8(name) && IsUtf8(value), "attributes are UTF-8", value);
    }
    const PageText page = TextOfPage(html);
    Require(page.text.find("  ") == std::string::npos, "single blanks", page.text);
    if (plainText) Require(IsUtf8(page.text) && IsUtf8(page.title), "a page's text is UTF-8", page.text);
}

}  // namespace
}  // namespace sonavex

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace sonavex;
    fuzz::Input input(data, size);
    switch (input.Byte() % 4U) {
        case 0:
            Use(std::string(input.Rest()), "sound", false);
            break;
        case 1:
            UseFrame(std::string(input.Rest()));
            break;
        case 2:
            UseParts(input);
            break;
        default:
            ReadPage(input.Rest());
            break;
    }
    return 0;
}
