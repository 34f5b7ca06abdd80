#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "platform/plain/MemorySettingsStore.h"

namespace sonavex {
namespace {

TEST(MemorySettingsStore, ReadingCreatesNothing) {
    const MemorySettingsStore store;
    EXPECT_EQ(store.Get("Settings", "Auto", "1"), "1");
    EXPECT_EQ(store.Get("", "", ""), "");
    EXPECT_EQ(store.Size(), 0U);
}

TEST(MemorySettingsStore, ValueIsVisibleAtOnce) {
    MemorySettingsStore store;
    store.Save("Settings", "Auto", "0");
    EXPECT_EQ(store.Get("Settings", "Auto", "1"), "0");
    store.Save("Settings", "Auto", "1");
    EXPECT_EQ(store.Get("Settings", "Auto", "7"), "1");
    EXPECT_EQ(store.Size(), 1U);
}

TEST(MemorySettingsStore, SectionsAndKeysAreKeptApart) {
    MemorySettingsStore store;
    store.Save("Settings", "SoundCard", "mixer");
    store.Save("SoundCard", "Input", "card");
    EXPECT_EQ(store.Get("SoundCard", "SoundCard", "none"), "none");
    EXPECT_EQ(store.Get("Settings", "Input", "none"), "none");
    EXPECT_EQ(store.Get("Settings", "SoundCard", "none"), "mixer");
}

TEST(MemorySettingsStore, KeepsAwkwardTextsLetterForLetter) {
    const std::vector<std::string> texts{"",
                                         " ",
                                         "  .8399",
                                         "trailing ",
                                         "a,b;c",
                                         "50%",
                                         "%20",
                                         "@ByteArray(x)",
                                         "@@",
                                         "\"quoted\"",
                                         "'",
                                         "back\\slash",
                                         "[Section]",
                                         "key=value",
                                         "# no comment",
                                         "\xC3\xA4\xC3\xB6\xC3\xBC\xC3\x9F",
                                         "two\r\nlines",
                                         "tab\there",
                                         std::string("nul\0inside", 10),
                                         std::string(10000, 'x')};
    MemorySettingsStore store;
    for (const std::string& text : texts) {
        store.Save("Signal Generator", "value", text);
        EXPECT_EQ(store.Get("Signal Generator", "value", "lost"), text);
        store.Save(text, text, text);
        EXPECT_EQ(store.Get(text, text, "lost"), text);
    }
    EXPECT_EQ(store.Size(), texts.size() + 1);
}

TEST(MemorySettingsStore, DeletesAWholeSection) {
    MemorySettingsStore store;
    store.Save("SoundCard", "Input", "a");
    store.Save("SoundCard", "Output", "b");
    store.Save("Windows", "LastTab", "2");
    store.DeleteSection("SoundCard");
    store.DeleteSection("never there");
    EXPECT_EQ(store.Get("SoundCard", "Input", "none"), "none");
    EXPECT_EQ(store.Get("SoundCard", "Output", "none"), "none");
    EXPECT_EQ(store.Get("Windows", "LastTab", "none"), "2");
    EXPECT_EQ(store.Size(), 1U);
}

TEST(MemorySettingsStore, SaysWhereItKeepsItsValues) {
    EXPECT_EQ(MemorySettingsStore().Location(), "settings in memory");
}

}  // namespace
}  // namespace sonavex
