#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "core/ports/SettingsStore.h"

namespace sonavex {

// Texts that a store might alter.
inline std::vector<std::string> AwkwardTexts() {
    std::vector<std::string> texts{"",
                                   " ",
                                   "  .8399",
                                   "trailing ",
                                   "\ttab\tat\tthe ends\t",
                                   "a,b;c",
                                   "1, 2, 3",
                                   "\"a\", \"b\"",
                                   "50%",
                                   "%20",
                                   "@ByteArray(x)",
                                   "@Invalid()",
                                   "@@",
                                   "\"quoted\"",
                                   "\"",
                                   "\"\"",
                                   "half \"quoted",
                                   "'",
                                   "back\\slash",
                                   "\\",
                                   "\\n",
                                   "C:\\new\\x41",
                                   "[Section]",
                                   "a]b",
                                   "key=value",
                                   "=",
                                   "# no comment",
                                   "; no comment",
                                   "a/b",
                                   "//",
                                   "True",
                                   "\xC3\xA4\xC3\xB6\xC3\xBC\xC3\x9F \xE2\x82\xAC \xF0\x9F\x8E\xB5",
                                   "\xEF\xBB\xBF",
                                   "\xE4\xF6\xFC not UTF-8 \xFF",
                                   "two\r\nlines",
                                   "\n",
                                   "\r",
                                   std::string("nul\0inside", 10),
                                   std::string(10000, 'x')};
    for (int code = 0; code < 256; ++code)
        texts.push_back("a" + std::string(1, static_cast<char>(code)) + "1b");
    return texts;
}

// Contract of every settings store. A Platform is default constructible, lives for one test, and offers
// SettingsStore& Store() initially empty
// void Reopen() closes the store and opens another one on the same values, if values outlive a store
template <class Platform>
class SettingsStoreContract : public testing::Test {
protected:
    SettingsStore& Store() { return platform_.Store(); }
    std::string Get(const std::string& section, const std::string& key) {
        return Store().Get(section, key, "none");
    }

