#include <gmock/gmock.h>

#include "core/mixer/VistaSound.h"
#include "support/Errors.h"
#include "support/FakeMixerControl.h"
#include "support/MemoryHardware.h"

namespace sonavex {
namespace {

// The controls in the order of the fields.
const std::vector<std::string> kFields{
    "Speakers/MasterVolume", "Speakers/MasterMute", "Speakers/LineVolume", "Speakers/LineMute",
    "Speakers/MicVolume",    "Speakers/MicMute",    "Microphone/MicBoost", "Microphone/MonitorOff",
    "Speakers/Bass",         "Speakers/MidRange",   "Speakers/Treble",     "Microphone/MicRecord",
    "Microphone/LineRecord"};

std::vector<std::string> FirstFields(std::size_t count) {
    return {kFields.begin(), kFields.begin() + static_cast<std::ptrdiff_t>(count)};
}

// The controls that the operation reached, in order. Setting the master reads it twice.
std::vector<std::string> Reached(const CallLog& log, const std::string& operation) {
    std::vector<std::string> names;
    for (const std::string& line : log.Of(operation)) {
        const std::string rest = line.substr(operation.size() + 1);
        const std::string name = rest.substr(0, rest.find(' '));
        if (names.empty() || names.back() != name) names.push_back(name);
    }
    return names;
}

TEST(StateLine, ReadsTheControlsInTheFieldsOrder) {
    MemoryCard card;
    EXPECT_EQ(VistaSound::GetVistaMixerState(card.library),
              "80,False,30,True,20,True,False,True,-1.5,0,6,70,60,");
    EXPECT_EQ(Reached(card.log, "Read"), kFields);
    EXPECT_EQ(card.log.Lines().size(), kFields.size());
}

TEST(StateLine, WritesTheControlsInTheFieldsOrder) {
    MemoryCard card;
    for (const MixerFunction tone : {MixerFunction::kBass, MixerFunction::kMidRange, MixerFunction::kTreble})
        card.At(tone) = {{-64, 64}, {0}, GainRange{-16.0, 16.0}};
    VistaSound::SetVistaMixerState(card.library, "1,True,2,False,3,False,True,False,-.5,1E+1,2.25,4.5,5.5,");
    EXPECT_EQ(Reached(card.log, "Write"), kFields);
    EXPECT_EQ(VistaSound::GetVistaMixerState(card.library),
              "1,True,2,False,3,False,True,False,-.5,10,2.25,4,6,")
        << "halves of the record levels are rounded to even";
}

TEST(StateLine, RoundTrips) {
    MemoryCard card;
    card.At(MixerFunction::kBass) = {{0, 1}, {0}, GainRange{-0.25, 0.5}};
    card.At(MixerFunction::kTreble) = {{0, 1}, {1}, GainRange{0.0, 1e-5}};
    const std::string line = VistaSound::GetVistaMixerState(card.library);
    MemoryCard other;
    other.At(MixerFunction::kBass) = {{0, 1}, {1}, GainRange{-0.25, 0.5}};
    other.At(MixerFunction::kTreble) = {{0, 1}, {0}, GainRange{0.0, 1e-5}};
    VistaSound::SetVistaMixerState(other.library, line);
    EXPECT_EQ(VistaSound::GetVistaMixerState(other.library), line);
    EXPECT_THAT(line, testing::HasSubstr(",-.25,0,1E-05,"));
}

TEST(StateLine, AcceptsNumbersForSwitchesBlanksAndTrailingText) {
    MemoryCard card;
    VistaSound::SetVistaMixerState(card.library, " 7 ,-1,2,0,3,1,false,TRUE,0,0,0,4,5,whatever follows");
    EXPECT_EQ(VistaSound::GetVistaMixerState(card.library), "7,True,2,False,3,True,False,True,0,0,0,4,5,");
}

struct MalformedLine {
    std::string line;
    std::int32_t error;
    std::size_t applied;  // number of fields before the wrong one
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
    MemoryCard card;
    EXPECT_EQ(ErrorOf([&] {
                  VistaSound::SetVistaMixerState(card.library, GetParam().line);
                  return 0;
              }),
              GetParam().error);
    EXPECT_EQ(Reached(card.log, "Read"), FirstFields(GetParam().applied));
}

TEST(StateToSave, KeepsTheFieldsOfControlsThatTheCardLacks) {
    MemoryCard card;
    for (const MixerFunction missing : {MixerFunction::kMicBoost, MixerFunction::kBass,
                                        MixerFunction::kMicRecord, MixerFunction::kLineRecord})
        card.Remove(missing);
    EXPECT_EQ(VistaSound::StateToSave(card.library, "1,True,2,False,3,False,True,False,4.5,5,6,33,44,"),
              "80,False,30,True,20,True,True,True,4.5,0,6,33,44,");
    EXPECT_THAT(card.Writes(), testing::IsEmpty());
}

TEST(StateToSave, IsThePresentStateOfACardWithEverything) {
    MemoryCard card;
    EXPECT_EQ(VistaSound::StateToSave(card.library, "1,True,2,False,3,False,True,False,4.5,5,6,33,44,"),
              VistaSound::GetVistaMixerState(card.library));
}

// A field that does not convert is not copied.
TEST(StateToSave, TakesNothingFromALineThatDoesNotConvert) {
    MemoryCard card;
    for (const MixerFunction missing :
         {MixerFunction::kMicBoost, MixerFunction::kMicRecord, MixerFunction::kLineRecord})
        card.Remove(missing);
    const std::string present = VistaSound::GetVistaMixerState(card.library);
    for (const char* before : {"", "noise", "1,2,3,", "1,True,2,False,3,False,maybe,False,4.5,5,6,loud,,"})
        EXPECT_EQ(VistaSound::StateToSave(card.library, before), present) << before;
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
