#include <gmock/gmock.h>

#include "platform/chm/Html.h"

namespace sonavex {
namespace {

TEST(HtmlTest, DecodesEntities) {
    EXPECT_EQ(DecodeEntities("a &amp; b &lt;&gt; &quot;c&quot;"), "a & b <> \"c\"");
    EXPECT_EQ(DecodeEntities("&#181;&#x2212;&#X2126;&#128522;"),
              "\xC2\xB5\xE2\x88\x92\xE2\x84\xA6\xF0\x9F\x98\x8A");
}

TEST(HtmlTest, LeavesWhatIsNoEntity) {
    for (const char* text : {"&", "&&", "a&b", "&;", "&unknown;", "&#;", "&#x;", "&#0;", "&#xD800;",
                             "&#99999999;", "&#12x;", "&amp", "& amp;"})
        EXPECT_EQ(DecodeEntities(text), text);
}

// Only a few characters after an ampersand are checked; otherwise a page of ampersands would take quadratic
// time.
TEST(HtmlTest, ReadsAPageOfAmpersandsInOneGo) {
    const std::string ampersands(4U << 20U, '&');
    EXPECT_EQ(DecodeEntities(ampersands), ampersands);
    EXPECT_EQ(DecodeEntities(ampersands + "lt;"), ampersands.substr(1) + "<");
}

TEST(HtmlTest, ReadsTagsAndAttributes) {
    HtmlReader reader("x<PARAM Name=\"Local\" value='a &amp; b' checked size=3/>y");
    std::string text;
    HtmlTag tag;
    ASSERT_TRUE(reader.Next(text, tag));
    EXPECT_EQ(text, "x");
    EXPECT_EQ(tag.name, "param");
    EXPECT_EQ(tag.Attribute("name"), "Local");
    EXPECT_EQ(tag.Attribute("value"), "a & b");
    EXPECT_EQ(tag.Attribute("missing"), "");
    EXPECT_FALSE(reader.Next(text, tag));
    EXPECT_EQ(text, "y");
    EXPECT_FALSE(reader.Next(text, tag));
    EXPECT_EQ(text, "");
}

TEST(HtmlTest, EndsWithAnyInput) {
    for (const char* html : {"<", "<a", "<a b", "<a b=", "<a b=\"", "<a b=\"c", "<>", "</>", "<a =x>",
                             "<a = = =>", "a<b>c<", "<a b='>", "&<&>&"}) {
        HtmlReader reader(html);
        std::string text;
        HtmlTag tag;
        int tags = 0;
        while (reader.Next(text, tag) && tags < 100) ++tags;
        EXPECT_LT(tags, 100) << html;
    }
}

TEST(HtmlTest, TakesTheTextOfAPage) {
    const PageText page = TextOfPage(
        "<html><head><title>The  title</title><style>p { color: red }</style></head><body><h1>Head</h1>"
        "<p>One <b>t</b>wo,\n three.</p><td>a</td><td>b &lt; c</td></body>");
    EXPECT_EQ(page.title, "The title");
    EXPECT_EQ(page.text, "Head One two, three. a b < c");
}

}  // namespace
}  // namespace sonavex
