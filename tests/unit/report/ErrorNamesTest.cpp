#include <gtest/gtest.h>

#include <limits>

#include "core/report/ErrorNames.h"
#include "core/text/Dates.h"
#include "core/text/Numbers.h"

namespace sonavex {
namespace {

struct NameRow {
    std::uint32_t number;
    const char* name;
};

class SoundErrorNames : public testing::TestWithParam<NameRow> {};
INSTANTIATE_TEST_SUITE_P(
    Table, SoundErrorNames,
    testing::Values(NameRow{0x88781161U, "DSERR_OBJECTNOTFOUND"}, NameRow{7, "DSERR_OUTOFMEMORY"},
                    NameRow{430, "DSERR_NOINTERFACE"}, NameRow{0x887800BEU, "DSERR_DS8_REQUIRED"},
                    NameRow{0x88780096U, "DSERR_BUFFERLOST"}, NameRow{0x887800A0U, "DSERR_OTHERAPPHASPRIO"},
                    NameRow{0x887800AAU, "DSERR_UNINITIALIZED"}, NameRow{0x887800B4U, "DSERR_BUFFERTOOSMALL"},
                    NameRow{0x88780082U, "DSERR_ALREADYINITIALIZED"},
                    NameRow{0x88780032U, "DSERR_INVALIDCALL"}, NameRow{0x88780046U, "DSERR_PRIOLEVELNEEDED"},
                    NameRow{0x88780064U, "DSERR_BADFORMAT"}, NameRow{0x88780078U, "DSERR_NODRIVER"},
                    NameRow{0x8878001EU, "DSERR_CONTROLUNAVAIL"}, NameRow{0x8878000AU, "DSERR_ALLOCATED"},
                    NameRow{0x80070057U, "DSERR_INVALIDPARAM"}, NameRow{0x80004001U, "DSERR_UNSUPPORTED"},
                    NameRow{0x80004005U, "DSERR_GENERIC"}));

TEST_P(SoundErrorNames, HaveOneNumberEach) {
    const auto number = static_cast<std::int32_t>(GetParam().number);
    EXPECT_STREQ(SoundErrorName(number), GetParam().name);
    // No two numbers of the table are adjacent.
    EXPECT_STREQ(SoundErrorName(number + 1), "DSERR_UNKNOWN");
    EXPECT_STREQ(SoundErrorName(number - 1), "DSERR_UNKNOWN");
}

TEST(SoundErrorName, OfAnyOtherNumberIsUnknown) {
    for (const std::int32_t number : {0, 91, -1, std::numeric_limits<std::int32_t>::max()})
        EXPECT_STREQ(SoundErrorName(number), "DSERR_UNKNOWN") << number;
}

TEST(Hexadecimal, IsCapitalUnpaddedAndTwosComplement) {
    EXPECT_EQ(Hex(0), "0");
    EXPECT_EQ(Hex(7), "7");
    EXPECT_EQ(Hex(430), "1AE");
    EXPECT_EQ(Hex(-2005401450), "88780096");
    EXPECT_EQ(Hex(-1), "FFFFFFFF");
    EXPECT_EQ(Hex(std::numeric_limits<std::int32_t>::min()), "80000000");
    EXPECT_EQ(Hex(std::numeric_limits<std::int32_t>::max()), "7FFFFFFF");
}

TEST(DateAndTimeText, IsPaddedAndCountsHoursTo24) {
    EXPECT_EQ(DateAndTime({2024, 3, 9, 7, 5, 0}), "2024-03-09 07:05:00");
    EXPECT_EQ(DateAndTime({2031, 12, 31, 23, 59, 59}), "2031-12-31 23:59:59");
    EXPECT_EQ(DateAndTime({987, 1, 2, 3, 4, 5}), "0987-01-02 03:04:05");
}

}  // namespace
}  // namespace sonavex
