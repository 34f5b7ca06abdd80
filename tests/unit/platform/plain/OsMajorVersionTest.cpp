#include <gtest/gtest.h>

#include "platform/plain/OsMajorVersion.h"

namespace sonavex {
namespace {

TEST(OsMajorVersion, IsTenUnlessAnotherIsRequested) {
    EXPECT_EQ(ParseOsMajorVersion(""), 10);
    EXPECT_EQ(ParseOsMajorVersion("1"), 1);
    EXPECT_EQ(ParseOsMajorVersion("5"), 5);
    EXPECT_EQ(ParseOsMajorVersion("11"), 11);
    EXPECT_EQ(ParseOsMajorVersion("1000"), 1000);
}

TEST(OsMajorVersion, TakesNothingButAWholeNumberOf1To1000) {
    for (const char* const text : {"five", "new", "5x", " 5", "5 ", "5.5", "5.0", "+5", "-5", "0", "1001",
                                   "99999999999", "1e1", "&H5"})
        EXPECT_EQ(ParseOsMajorVersion(text), std::nullopt) << text;
}

}  // namespace
}  // namespace sonavex