    Platform platform_;
};

TYPED_TEST_SUITE_P(SettingsStoreContract);

TYPED_TEST_P(SettingsStoreContract, AFreshStoreGivesEveryFallback) {
    EXPECT_EQ(this->Store().Get("Settings", "Auto", "1"), "1");
    EXPECT_EQ(this->Store().Get("Settings", "Auto", "2"), "2");
    EXPECT_EQ(this->Store().Get("", "", ""), "");
    EXPECT_EQ(this->Store().Get("Settings", "Auto", " a,b "), " a,b ");
}

TYPED_TEST_P(SettingsStoreContract, AValueIsVisibleAtOnce) {
    this->Store().Save("Settings", "Auto", "0");
    EXPECT_EQ(this->Get("Settings", "Auto"), "0");
    this->Store().Save("Settings", "Auto", "1");
    EXPECT_EQ(this->Get("Settings", "Auto"), "1");
    this->platform_.Reopen();
    EXPECT_EQ(this->Get("Settings", "Auto"), "1");
}

TYPED_TEST_P(SettingsStoreContract, AnEmptyValueIsAValue) {
    this->Store().Save("Settings", "VistaSoundCard", "");
    EXPECT_EQ(this->Get("Settings", "VistaSoundCard"), "");
    this->platform_.Reopen();
    EXPECT_EQ(this->Get("Settings", "VistaSoundCard"), "");
}

TYPED_TEST_P(SettingsStoreContract, SectionsAndKeysAreKeptApart) {
    this->Store().Save("Settings", "SoundCard", "mixer");
    this->Store().Save("SoundCard", "Input", "card");
    this->Store().Save("Signal Generator", "Memory Signal Start 3", "440");
    this->Store().Save("Signal", "Generator/Memory Signal Start 3", "441");
    this->Store().Save("Signal Generator", "Memory  Signal Start 3", "442");
    this->Store().Save("signal generator", "memory signal start 3", "443");
    for (int round = 0; round < 2; ++round) {
        EXPECT_EQ(this->Get("Settings", "SoundCard"), "mixer");
        EXPECT_EQ(this->Get("SoundCard", "Input"), "card");
        EXPECT_EQ(this->Get("SoundCard", "SoundCard"), "none");
        EXPECT_EQ(this->Get("Settings", "Input"), "none");
        EXPECT_EQ(this->Get("Signal Generator", "Memory Signal Start 3"), "440");
        EXPECT_EQ(this->Get("Signal", "Generator/Memory Signal Start 3"), "441");
        EXPECT_EQ(this->Get("Signal Generator", "Memory  Signal Start 3"), "442");
        EXPECT_EQ(this->Get("signal generator", "memory signal start 3"), "443");
        EXPECT_EQ(this->Get("Signal Generator", "Memory Signal Start 30"), "none");
        this->platform_.Reopen();
    }
}

TYPED_TEST_P(SettingsStoreContract, KeepsTextsLetterForLetter) {
    const std::vector<std::string> texts = AwkwardTexts();
    for (std::size_t i = 0; i < texts.size(); ++i) {
        this->Store().Save("Signal Generator", "value " + std::to_string(i), texts[i]);
        this->Store().Save(texts[i], texts[i], texts[i]);
    }
    for (int round = 0; round < 2; ++round) {
        for (std::size_t i = 0; i < texts.size(); ++i) {
            EXPECT_EQ(this->Get("Signal Generator", "value " + std::to_string(i)), texts[i]);
            EXPECT_EQ(this->Get(texts[i], texts[i]), texts[i]);
        }
        this->platform_.Reopen();
    }
}

TYPED_TEST_P(SettingsStoreContract, DeletesAWholeSectionAndNothingElse) {
    this->Store().Save("SoundCard", "Input", "a");
    this->Store().Save("SoundCard", "Output", "b");
    this->Store().Save("SoundCard 2", "Input", "c");
    this->platform_.Reopen();
    this->Store().Save("SoundCard", "LineInput", "d");
    this->Store().DeleteSection("SoundCard");
    this->Store().DeleteSection("never there");
    for (int round = 0; round < 2; ++round) {
        for (const std::string key : {"Input", "Output", "LineInput"})
            EXPECT_EQ(this->Get("SoundCard", key), "none") << key;
        EXPECT_EQ(this->Get("SoundCard 2", "Input"), "c");
        this->platform_.Reopen();
    }
}

TYPED_TEST_P(SettingsStoreContract, ASectionCanBeRewritten) {
    for (int tone = 1; tone <= 12; ++tone)
        this->Store().Save("Signal Generator", "Memory Signal Start " + std::to_string(tone), "1000");
    this->platform_.Reopen();
    this->Store().DeleteSection("Signal Generator");
    this->Store().Save("Signal Generator", "NumberOfTones", "1");
    this->Store().Save("Signal Generator", "Memory Signal Start 1", "440");
    for (int round = 0; round < 2; ++round) {
        EXPECT_EQ(this->Get("Signal Generator", "NumberOfTones"), "1");
        EXPECT_EQ(this->Get("Signal Generator", "Memory Signal Start 1"), "440");
        EXPECT_EQ(this->Get("Signal Generator", "Memory Signal Start 2"), "none");
        this->platform_.Reopen();
    }
}

TYPED_TEST_P(SettingsStoreContract, SaysWhereItKeepsItsValues) {
    EXPECT_FALSE(this->Store().Location().empty());
}

REGISTER_TYPED_TEST_SUITE_P(SettingsStoreContract, AFreshStoreGivesEveryFallback, AValueIsVisibleAtOnce,
                            AnEmptyValueIsAValue, SectionsAndKeysAreKeptApart, KeepsTextsLetterForLetter,
                            DeletesAWholeSectionAndNothingElse, ASectionCanBeRewritten,
                            SaysWhereItKeepsItsValues);

}  // namespace sonavex
