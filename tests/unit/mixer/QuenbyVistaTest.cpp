#include <gmock/gmock.h>

#include "core/mixer/QuenbyVista.h"
#include "core/mixer/VistaSound.h"
#include "support/MemoryHardware.h"

namespace sonavex {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using enum MixerFunction;

constexpr const char* kDefaults = "100,False,0,True,0,True,False,True,0,0,0,100,100,";

TEST(QuenbyVista, LimitsLevels) {
    MemoryCard card;
    std::int32_t status = -1;
    card.library.SetLinePlayBack(150, status);
    EXPECT_EQ(card.library.GetLinePlayBack(status), 100);
    card.library.SetLinePlayBack(-1, status);
    EXPECT_EQ(card.library.GetLinePlayBack(status), 0);
    EXPECT_EQ(status, 0);
}

TEST(QuenbyVista, ReturnsTheMasterLevelThatTheDeviceAccepted) {
    MemoryCard card;
    card.At(kMasterVolume).highest = 64;
    std::int32_t status = -1;
    for (const auto& [wanted, accepted] : {std::pair{37, 37}, {99, 64}, {0, 0}, {64, 64}, {200, 64}}) {
        EXPECT_EQ(card.library.SetMasterVolume(wanted, status), accepted);
        EXPECT_EQ(card.library.GetMasterVolume(status), accepted);
    }
}

TEST(QuenbyVista, WritesNothingWhenTheNearestStepIsThePresentOne) {
    MemoryCard card;
    card.At(kLineVolume) = MemoryHardware::Level({16, 8}, 31);
    std::int32_t status = -1;
    ASSERT_EQ(card.library.GetLinePlayBack(status), 52);
    for (const std::int32_t level : {51, 52, 53}) card.library.SetLinePlayBack(level, status);
    EXPECT_THAT(card.Writes(), IsEmpty());
    card.library.SetLinePlayBack(55, status);
    EXPECT_THAT(card.Writes(), ElementsAre("Write Speakers/LineVolume 17 9"));
    EXPECT_EQ(status, 0);
}

TEST(QuenbyVista, LimitsGainsToTheRange) {
    MemoryCard card;
    std::int32_t status = -1;
    card.library.SetBass(99.0, status);
    EXPECT_EQ(card.library.GetBass(status), 12.0);
    card.library.SetBass(-99.0, status);
    EXPECT_EQ(card.library.GetBass(status), -12.0);
}

TEST(QuenbyVista, TakesTheRangeOfTheFirstToneControl) {
    MemoryCard card;
    card.At(kTreble).gains = GainRange{-5.0, 7.0};
    double minimumDb = 0.0;
    double maximumDb = 0.0;
    std::int32_t status = -1;
    card.library.GetEQRange(minimumDb, maximumDb, status);
    EXPECT_EQ(std::pair(minimumDb, maximumDb), std::pair(-12.0, 12.0));
    card.Remove(kBass);
    card.Remove(kMidRange);
    card.library.GetEQRange(minimumDb, maximumDb, status);
    EXPECT_EQ(std::pair(minimumDb, maximumDb), std::pair(-5.0, 7.0));
    EXPECT_EQ(status, 0);
    card.Remove(kTreble);
    card.library.GetEQRange(minimumDb, maximumDb, status);
    EXPECT_EQ(std::pair(minimumDb, maximumDb), std::pair(0.0, 0.0));
    EXPECT_NE(status, 0);
}

TEST(QuenbyVista, WithoutControlsReportsDefaults) {
    MemoryCard card({}, {});
    EXPECT_EQ(VistaSound::GetVistaMixerState(card.library), kDefaults);
    std::int32_t status = 0;
    static_cast<void>(card.library.SetMasterVolume(3, status));
    EXPECT_EQ(status, 1);
}

TEST(QuenbyVista, OfADeviceThatIsGoneReportsDefaults) {
    MemoryCard card;
    card.hardware.playback.clear();
    card.hardware.capture.clear();
    EXPECT_EQ(VistaSound::GetVistaMixerState(card.library), kDefaults);
    std::int32_t status = 0;
    card.library.SetMasterMute(true, status);
    EXPECT_EQ(status, 2);
}

TEST(QuenbyVista, ClosedHasNoControls) {
    MemoryCard card;
    std::int32_t status = -1;
    card.library.CloseSoundCard(status);
    EXPECT_EQ(status, 0);
    EXPECT_EQ(VistaSound::GetVistaMixerState(card.library), kDefaults);
    static_cast<void>(card.library.GetMasterVolume(status));
    EXPECT_EQ(status, 2);
    static_cast<void>(card.library.SetMasterVolume(3, status));
    EXPECT_EQ(status, 2);
    card.library.OpenSoundCard("Speakers", "Microphone", "", status);
    EXPECT_EQ(status, 0);
    EXPECT_EQ(VistaSound::GetVistaMixerState(card.library), kMemoryCardLine);
}

TEST(QuenbyVista, OfUnknownNamesHasNoControls) {
    MemoryCard card;
    std::int32_t status = 0;
    card.library.OpenSoundCard("no such device", "", "", status);
    EXPECT_NE(status, 0);
    EXPECT_EQ(VistaSound::GetVistaMixerState(card.library), kDefaults);
}

TEST(QuenbyVista, BindsOneSideAlone) {
    MemoryCard card;
    std::int32_t status = -1;
    card.library.OpenSoundCard("no such device", "Microphone", "", status);
    EXPECT_EQ(status, 0);
    EXPECT_EQ(VistaSound::GetVistaMixerState(card.library),
              "100,False,0,True,0,True,False,True,0,0,0,70,60,");
}

TEST(QuenbyVista, RequiresTheReservedTextToBeEmpty) {
    MemoryCard card;
    std::int32_t status = 0;
    card.library.CloseSoundCard(status);
    card.library.OpenSoundCard("Speakers", "Microphone", "x", status);
    EXPECT_NE(status, 0);
    EXPECT_EQ(VistaSound::GetVistaMixerState(card.library), kDefaults);
}

TEST(QuenbyVista, KeepsTheBalance) {
    MemoryCard card;
    std::int32_t status = -1;
    card.library.SetMasterVolume(40, status);
    EXPECT_THAT(card.At(kMasterVolume).values, ElementsAre(40, 20));
}

TEST(QuenbyVista, ReadsASwitchAsOnWhenEveryChannelIs) {
    MemoryCard card(
        {{kMasterMute, MemoryHardware::Switch({1, 0})}},
        {{kMicBoost, MemoryHardware::Switch({0, 1})}, {kMonitorOff, MemoryHardware::Switch({1, 0})}});
    std::int32_t status = -1;
    EXPECT_FALSE(card.library.GetMasterMute(status));
    EXPECT_FALSE(card.library.GetMicBoost(status));
    EXPECT_FALSE(card.library.GetNoMonitor(status));
    card.library.SetMasterMute(true, status);
    card.library.SetMicBoost(true, status);
    card.library.SetNoMonitor(true, status);
    EXPECT_THAT(card.At(kMasterMute).values, ElementsAre(1, 1));
    EXPECT_THAT(card.At(kMicBoost).values, ElementsAre(1, 1));
    EXPECT_THAT(card.At(kMonitorOff).values, ElementsAre(1, 1));
    card.library.SetMasterMute(false, status);
    EXPECT_THAT(card.At(kMasterMute).values, ElementsAre(0, 0));
}

TEST(QuenbyVista, WritesNothingThatDoesNotChange) {
    MemoryCard card;
    card.At(kMasterMute).values = {1, 0};
    card.At(kMasterVolume) = MemoryHardware::Level({61, 20}, 87);
    VistaSound::SetVistaMixerState(card.library, VistaSound::GetVistaMixerState(card.library));
    EXPECT_THAT(card.Writes(), IsEmpty());
}

}  // namespace
}  // namespace sonavex
