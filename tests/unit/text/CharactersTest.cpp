#include <gtest/gtest.h>

#include <string>

#include "core/text/Characters.h"

namespace sonavex {
namespace {

TEST(LeftCharacters, OfPlainText) {
    EXPECT_EQ(Left("", 5), "");
    EXPECT_EQ(Left("abc", 0), "");
    EXPECT_EQ(Left("abc", 2), "ab");
    EXPECT_EQ(Left("abc", 3), "abc");
    EXPECT_EQ(Left("abc", 50), "abc");
}

TEST(LeftCharacters, AreNeverCutInside) {
    EXPECT_EQ(Left("\u00e4\u00f6\u00fc", 2), "\u00e4\u00f6");
    EXPECT_EQ(Left("\u20ac5", 1), "\u20ac");
    EXPECT_EQ(Left("\U0001F3A4\U0001F3A7", 1), "\U0001F3A4");
}

TEST(LeftCharacters, OfBytesThatAreNoCharactersCountOneByOne) {
    EXPECT_EQ(Left("\x80\x80"
                   "a",
                   2),
              "\x80\x80");
    EXPECT_EQ(Left("\xC3"
                   "ab",
                   2),
              "\xC3"
              "a");
    EXPECT_EQ(Left("\xFF"
                   "ab",
                   1),
              "\xFF");
    const std::string cut = "\xE2\x82";
    EXPECT_EQ(Left(cut, 1), cut);
}

}  // namespace
}  // namespace sonavex
