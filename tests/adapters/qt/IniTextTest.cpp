#include <gtest/gtest.h>

#include <random>

#include "platform/plain/IniText.h"

namespace sonavex {
namespace {

std::string Value(const std::string& text) {
    const IniReading reading = ReadIni("[s]\nk=" + text + "\n");
    EXPECT_FALSE(reading.damaged) << text;
    return reading.sections.at("s").at("k");
}

TEST(IniText, TakesAPlainValueAsItIs) {
    EXPECT_EQ(Value("1000"), "1000");
    EXPECT_EQ(Value("  -50 \t"), "-50");
    EXPECT_EQ(Value(""), "");
    EXPECT_EQ(Value("a, b,c"), "a, b,c");
    EXPECT_EQ(Value("50% ; of it # all"), "50% ; of it # all");
    EXPECT_EQ(Value("C:\\new"), "C:\\new");
    EXPECT_EQ(Value("x=y=z"), "x=y=z");
    EXPECT_EQ(Value("@Invalid()"), "@Invalid()");
    EXPECT_EQ(Value("\xC3\xA4 \xE4"), "\xC3\xA4 \xE4");
}

TEST(IniText, TakesAwayQuotationMarksThatEncloseTheValue) {
    EXPECT_EQ(Value("\"  .8399\""), "  .8399");
    EXPECT_EQ(Value(" \"\" "), "");
    EXPECT_EQ(Value(R"("a \"b\" \\ \n\r\t\x41\xfF")"), "a \"b\" \\ \n\r\tA\xFF");
    EXPECT_EQ(Value(R"("C:\Dir\x4")"), "C:\\Dir\\x4");
}

TEST(IniText, LeavesOtherQuotationMarksAlone) {
    for (const std::string text : {"\"", "\"open", "\"a\", \"b\"", "\"a\"b", "a \"b\"", R"("open\")"})
        EXPECT_EQ(Value(text), text);
}

TEST(IniText, ReadsWhatPeopleWrite) {
    const IniReading reading = ReadIni(
        "\xEF\xBB\xBFloose = 1\r\n"
        "; a comment = 1\r\n  # another\r\n\r\n"
        " [ Signal Generator ] \r\n"
        "  Memory Signal Start 3 = 440\r\n"
        "\"  odd = key \" = 2\n"
        "[Windows]\nLastTab=1\n"
        "[Signal Generator]\nLevel=-50\nMemory Signal Start 3=441\n"
        "[]\nempty=3\n[\" s\"]\nlast=4");
    EXPECT_FALSE(reading.damaged);
    const IniSections expected{
        {"", {{"loose", "1"}, {"empty", "3"}}},
        {"Signal Generator", {{"Memory Signal Start 3", "441"}, {"  odd = key ", "2"}, {"Level", "-50"}}},
        {"Windows", {{"LastTab", "1"}}},
        {" s", {{"last", "4"}}}};
    EXPECT_EQ(reading.sections, expected);
}

TEST(IniText, TakesTheRestWhenALineCannotBeUnderstood) {
    const IniReading reading = ReadIni("[a]\nk=1\nnonsense\n[b\nl=2\n");
    EXPECT_TRUE(reading.damaged);
    const IniSections expected{{"a", {{"k", "1"}, {"l", "2"}}}};
    EXPECT_EQ(reading.sections, expected);
}

TEST(IniText, TakesNothingOfBinaryData) {
    for (const char code : {'\0', '\x01', '\x1F', '\x7F'}) {
        const IniReading reading = ReadIni("[a]\nk=1\n" + std::string(1, code) + "\n");
        EXPECT_TRUE(reading.damaged);
        EXPECT_TRUE(reading.sections.empty());
    }
    EXPECT_FALSE(ReadIni("").damaged);
    EXPECT_FALSE(ReadIni("\n\n \t\n").damaged);
}

TEST(IniText, WritesForPeople) {
    const std::string text = WriteIni(
        {{"Signal Generator", {{"Memory Signal Start 3", "440"}, {"Level", "-50"}, {"Input", "a,b"}}},
         {"Settings", {{"THD 0", " .8399"}}},
         {"nothing", {}}});
    const std::string body = text.substr(text.find("\n["));
    EXPECT_EQ(body,
              "\n[Settings]\nTHD 0=\" .8399\"\n"
              "\n[Signal Generator]\nInput=a,b\nLevel=-50\nMemory Signal Start 3=440\n");
    EXPECT_EQ(text.front(), ';');
}

TEST(IniText, ReadsBackWhateverItWrites) {
    std::mt19937 random(20260);
    const std::string letters = "ab \t\"\\=[];#\r\nx4n%,\xC3\xA4\xFF" + std::string("\0\x01\x7F", 3);
    const auto anyText = [&] {
        std::string text;
        for (std::size_t length = random() % 6; length > 0; --length)
            text += letters[random() % letters.size()];
        return text;
    };
    for (int round = 0; round < 3000; ++round) {
        IniSections sections;
        for (int i = 0; i < 6; ++i) sections[anyText()][anyText()] = anyText();
        const IniReading reading = ReadIni(WriteIni(sections));
        ASSERT_FALSE(reading.damaged);
        ASSERT_EQ(reading.sections, sections);
    }
}

}  // namespace
}  // namespace sonavex
