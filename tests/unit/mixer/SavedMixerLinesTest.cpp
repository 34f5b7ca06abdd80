// Saved lines that cannot be applied.

#include <gmock/gmock.h>

#include "unit/mixer/MixerGenerations.h"

namespace sonavex {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::SizeIs;

struct BadLine {
    std::string line;
    const char* number;
};
class BadLines : public testing::TestWithParam<BadLine> {};
INSTANTIATE_TEST_SUITE_P(Lines, BadLines,
                         testing::Values(BadLine{"50,True", "'5'"}, BadLine{"50,loud,", "'13'"},
                                         BadLine{"50,,", "'13'"}, BadLine{"99999999999,", "'6'"},
                                         BadLine{std::string(10000, 'n'), "'5'"}));

TEST_P(BadLines, AreReportedAndTheStartContinues) {
    NewerWorld world;
    world.store.Save("Settings", "VistaSoundCard", GetParam().line);
    world.Start();
    const auto messages = world.log.Of("Message");
    ASSERT_THAT(messages, SizeIs(1));
    EXPECT_THAT(messages[0], HasSubstr(GetParam().number));
    EXPECT_THAT(messages[0], HasSubstr("VistaSoundCard"));
    EXPECT_LT(messages[0].size(), 600U);
    if (GetParam().line.starts_with("50")) {
        EXPECT_EQ(world.Master()[0], 50) << "the fields before stay applied";
    }
    EXPECT_EQ(world.store.Get("Settings", "VistaSoundCard", ""), GetParam().line);
    EXPECT_GE(world.mixers.Speaker.SpeakerVolumeControl, 0) << "the start continued";
    world.mixers.SaveAndRestoreInitial();
    world.Bind();
    EXPECT_EQ(world.Line(), kMemoryCardLine);
}

// A message that ends in the middle of a character cannot be shown.
TEST(NewerMixers, ShortenALongBadLineBetweenCharacters) {
    NewerWorld world;
    std::string line = "x";
    for (int i = 0; i < 100; ++i) line += "\xC3\xBC";
    world.store.Save("Settings", "VistaSoundCard", line);
    world.Start();
    const auto messages = world.log.Of("Message");
    ASSERT_THAT(messages, SizeIs(1));
    EXPECT_THAT(messages[0], HasSubstr("\"" + line.substr(0, 1 + 2 * 79) + "...\""));
}

TEST(OlderMixers, ReportABadLineAndApplyTheOther) {
    OlderWorld world;
    world.store.Save("Settings", "SoundCard", "0,Microphone");
    world.store.Save("Settings", "OutSoundCard", "0,Master Volume,8,9,");
    world.Start();
    ASSERT_THAT(world.log.Of("Message"), SizeIs(1));
    EXPECT_THAT(world.log.Of("Message")[0], HasSubstr("'5'"));
    EXPECT_THAT(world.Values(MixerFunction::kMasterVolume), ElementsAre(8, 9));
}

}  // namespace
}  // namespace sonavex
