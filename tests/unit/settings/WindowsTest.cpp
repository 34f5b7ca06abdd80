#include <gtest/gtest.h>

#include "core/settings/Windows.h"
#include "platform/plain/MemorySettingsStore.h"
#include "support/Errors.h"

namespace sonavex {
namespace {

constexpr ScreenArea kScreen{1920, 1080, 1920, 1080};

struct Placing {
    Placing() { form.SetSize(800, 601); }
    Windows::Place At(const char* left, const char* top, const ScreenArea& screen = kScreen) {
        store.Save("Windows", "frmMain Left", left);
        store.Save("Windows", "frmMain Top", top);
        return Windows::Restore(settings, form, screen);
    }
    MemorySettingsStore store;
    Settings settings{store};
    Window form{"frmMain"};
};

TEST(WindowPosition, OfAFormNeverStoredIsTheMiddle) {
    Placing placing;
    // 1080 / 2 - 601 / 2 = 239.5, halves to even.
    EXPECT_EQ(Windows::Restore(placing.settings, placing.form, kScreen), (Windows::Place{560, 240}));
}

TEST(WindowPosition, InTheMiddleLeavesPanelsAtTheEdgesAside) {
    Placing placing;
    // A panel of 41 pixels at the top and one of 60 at the left.
    const ScreenArea screen{1860, 1039, 1920, 1080, 60, 41};
    EXPECT_EQ(Windows::Restore(placing.settings, placing.form, screen), (Windows::Place{590, 260}));
}

TEST(WindowPosition, WithOneEdgeMissingIsTheMiddle) {
    EXPECT_EQ(Placing().At("-1", "100"), (Windows::Place{560, 240}));
    EXPECT_EQ(Placing().At("100", "-1"), (Windows::Place{560, 240}));
}

TEST(WindowPosition, IsKeptWhereItFits) {
    EXPECT_EQ(Placing().At("1120", "429"), (Windows::Place{1120, 429}));
}

TEST(WindowPosition, WithinFiftyUnitsOfTheBottomIsPulledUpToTheEdge) {
    EXPECT_EQ(Placing().At("0", "430").top, 1080 - 601);
    EXPECT_EQ(Placing().At("0", "5000").top, 1080 - 601);
}

TEST(WindowPosition, BeyondTheRightEdgeIsPulledBack) {
    EXPECT_EQ(Placing().At("1121", "0").left, 1120);
}

TEST(WindowPosition, IsKeptOnTheScreensWithTheFrameToo) {
    Placing placing;
    placing.At("1120", "429");
    placing.form.SetSize(810, 631);
    EXPECT_EQ(Windows::KeptOnScreens({1120, 429}, placing.form), (Windows::Place{1110, 449}));
    EXPECT_EQ(Windows::KeptOnScreens({-700, 399}, placing.form), (Windows::Place{-700, 399}));
}

TEST(WindowPosition, NegativeButNotMinusOneIsKept) {
    EXPECT_EQ(Placing().At("-2", "-700"), (Windows::Place{-2, -700}));
}

TEST(WindowPosition, OnASecondScreenIsKept) {
    EXPECT_EQ(Placing().At("2500", "200", {1920, 1080, 4480, 1440}), (Windows::Place{2500, 200}));
}

TEST(WindowPosition, ThatIsNoNumberIsATypeMismatch) {
    Placing placing;
    EXPECT_EQ(ErrorOf([&] {
                  placing.At("left", "0");
                  return 0;
              }),
              error_number::kTypeMismatch);
}

TEST(WindowPosition, IsStoredAsDecimalText) {
    Placing placing;
    placing.form.Move(-12, 345);
    Windows::Store(placing.settings, placing.form);
    EXPECT_EQ(placing.store.Get("Windows", "frmMain Left", ""), "-12");
    EXPECT_EQ(placing.store.Get("Windows", "frmMain Top", ""), "345");
}

}  // namespace
}  // namespace sonavex
