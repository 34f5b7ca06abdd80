#include <gtest/gtest.h>

#include <string>

#include "core/settings/Settings.h"
#include "core/support/RuntimeError.h"
#include "platform/plain/MemorySettingsStore.h"
#include "support/Errors.h"

namespace sonavex {
namespace {

class SettingsTest : public testing::Test {
protected:
    MemorySettingsStore store_;
    Settings settings_{store_};
};

TEST_F(SettingsTest, ConvertsDefaults) {
    EXPECT_EQ(settings_.Long(keys::kLevel), -50);
    EXPECT_EQ(settings_.Long(keys::kSynthesisLevel), 50);
    EXPECT_EQ(settings_.Integer(keys::kAuto), 1);
    EXPECT_EQ(settings_.Double(keys::kCurrentStart), 1000.0);
    EXPECT_FALSE(settings_.Boolean(keys::kCurrentSweep));
    EXPECT_FALSE(settings_.Boolean(keys::kMemoryLoop));
    EXPECT_EQ(settings_.Value(keys::kThd), 0.0);
    EXPECT_EQ(store_.Size(), 0U);
}

TEST_F(SettingsTest, ConvertsStoredTexts) {
    settings_.Save(keys::kLevel, "-2000");
    settings_.Save(keys::kAuto, "2.5");
    settings_.Save(keys::kCurrentStart, "0.5");
    settings_.Save(keys::kCurrentSweep, "True");
    settings_.Save(keys::kCurrentLoop, "1");
    settings_.Save(keys::kBaseline, " 1 or so");
    EXPECT_EQ(settings_.Long(keys::kLevel), -2000);
    EXPECT_EQ(settings_.Integer(keys::kAuto), 2);
    EXPECT_EQ(settings_.Double(keys::kCurrentStart), 0.5);
    EXPECT_TRUE(settings_.Boolean(keys::kCurrentSweep));
    EXPECT_TRUE(settings_.Boolean(keys::kCurrentLoop));
    EXPECT_EQ(settings_.Value(keys::kBaseline), 1.0);
}

TEST_F(SettingsTest, EmptyTextIsAValueOfItsOwn) {
    settings_.Save(keys::kAuto, "");
    EXPECT_EQ(settings_.Text(keys::kAuto), "");
    EXPECT_EQ(ErrorOf([&] { return settings_.Integer(keys::kAuto); }), error_number::kTypeMismatch);
    EXPECT_EQ(settings_.Value(keys::kAuto), 0.0);
}

TEST_F(SettingsTest, ConversionErrorNamesSectionKeyValueAndPlace) {
    settings_.Save(keys::kSampleRate, "fast");
    EXPECT_EQ(ErrorOf([&] { return settings_.Integer(keys::kSampleRate); }), error_number::kTypeMismatch);
    EXPECT_EQ(
        TextOfError([&] { return settings_.Integer(keys::kSampleRate); }),
        "Type mismatch: section \"SoundCard\", key \"SampleRate\", value \"fast\" (settings in memory)");
}

TEST_F(SettingsTest, FailureNamesAValueThatCannotBeUsed) {
    settings_.Save(keys::kNumberOfTones, "12");
    const RuntimeError error = settings_.Failure(error_number::kSubscript, keys::kNumberOfTones);
    EXPECT_EQ(error.Number(), 9);
    EXPECT_STREQ(error.what(),
                 "Subscript out of range: section \"Signal Generator\", key \"NumberOfTones\", value "
                 "\"12\" (settings in memory)");
}

TEST_F(SettingsTest, OverflowKeepsItsNumber) {
    settings_.Save(keys::kLevel, "2147483648");
    EXPECT_EQ(ErrorOf([&] { return settings_.Long(keys::kLevel); }), error_number::kOverflow);
    EXPECT_EQ(
        TextOfError([&] { return settings_.Long(keys::kLevel); }),
        "Overflow: section \"Signal Generator\", key \"Level\", value \"2147483648\" (settings in memory)");
    settings_.Save(keys::kLastTab, "32768");
    EXPECT_EQ(ErrorOf([&] { return settings_.Integer(keys::kLastTab); }), error_number::kOverflow);
    settings_.Save(keys::kThd, "1e999");
    EXPECT_EQ(ErrorOf([&] { return settings_.Value(keys::kThd); }), error_number::kOverflow);
    EXPECT_EQ(ErrorOf([&] { return settings_.Double(keys::kThd); }), error_number::kOverflow);
}

TEST_F(SettingsTest, FlagThatIsNeitherWordNorNumberIsAMismatch) {
    settings_.Save(keys::kMemorySweep, "Wahr");
    EXPECT_EQ(ErrorOf([&] { return settings_.Boolean(keys::kMemorySweep); }), error_number::kTypeMismatch);
}

TEST_F(SettingsTest, AnotherDefaultReplacesOnlyTheDefault) {
    const SettingsKey key = Settings::WithFallback(keys::kSampleRate, "2");
    EXPECT_EQ(settings_.Integer(key), 2);
    settings_.Save(keys::kSampleRate, "5");
    EXPECT_EQ(settings_.Integer(key), 5);
    EXPECT_EQ(keys::kSampleRate.fallback, "1");
}

TEST_F(SettingsTest, NumberedKeysAreSeparateValues) {
    const std::string first = keys::Numbered(keys::kThd, 0);
    const std::string second = keys::Numbered(keys::kThd, 1);
    settings_.Save({keys::kSettings, first, "0"}, " .8399");
    EXPECT_EQ(settings_.Value({keys::kSettings, first, "0"}), 0.8399);
    EXPECT_EQ(settings_.Value({keys::kSettings, second, "0"}), 0.0);
    EXPECT_EQ(settings_.Store().Get("Settings", "THD 0", ""), " .8399");
}

}  // namespace
}  // namespace sonavex
