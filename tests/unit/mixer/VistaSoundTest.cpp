#include <gmock/gmock.h>

#include "core/mixer/VistaSound.h"
#include "support/Errors.h"
#include "support/FakeMixerControl.h"
#include "support/MemoryVista.h"

namespace sonavex {
namespace {

using testing::ElementsAre;
using testing::ElementsAreArray;

const std::vector<std::string> kFields{
    "MasterVolume",    "MasterMute", "LinePlayBack", "LinePlayBackMute", "MicPlayBack", "MicPlayBackMute",
    "MicBoost",        "NoMonitor",  "Bass",         "MidRange",         "Treble",      "MicRecordVolume",
    "LineRecordVolume"};

std::vector<std::string> Operations(const std::string& prefix, std::size_t count) {
    std::vector<std::string> names;
    for (std::size_t i = 0; i < count; ++i) names.push_back(prefix + kFields[i]);
    return names;
}

std::vector<std::string> OperationsOf(const CallLog& log) {
    std::vector<std::string> names;
    for (const std::string& line : log.Lines()) names.push_back(line.substr(0, line.find(' ')));
    return names;
}

TEST(StateLine, CallsTheGetsInTheFieldsOrder) {
    CallLog log;
    MemoryVista card(log);
    EXPECT_EQ(VistaSound::GetVistaMixerState(card), "80,False,30,True,20,True,False,True,-1.5,0,6,70,60,");
    EXPECT_THAT(log.Lines(), ElementsAreArray(Operations("Get", 13)));
}

TEST(StateLine, CallsTheSetsInTheFieldsOrder) {
    CallLog log;
    MemoryVista card(log);
    VistaSound::SetVistaMixerState(card, "1,True,2,False,3,False,True,False,-.5,1E+1,2.25,4.5,5.5,");
    EXPECT_THAT(log.Lines(), ElementsAre("SetMasterVolume 1", "SetMasterMute True", "SetLinePlayBack 2",
                                         "SetLinePlayBackMute False", "SetMicPlayBack 3",
                                         "SetMicPlayBackMute False", "SetMicBoost True", "SetNoMonitor False",
                                         "SetBass -0.500000", "SetMidRange 10.000000", "SetTreble 2.250000",
                                         "SetMicRecordVolume 4", "SetLineRecordVolume 6"));
}

TEST(StateLine, RoundTrips) {
    CallLog log;
    MemoryVista card(log);
    card.bass = -0.25;
    card.treble = 1e-5;
    const std::string line = VistaSound::GetVistaMixerState(card);
    MemoryVista other(log);
    VistaSound::SetVistaMixerState(other, line);
    EXPECT_EQ(VistaSound::GetVistaMixerState(other), line);
    EXPECT_THAT(line, testing::HasSubstr(",-.25,0,1E-05,"));
}

TEST(StateLine, AcceptsNumbersForSwitchesBlanksAndTrailingText) {
    CallLog log;
    MemoryVista card(log);
    VistaSound::SetVistaMixerState(card, " 7 ,-1,2,0,3,1,false,TRUE,0,0,0,4,5,whatever follows");
    EXPECT_EQ(VistaSound::GetVistaMixerState(card), "7,True,2,False,3,True,False,True,0,0,0,4,5,");
}

struct MalformedLine {
    std::string line;
    std::int32_t error;
    std::size_t applied;  // fields before the one that is wrong
};
class MalformedLines : public testing::TestWithParam<MalformedLine> {};
INSTANTIATE_TEST_SUITE_P(
    Lines, MalformedLines,
    testing::Values(MalformedLine{"", 5, 0}, MalformedLine{"50", 5, 0}, MalformedLine{"50,", 5, 1},
                    MalformedLine{"50,True", 5, 1}, MalformedLine{"50,True,40,False,30", 5, 4},
                    MalformedLine{"80,False,30,True,20,True,False,True,-1.5,0,6,70,60", 5, 12},
                    MalformedLine{"fifty,True,", 13, 0}, MalformedLine{",True,", 13, 0},
                    MalformedLine{"50,,", 13, 1}, MalformedLine{"50,perhaps,", 13, 1},
                    MalformedLine{"50,True,40,True,30,True,False,True,loud,", 13, 8},
                    MalformedLine{"50,True,40,True,30,True,False,True,1,2,3,x,", 13, 11},
                    MalformedLine{"50,True,40,True,30,True,False,True,1,2,3,4,,", 13, 12},
                    MalformedLine{"9999999999,", 6, 0}, MalformedLine{"50,True,-9999999999,", 6, 2},
                    MalformedLine{"50,True,40,True,30,True,False,True,1e999,", 6, 8},
                    MalformedLine{"50,True,40,True,30,True,False,True,1,2,3,4e9,", 6, 11},
                    MalformedLine{std::string(10000, 'z'), 5, 0},
                    MalformedLine{std::string(10000, ','), 13, 0},
                    MalformedLine{"50,True," + std::string(10000, '\xff') + ",", 13, 2}));

TEST_P(MalformedLines, RaiseTheirErrorAfterTheFieldsBefore) {
    CallLog log;
    MemoryVista card(log);
    EXPECT_EQ(ErrorOf([&] {
                  VistaSound::SetVistaMixerState(card, GetParam().line);
                  return 0;
              }),
              GetParam().error);
    EXPECT_EQ(OperationsOf(log), Operations("Set", GetParam().applied));
}

TEST(StateToSave, KeepsTheFieldsOfControlsThatTheCardLacks) {
    CallLog log;
    MemoryVista card(log);
    card.missing = {"MicBoost", "Bass", "MicRecordVolume", "LineRecordVolume"};
    EXPECT_EQ(VistaSound::StateToSave(card, "1,True,2,False,3,False,True,False,4.5,5,6,33,44,"),
              "80,False,30,True,20,True,True,True,4.5,0,6,33,44,");
    EXPECT_EQ(OperationsOf(log), Operations("Get", 13));
}

TEST(StateToSave, IsThePresentStateOfACardWithEverything) {
    CallLog log;
    MemoryVista card(log);
    EXPECT_EQ(VistaSound::StateToSave(card, "1,True,2,False,3,False,True,False,4.5,5,6,33,44,"),
              VistaSound::GetVistaMixerState(card));
}

// A field that cannot be applied is not handed on.
TEST(StateToSave, TakesNothingFromALineThatDoesNotConvert) {
    CallLog log;
    MemoryVista card(log);
    card.missing = {"MicBoost", "MicRecordVolume", "LineRecordVolume"};
    const std::string present = VistaSound::GetVistaMixerState(card);
    for (const char* before : {"", "noise", "1,2,3,", "1,True,2,False,3,False,maybe,False,4.5,5,6,loud,,"})
        EXPECT_EQ(VistaSound::StateToSave(card, before), present) << before;
}

TEST(SpeakerControls, AreTheLastOnesOfTheirNames) {
    FakeMixerControl mixer(
        {{FakeMixerControl::Level("Wave Volume", 1, 1), FakeMixerControl::Switch("Wave Mute", 1, 1)},
         {FakeMixerControl::Level("master vol", 30000, 2), FakeMixerControl::Level("Bass", 9),
          FakeMixerControl::Switch("muting", 1, 3)}});
    mixer.Find("master vol").values = {30000, 7};
    const SpeakerLocators found = VistaSound::SetUpVistaSoundControls(mixer);
    EXPECT_EQ(found.SpeakerVolumeControl, 0);
    EXPECT_EQ(found.SpeakerVolumeDestination, 1);
    EXPECT_EQ(found.SpeakerVolumeLineInfo, 2);
    EXPECT_EQ(found.SpeakerVolumeValue, 30000.0F);
    EXPECT_EQ(found.SpeakerMuteControl, 2);
    EXPECT_EQ(found.SpeakerMuteDestination, 1);
    EXPECT_EQ(found.SpeakerMuteLineInfo, 3);
    EXPECT_EQ(found.SpeakerMuteValue, 1.0F);
}

TEST(SpeakerControls, MayBeOneControlWithBothWords) {
    FakeMixerControl mixer({{FakeMixerControl::Level("Volume or mute", 5)}});
    const SpeakerLocators found = VistaSound::SetUpVistaSoundControls(mixer);
    EXPECT_EQ(found.SpeakerVolumeControl, 0);
    EXPECT_EQ(found.SpeakerMuteControl, 0);
}

TEST(SpeakerControls, OfAMixerWithoutThemAreAbsent) {
    FakeMixerControl mixer({{FakeMixerControl::Level("Bass", 5)}, {}});
    const SpeakerLocators found = VistaSound::SetUpVistaSoundControls(mixer);
    EXPECT_EQ(found.SpeakerVolumeControl, -1);
    EXPECT_EQ(found.SpeakerMuteControl, -1);
}

}  // namespace
}  // namespace sonavex
