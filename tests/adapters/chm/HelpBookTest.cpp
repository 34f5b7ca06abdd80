#include <gmock/gmock.h>

#include <algorithm>
#include <set>

#include "adapters/chm/HelpFile.h"
#include "core/ports/Help.h"
#include "platform/chm/ChmHelpBook.h"
#include "platform/chm/Html.h"

namespace sonavex {
namespace {

using testing::HasSubstr;
using testing::Not;
using testing::Optional;

// The compiled help file of the instrument.
class HelpBookTest : public testing::Test {
protected:
    std::vector<HelpBook::Chapter> Flat() const {
        std::vector<HelpBook::Chapter> all;
        Add(book.Contents(), all);
        return all;
    }
    static void Add(const std::vector<HelpBook::Chapter>& chapters, std::vector<HelpBook::Chapter>& all) {
        for (const auto& chapter : chapters) {
            all.push_back(chapter);
            Add(chapter.chapters, all);
        }
    }
    // Addresses in a page's links and pictures.
    static std::vector<std::string> AddressesOf(const std::string& html) {
        std::vector<std::string> found;
        HtmlReader reader(html);
        std::string text;
        HtmlTag tag;
        while (reader.Next(text, tag)) {
            if (tag.name == "a") found.push_back(tag.Attribute("href"));
            if (tag.name == "img") found.push_back(tag.Attribute("src"));
        }
        return found;
    }

    ChmHelpBook book{HelpFile()};
};

TEST_F(HelpBookTest, HasATitleAndAPageToBeginWith) {
    EXPECT_EQ(book.Title(), "Sonavex Help");
    EXPECT_EQ(book.Home(), "index.html");
}

TEST_F(HelpBookTest, OpensEveryPageOfTheContents) {
    const auto chapters = Flat();
    EXPECT_GE(chapters.size(), 19U);
    std::set<std::string> pages;
    for (const auto& chapter : chapters) {
        EXPECT_NE(chapter.name, "");
        if (chapter.page.empty()) {
            EXPECT_FALSE(chapter.chapters.empty()) << chapter.name;
            continue;
        }
        pages.insert(chapter.page);
        const auto html = book.Read(chapter.page);
        ASSERT_TRUE(html) << chapter.page;
        const PageText page = TextOfPage(*html);
        EXPECT_EQ(page.title, chapter.name);
        EXPECT_GT(page.text.size(), 300U) << chapter.page;
    }
    EXPECT_EQ(pages.size(), 18U);
}

TEST_F(HelpBookTest, NestsChaptersBelowHeadings) {
    ASSERT_GE(book.Contents().size(), 3U);
    EXPECT_EQ(book.Contents()[0].name, "Sonavex");
    EXPECT_EQ(book.Contents()[1].name, "First steps");
    ASSERT_FALSE(book.Contents()[1].chapters.empty());
    EXPECT_EQ(book.Contents()[1].chapters[0].page, "start.html");
}

TEST_F(HelpBookTest, HasNoLinkThatLeadsNowhere) {
    int links = 0;
    for (const auto& chapter : Flat()) {
        if (chapter.page.empty()) continue;
        for (const std::string& address : AddressesOf(*book.Read(chapter.page))) {
            ++links;
            EXPECT_TRUE(book.Read(address.substr(0, address.find('#')))) << chapter.page << ": " << address;
        }
    }
    EXPECT_GT(links, 20);
}

TEST_F(HelpBookTest, FindsTheTopicsOfTheDialogs) {
    EXPECT_THAT(book.PageOfTopic(305), Optional(std::string("error.html")));
    EXPECT_THAT(book.PageOfTopic(210), Optional(std::string("devices.html")));
    EXPECT_EQ(help_topic::kSoundDeviceError, 305);
    EXPECT_EQ(help_topic::kSoundDevices, 210);
    for (const std::int32_t topic : {0, -1, 1, 304, 306}) EXPECT_EQ(book.PageOfTopic(topic), std::nullopt);
}

TEST_F(HelpBookTest, ReadsPicturesAndNothingElse) {
    EXPECT_THAT(book.Read("loop.png"), Optional(HasSubstr("PNG")));
    EXPECT_TRUE(book.Read("/index.html"));
    for (const char* path : {"", "/", "missing.html", "../index.html", "/etc/passwd", "file:///etc/passwd"})
        EXPECT_EQ(book.Read(path), std::nullopt) << path;
    EXPECT_EQ(book.Read(std::string(100000, 'a')), std::nullopt);
}

TEST_F(HelpBookTest, HasNoPathOfTheMachineThatBuiltIt) {
    const std::string source = SONAVEX_SOURCE_FOLDER;
    const std::string build = SONAVEX_BUILD_FOLDER;
    std::vector<std::string> contents{BytesOf(HelpFile())};
    for (const char* part : {"#STRINGS", "#SYSTEM", "#IDXHDR", "$OBJINST", "_#_README_#_", "contents.hhc"})
        contents.push_back(book.Read(part).value_or(""));
    EXPECT_THAT(contents[1], HasSubstr("error.html"));
    for (const std::string& content : contents)
        for (const std::string& path : {source, build, std::string("/tmp/"), std::string("/ho") + "me/"})
            EXPECT_EQ(content.find(path), std::string::npos) << path;
}

TEST_F(HelpBookTest, SearchesTitlesFirst) {
    const auto matches = book.Search("baseline");
    ASSERT_GE(matches.size(), 3U);
    EXPECT_EQ(matches[0].page, "baseline.html");
    EXPECT_EQ(matches[0].title, "The baseline");
    EXPECT_THAT(matches[0].excerpt, testing::StartsWith("The baseline is a stored set"));
    for (const auto& match : matches) EXPECT_NE(match.page, "keyboard.html");
}

TEST_F(HelpBookTest, SearchesAllWordsInAnyLetterCase) {
    const auto matches = book.Search("  LEAKAGE   Baseline ");
    ASSERT_FALSE(matches.empty());
    for (const auto& match : matches) {
        std::string text = TextOfPage(*book.Read(match.page)).text + match.title;
        std::transform(text.begin(), text.end(), text.begin(),
                       [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
        EXPECT_THAT(text, HasSubstr("leakage"));
        EXPECT_THAT(text, HasSubstr("baseline"));
    }
    EXPECT_THAT(book.Search("loudspeaker unicorn"), testing::IsEmpty());
    EXPECT_THAT(book.Search(""), testing::IsEmpty());
    EXPECT_THAT(book.Search(" \n\t"), testing::IsEmpty());
}

TEST_F(HelpBookTest, ShowsWordsAroundTheFirstPlace) {
    const auto matches = book.Search("suppression");
    ASSERT_EQ(matches.size(), 1U);
    EXPECT_THAT(matches[0].excerpt, HasSubstr("suppression"));
    EXPECT_LT(matches[0].excerpt.size(), 200U);
    EXPECT_THAT(matches[0].excerpt, testing::StartsWith("... "));
}

}  // namespace
}  // namespace sonavex
