#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "core/settings/SampleRates.h"
#include "core/settings/Settings.h"
#include "core/settings/SettingsKeys.h"
#include "platform/plain/MemorySettingsStore.h"

namespace sonavex {
namespace {

struct Row {
    SettingsKey key;
    const char* section;
    const char* name;
    const char* fallback;
};

const std::vector<Row> kTable{
    {keys::kAuto, "Settings", "Auto", "1"},
    {keys::kBaseline, "Settings", "Baseline", "0"},
    {keys::kThd, "Settings", "THD", "0"},
    {keys::kDb, "Settings", "DB", "0"},
    {keys::kInputMixerState, "Settings", "SoundCard", ""},
    {keys::kOutputMixerState, "Settings", "OutSoundCard", ""},
    {keys::kVistaMixerState, "Settings", "VistaSoundCard", ""},
    {keys::kInput, "SoundCard", "Input", ""},
    {keys::kOutput, "SoundCard", "Output", ""},
    {keys::kSampleRate, "SoundCard", "SampleRate", "1"},
    {keys::kExtendedSampleRate, "Face", "ExtendedSampleRate", ""},
    {keys::kLineInput, "SoundCard", "LineInput", ""},
    {keys::kThreeMixers, "SoundCard", "ThreeMixers", ""},
    {keys::kLevel, "Signal Generator", "Level", "-50"},
    {keys::kSynthesisLevel, "Signal Generator", "Level", "50"},
    {keys::kMuteMeter, "Signal Generator", "MuteMeter", "1"},
    {keys::kToneType, "Signal Generator", "ToneType", ""},
    {keys::kCurrentStart, "Signal Generator", "Current Signal Start", "1000"},
    {keys::kCurrentEnd, "Signal Generator", "Current Signal End", "20"},
    {keys::kCurrentSweepTime, "Signal Generator", "Current Signal Sweep Time", "0"},
    {keys::kCurrentSweep, "Signal Generator", "Current Signal Sweep", "False"},
    {keys::kCurrentType, "Signal Generator", "Current Signal Type", "0"},
    {keys::kCurrentLoop, "Signal Generator", "Current Signal Loop", "False"},
    {keys::kCurrentLoopIncrement, "Signal Generator", "Current Signal Loop Increment", "0"},
    {keys::kNumberOfTones, "Signal Generator", "NumberOfTones", "0"},
    {keys::kMemoryStart, "Signal Generator", "Memory Signal Start", "1000"},
    {keys::kMemoryEnd, "Signal Generator", "Memory Signal End", "0"},
    {keys::kMemorySweepTime, "Signal Generator", "Memory Signal Sweep Time", "0"},
    {keys::kMemoryLoopIncrement, "Signal Generator", "Memory Signal Loop Increment", "0"},
    {keys::kMemorySweep, "Signal Generator", "Memory Signal Sweep", "False"},
    {keys::kMemoryType, "Signal Generator", "Memory Signal Type", "0"},
    {keys::kMemoryLoop, "Signal Generator", "Memory Signal Loop", "0"},
    {keys::kMemorySelected, "Signal Generator", "Memory Signal Selected", "False"},
    {keys::kSweepKept, "Analyzer", "Sweep Kept Runs", ""},
    {keys::kLastTab, "Windows", "LastTab", "0"},
};

TEST(SettingsKeys, HaveTheirSectionsNamesAndDefaults) {
    for (const Row& row : kTable) {
        EXPECT_EQ(row.key.section, row.section) << row.name;
        EXPECT_EQ(row.key.key, row.name);
        EXPECT_EQ(row.key.fallback, row.fallback) << row.name;
    }
    EXPECT_EQ(keys::kWindows, "Windows");
    EXPECT_EQ(keys::kNeverPlaced, "-1");
}

TEST(SettingsKeys, FreshStoreReadsEveryDefaultAndStoresNothing) {
    MemorySettingsStore store;
    const Settings settings(store);
    for (const Row& row : kTable) EXPECT_EQ(settings.Text(row.key), row.fallback) << row.name;
    EXPECT_EQ(store.Size(), 0U);
}

TEST(SettingsKeys, StoredValuesWinOverEveryDefault) {
    MemorySettingsStore store;
    const Settings settings(store);
    for (const Row& row : kTable) {
        store.Save(row.section, row.name, std::string("stored ") + row.name);
        EXPECT_EQ(settings.Text(row.key), std::string("stored ") + row.name);
    }
}

TEST(SettingsKeys, NumberFollowsABlank) {
    EXPECT_EQ(keys::Numbered(keys::kThd, 0), "THD 0");
    EXPECT_EQ(keys::Numbered(keys::kThd, 7), "THD 7");
    EXPECT_EQ(keys::Numbered(keys::kDb, 0), "DB 0");
    EXPECT_EQ(keys::Numbered(keys::kDb, 7), "DB 7");
    EXPECT_EQ(keys::Numbered(keys::kMemoryStart, 3), "Memory Signal Start 3");
    EXPECT_EQ(keys::Numbered(keys::kMemoryEnd, 12), "Memory Signal End 12");
    EXPECT_EQ(keys::Numbered(keys::kMemorySweepTime, 1), "Memory Signal Sweep Time 1");
    EXPECT_EQ(keys::Numbered(keys::kMemoryLoopIncrement, 1), "Memory Signal Loop Increment 1");
    EXPECT_EQ(keys::Numbered(keys::kMemorySweep, 1), "Memory Signal Sweep 1");
    EXPECT_EQ(keys::Numbered(keys::kMemoryType, 1), "Memory Signal Type 1");
    EXPECT_EQ(keys::Numbered(keys::kMemoryLoop, 1), "Memory Signal Loop 1");
    EXPECT_EQ(keys::Numbered(keys::kMemorySelected, 100), "Memory Signal Selected 100");
}

TEST(SampleRates, AreSevenInThisOrder) {
    const std::array<std::int32_t, 7> rates{48000, 44100, 32000, 22050, 16000, 8000, 4000};
    EXPECT_EQ(SampleRateTable, rates);
    for (std::int32_t index = 0; index < 7; ++index)
        EXPECT_EQ(SampleRateIndex(rates[static_cast<std::size_t>(index)]), index);
    for (const std::int32_t rateHz : {0, -48000, 48001, 96000, 11025}) EXPECT_FALSE(SampleRateIndex(rateHz));
}

TEST(SampleRates, AreExtendedByFourWithoutIndex) {
    const std::array<std::int32_t, 4> rates{88200, 96000, 176400, 192000};
    EXPECT_EQ(kExtendedRates, rates);
    for (const std::int32_t rateHz : rates) {
        EXPECT_FALSE(SampleRateIndex(rateHz)) << rateHz;
        EXPECT_TRUE(IsSampleRate(rateHz)) << rateHz;
    }
    for (const std::int32_t rateHz : SampleRateTable) EXPECT_TRUE(IsSampleRate(rateHz)) << rateHz;
    for (const std::int32_t rateHz : {0, 11025, 48001, 64000, 384000}) EXPECT_FALSE(IsSampleRate(rateHz));
}

TEST(SampleRates, StartAt32000HzOnTheNewerGeneration) {
    EXPECT_EQ(DefaultSampleRateIndex(6), 2);
    EXPECT_EQ(DefaultSampleRateIndex(10), 2);
    EXPECT_EQ(DefaultSampleRateIndex(5), 1);
    EXPECT_EQ(DefaultSampleRateIndex(0), 1);
}

}  // namespace
}  // namespace sonavex
