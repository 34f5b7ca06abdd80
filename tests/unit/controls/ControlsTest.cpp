#include <gtest/gtest.h>

#include "core/controls/Controls.h"

namespace sonavex {
namespace {

// Counts calls of the OnDirty hook.
template <class Watched>
struct Counted {
    Watched control;
    int told = 0;
    Counted() {
        control.OnDirty = [this] { ++told; };
    }
};

TEST(Control, NotifiesTheWindowOnceUntilCleaned) {
    Counted<Label> label;
    EXPECT_FALSE(label.control.Dirty());
    label.control.SetCaption("Ovr");
    label.control.SetCaption("58");
    label.control.SetEnabled(false);
    EXPECT_TRUE(label.control.Dirty());
    EXPECT_EQ(label.told, 1);
    label.control.Clean();
    EXPECT_FALSE(label.control.Dirty());
    EXPECT_EQ(label.told, 1);
    label.control.SetCaption("59");
    EXPECT_EQ(label.told, 2);
}

TEST(Control, StaysCleanWhenNothingChanges) {
    Counted<Label> label;
    label.control.SetCaption("");
    label.control.SetEnabled(true);
    EXPECT_FALSE(label.control.Dirty());
    EXPECT_EQ(label.told, 0);
}

TEST(Control, IsDirtyWithoutAWindow) {
    Label label;
    label.SetCaption("N/A");
    EXPECT_TRUE(label.Dirty());
    EXPECT_EQ(label.Caption(), "N/A");
}

TEST(Control, HoldsTheNewValueWhenTheWindowIsNotified) {
    TextBox box;
    std::string seen;
    box.OnDirty = [&] { seen = box.Text(); };
    box.SetText("1000");
    EXPECT_EQ(seen, "1000");
}

TEST(TextBox, RaisesChangeOnlyForTheUser) {
    TextBox box;
    int changes = 0;
    std::string seen;
    box.Change.Handle([&] {
        ++changes;
        seen = box.Text();
    });
    box.SetText("996");
    EXPECT_EQ(changes, 0);
    box.UserTypes("1000");
    EXPECT_EQ(changes, 1);
    EXPECT_EQ(seen, "1000");
    box.UserTypes("1000");
    EXPECT_EQ(changes, 2);
}

TEST(TextBox, AsksForTheKeyboardOnce) {
    Counted<TextBox> box;
    EXPECT_FALSE(box.control.TakeFocusRequest());
    box.control.SetFocus();
    EXPECT_TRUE(box.control.Dirty());
    EXPECT_EQ(box.told, 1);
    EXPECT_TRUE(box.control.TakeFocusRequest());
    EXPECT_FALSE(box.control.TakeFocusRequest());
}

TEST(CheckBox, RaisesClickOnlyForTheUser) {
    CheckBox box;
    int clicks = 0;
    box.Click.Handle([&] { ++clicks; });
    box.SetValue(1);
    EXPECT_TRUE(box.Checked());
    EXPECT_EQ(clicks, 0);
    box.UserSets(false);
    EXPECT_EQ(clicks, 1);
    EXPECT_EQ(box.Value(), 0);
    box.UserSets(true);
    EXPECT_EQ(clicks, 2);
    EXPECT_EQ(box.Value(), 1);
}

TEST(CheckBox, KnowsOneAndZeroOnly) {
    CheckBox box;
    box.SetValue(-1);
    EXPECT_EQ(box.Value(), 1);
    box.Clean();
    box.SetValue(2);
    EXPECT_FALSE(box.Dirty());
    box.SetValue(0);
    EXPECT_FALSE(box.Checked());
}

TEST(UserEvent, WithoutHandlerDoesNothing) {
    CheckBox box;
    box.UserSets(true);
    EXPECT_TRUE(box.Checked());
}

TEST(Slider, ClampsItsValue) {
    Slider slider;
    slider.SetRange(-2000, 0);
    slider.SetValue(50);
    EXPECT_EQ(slider.Value(), 0);
    slider.SetValue(-2001);
    EXPECT_EQ(slider.Value(), -2000);
    slider.SetValue(-50);
    EXPECT_EQ(slider.Value(), -50);
}

TEST(Slider, ClampsWhenItsLimitsMove) {
    Slider slider;
    slider.SetValue(80);
    slider.SetRange(0, 60);
    EXPECT_EQ(slider.Value(), 60);
    slider.SetRange(70, 90);
    EXPECT_EQ(slider.Value(), 70);
    EXPECT_EQ(slider.Min(), 70);
    EXPECT_EQ(slider.Max(), 90);
}

TEST(Slider, LowersTheMinimumWithAMaximumBelowIt) {
    Slider slider;
    slider.SetRange(10, 20);
    slider.SetMax(5);
    EXPECT_EQ(slider.Min(), 5);
    EXPECT_EQ(slider.Max(), 5);
    EXPECT_EQ(slider.Value(), 5);
}

TEST(Slider, ShowsLimitsAndValueThatFitTogether) {
    Slider slider;
    slider.SetValue(80);
    slider.Clean();
    bool fits = false;
    slider.OnDirty = [&] { fits = slider.Min() == 0 && slider.Max() == 50 && slider.Value() == 50; };
    slider.SetRange(0, 50);
    EXPECT_TRUE(fits);
}

TEST(ProgressBar, ClampsToZeroAndMaximum) {
    ProgressBar bar;
    EXPECT_EQ(bar.Max(), 32760.0F);
    bar.SetValue(32768.0F);
    EXPECT_EQ(bar.Value(), 32760.0F);
    bar.SetValue(-1.0F);
    EXPECT_EQ(bar.Value(), 0.0F);
    bar.SetValue(8192.5F);
    EXPECT_EQ(bar.Value(), 8192.5F);
    ProgressBar percent(100.0F);
    percent.SetValue(101.0F);
    EXPECT_EQ(percent.Value(), 100.0F);
}

TEST(Indicator, IsDirtyWhenItsColourChanges) {
    Counted<Indicator> indicator;
    indicator.control.SetBackColor(kLightGreen);
    indicator.control.Clean();
    indicator.control.SetBackColor(kLightGreen);
    EXPECT_FALSE(indicator.control.Dirty());
    indicator.control.SetBackColor(kLightRed);
    EXPECT_EQ(indicator.told, 2);
    EXPECT_EQ(indicator.control.BackColor(), (Colour{255, 0, 0}));
}

}  // namespace
}  // namespace sonavex
