#include <gtest/gtest.h>

#include "platform/plain/MemorySettingsStore.h"

namespace sonavex {
namespace {

TEST(MemorySettingsStore, CountsItsValues) {
    MemorySettingsStore store;
    EXPECT_EQ(store.Get("Settings", "Auto", "1"), "1");
    EXPECT_EQ(store.Size(), 0U);
    store.Save("Settings", "Auto", "0");
    store.Save("Settings", "Auto", "1");
    EXPECT_EQ(store.Size(), 1U);
    store.Save("SoundCard", "Auto", "1");
    store.Save("SoundCard", "Input", "");
    EXPECT_EQ(store.Size(), 3U);
    store.DeleteSection("SoundCard");
    EXPECT_EQ(store.Size(), 1U);
}

TEST(MemorySettingsStore, SaysWhereItKeepsItsValues) {
    EXPECT_EQ(MemorySettingsStore().Location(), "settings in memory");
}

}  // namespace
}  // namespace sonavex
