#include <gmock/gmock.h>

#include "core/mixer/ControlNames.h"
#include "core/mixer/MixerLocators.h"
#include "support/FakeMixerControl.h"

namespace sonavex {
namespace {

using testing::ElementsAre;

const MixerLocator kAbsent{};

FakeMixerControl FullOutput() {
    return FakeMixerControl(
        {{FakeMixerControl::Level("Wave Volume", 65535, 1), FakeMixerControl::Switch("Wave Mute", 1, 1),
          FakeMixerControl::Level("Line Volume", 32768, 2), FakeMixerControl::Switch("Line Mute", 0, 2),
          FakeMixerControl::Level("Microphone Volume", 0, 3),
          FakeMixerControl::Switch("Microphone Mute", 1, 3),
          FakeMixerControl::Level("Master Volume", 6554, 4), FakeMixerControl::Switch("Master Mute", 0, 4)}});
}

FakeMixerControl FullInput() {
    return FakeMixerControl(
        {{FakeMixerControl::Level("Microphone Volume", 13107, 1),
          FakeMixerControl::Level("Line Volume", 26214, 2),
          FakeMixerControl::Switch("Microphone Boost", 1, 1)},
         {FakeMixerControl::Switch("Monitor Off", 1, 5), FakeMixerControl::Switch("Microphone Select", 0, 6),
          FakeMixerControl::Switch("Line Select", 1, 6)}});
}

struct LocatorRig {
    FakeMixerControl output;
    FakeMixerControl input;
    LegacyMixer mixer{output, input};
    const MixerLocatorTable& Locate() {
        SetUpSoundControls(mixer);
        return mixer.MixerLocators;
    }
};

TEST(Locators, FindEveryFunctionOfTheTable) {
    LocatorRig rig{FullOutput(), FullInput()};
    const MixerLocatorTable& table = rig.Locate();
    const auto percent = [](int units) { return static_cast<float>(units / 655.35); };
    EXPECT_EQ(table.MasterVolume, (MixerLocator{4, 0, 6, percent(6554)}));
    EXPECT_EQ(table.MasterMute, (MixerLocator{4, 0, 7, 0.0F}));
    EXPECT_EQ(table.WaveVolume, (MixerLocator{1, 0, 0, percent(65535)}));
    EXPECT_EQ(table.WaveMute, (MixerLocator{1, 0, 1, 1.0F}));
    EXPECT_EQ(table.LineVolume, (MixerLocator{2, 0, 2, percent(32768)}));
    EXPECT_EQ(table.LineMute, (MixerLocator{2, 0, 3, 0.0F}));
    EXPECT_EQ(table.MicVolume, (MixerLocator{3, 0, 4, 0.0F}));
    EXPECT_EQ(table.MicMute, (MixerLocator{3, 0, 5, 1.0F}));
    EXPECT_EQ(table.MicRecord, (MixerLocator{1, 0, 0, percent(13107)}));
    EXPECT_EQ(table.LineRecord, (MixerLocator{2, 0, 1, percent(26214)}));
    EXPECT_EQ(table.MicBoost, (MixerLocator{1, 0, 2, 1.0F}));
    EXPECT_EQ(table.MonitorOff, (MixerLocator{5, 1, 0, 1.0F}));
    EXPECT_EQ(table.MicSource, (MixerLocator{6, 1, 1, 0.0F}));
    EXPECT_EQ(table.LineSource, (MixerLocator{6, 1, 2, 1.0F}));
}

TEST(Locators, OfMixersWithoutControlsAreAllAbsent) {
    LocatorRig rig;
    const MixerLocatorTable& table = rig.Locate();
    for (const MixerLocator* entry :
         {&table.MasterVolume, &table.MasterMute, &table.WaveVolume, &table.WaveMute, &table.LineVolume,
          &table.LineMute, &table.MicVolume, &table.MicMute, &table.MicRecord, &table.LineRecord,
          &table.MicBoost, &table.MonitorOff, &table.MicSource, &table.LineSource})
        EXPECT_EQ(*entry, kAbsent);
}

TEST(Locators, TakeTheFirstMatchByWordsInAnyLetterCase) {
    LocatorRig rig{
        FakeMixerControl(
            {{FakeMixerControl::Level("line-in level", 10)},
             {FakeMixerControl::Level("LINE volume", 20), FakeMixerControl::Level("MASTER", 30),
              FakeMixerControl::Level("master 2", 40), FakeMixerControl::Switch("mAsTeR mUtE", 1)}}),
        FakeMixerControl()};
    const MixerLocatorTable& table = rig.Locate();
    EXPECT_EQ(table.LineVolume.Destination, 0);
    EXPECT_EQ(table.LineVolume.Control, 0);
    EXPECT_EQ(table.MasterVolume.Destination, 1);
    EXPECT_EQ(table.MasterVolume.Control, 1);
    EXPECT_EQ(table.MasterMute.Control, 3);
    EXPECT_EQ(table.WaveVolume, kAbsent);
}

class BoostNames : public testing::TestWithParam<std::pair<const char*, bool>> {};
INSTANTIATE_TEST_SUITE_P(Words, BoostNames,
                         testing::Values(std::pair{"Mic AGC", true}, std::pair{"Mic Gain", true},
                                         std::pair{"mic gain", true}, std::pair{"+20dB", true},
                                         std::pair{"Boost", true}, std::pair{"boost", true},
                                         std::pair{"agc", false}, std::pair{"GAIN", false},
                                         std::pair{"BOOST", false}, std::pair{"Microphone Volume", false}));

TEST_P(BoostNames, AreTestedWithTheirLetterCase) {
    LocatorRig rig{FakeMixerControl(), FakeMixerControl({{FakeMixerControl::Level("Line Volume", 5),
                                                          FakeMixerControl::Switch(GetParam().first, 1)}})};
    const MixerLocatorTable& table = rig.Locate();
    EXPECT_EQ(table.MicBoost.Available(), GetParam().second);
    EXPECT_EQ(table.MicBoost.Value, GetParam().second ? 1.0F : -1.0F);
    EXPECT_EQ(table.MonitorOff, kAbsent);
}

TEST(Locators, PassOverMatchesThatCannotBeRead) {
    LocatorRig rig{
        FakeMixerControl({{FakeMixerControl::Level("Master Volume", -1, 1),
                           FakeMixerControl::Level("Master Volume 2", 65535, 2)}}),
        FakeMixerControl({{FakeMixerControl::Switch("Microphone Boost", -1, 1),
                           FakeMixerControl::Switch("+20dB", 1, 2), FakeMixerControl::Switch("Boost", 0, 3)},
                          {FakeMixerControl::Switch("Monitor Off", 7, 4),
                           FakeMixerControl::Switch("Monitor Off 2", 0, 5)}})};
    const MixerLocatorTable& table = rig.Locate();
    EXPECT_EQ(table.MasterVolume, (MixerLocator{2, 0, 1, 100.0F}));
    EXPECT_EQ(table.MicBoost, (MixerLocator{2, 0, 1, 1.0F}));
    EXPECT_EQ(table.MonitorOff, (MixerLocator{5, 1, 1, 0.0F}));
}

TEST(Locators, OfSlotsThatCannotBeReadAreAbsent) {
    LocatorRig rig{FakeMixerControl(), FakeMixerControl({{FakeMixerControl::Switch("Microphone Boost", -1, 1),
                                                          FakeMixerControl::Switch("Monitor Off", 2, 1)}})};
    const MixerLocatorTable& table = rig.Locate();
    EXPECT_EQ(table.MicBoost, kAbsent);
    EXPECT_EQ(table.MonitorOff, kAbsent);
}

TEST(Locators, DoNotTakeTheBoostForTheMicrophonesLevel) {
    LocatorRig rig{FakeMixerControl(),
                   FakeMixerControl({{FakeMixerControl::Switch("Microphone Boost", 1),
                                      FakeMixerControl::Level("Microphone Volume", 65535)}})};
    EXPECT_EQ(rig.Locate().MicRecord.Control, 1);
}

TEST(Reading, DividesLevelsOnly) {
    FakeMixerControl mixer(
        {{FakeMixerControl::Level("Level", 65535, 9), FakeMixerControl::Switch("Switch", 1, 8)}});
    EXPECT_FLOAT_EQ(ReadLocated(mixer, {9, 0, 0, 0.0F}).Value, 100.0F);
    EXPECT_EQ(ReadLocated(mixer, {8, 0, 1, 0.0F}), (MixerLocator{8, 0, 1, 1.0F}));
}

TEST(Reading, SelectsAllThreeSelectors) {
    FakeMixerControl mixer({{FakeMixerControl::Level("Level", 0, 9)}});
    SelectLocated(mixer, {9, 0, 0, 0.0F});
    EXPECT_EQ(mixer.Line(), 9);
    EXPECT_EQ(mixer.Destination(), 0);
    EXPECT_EQ(mixer.Control(), 0);
}

class OutOfRange : public testing::TestWithParam<std::int32_t> {};
INSTANTIATE_TEST_SUITE_P(Values, OutOfRange, testing::Values(-1, 65536, 2000000000));

TEST_P(OutOfRange, IsNotAvailable) {
    FakeMixerControl mixer({{FakeMixerControl::Level("Level", GetParam())}});
    EXPECT_EQ(ReadLocated(mixer, {0, 0, 0, 50.0F}), kAbsent);
}

TEST(Reading, AcceptsTheLimitsOfTheControlsOwnRange) {
    FakeMixerControl mixer({{{"Steps", 0, {3, 2, 5}, {2, 2}}}});
    EXPECT_EQ(ReadLocated(mixer, {0, 0, 0, 0.0F}).Value, 2.0F);
    mixer.Find("Steps").values = {5, 5};
    EXPECT_EQ(ReadLocated(mixer, {0, 0, 0, 0.0F}).Value, 5.0F);
    mixer.Find("Steps").values = {1, 1};
    EXPECT_FALSE(ReadLocated(mixer, {0, 0, 0, 0.0F}).Available());
}

TEST(Reading, OfAnEntryThatWasNotLocatedAsksNothing) {
    FakeMixerControl mixer({{FakeMixerControl::Level("Level", 100)}});
    mixer.SetLine(7);
    EXPECT_EQ(ReadLocated(mixer, {3, -1, 0, 50.0F}), kAbsent);
    EXPECT_EQ(mixer.Line(), 7);
}

TEST(MixerDevices, MatchByTheBeginningOfTheName) {
    FakeMixerControl mixer;
    mixer.devices = {{"", {}}, {"Card B", {}}, {"Card A", {}}, {"Card", {}}};
    EXPECT_EQ(FindMixerDevice(mixer, "Card A analog stereo"), 2);
    EXPECT_EQ(FindMixerDevice(mixer, "Card C"), 3);
    EXPECT_EQ(FindMixerDevice(mixer, "Car"), -1);
    EXPECT_EQ(FindMixerDevice(mixer, "card a"), -1);
    EXPECT_EQ(FindMixerDevice(mixer, ""), -1);
    mixer.devices = {{"Card", {}}, {"Card A", {}}};
    EXPECT_EQ(FindMixerDevice(mixer, "Card A"), 0) << "the first match wins";
}

}  // namespace
}  // namespace sonavex
