#include <QAction>
#include <QClipboard>
#include <QDropEvent>
#include <QMimeData>

#include "ui/GeneratorTabRig.h"

namespace sonavex {
namespace {

using testing::ElementsAre;

class TypedEntries : public GeneratorTabRig {
protected:
    TextBox& Control(const char* name) {
        for (const auto& pair : window.Bindings().Pairs())
            if (pair.widget->objectName() == name) return *static_cast<TextBox*>(pair.control);
        throw std::runtime_error(name);
    }
    // A value that the second handler of the start frequency overwrites.
    void MarkSecondHandler() { Tone().SweepFrequency = -1.0; }
    bool SecondHandlerRan() { return Tone().SweepFrequency != -1.0; }
    void LoseFocus(const char* name, Qt::FocusReason reason) {
        QFocusEvent event(QEvent::FocusOut, reason);
        QApplication::sendEvent(&Find<QLineEdit>(name), &event);
        Settle();
    }
    void Paste(const char* name, const QString& text) {
        QGuiApplication::clipboard()->setText(text);
        Find<QLineEdit>(name).paste();
        Settle();
    }
    void TypeFundamental(const QString& text) {
        rig.form.TabStrip1.SetIndex(0);
        Settle();
        if (Find<QCheckBox>("chkAuto").isChecked()) Find<QCheckBox>("chkAuto").click();
        Settle();
        Type("txtFreq", text);
    }
};

TEST_F(TypedEntries, LeaveAPlayingToneAloneUntilTheyAreComplete) {
    Click("Command1");
    auto& box = Find<QLineEdit>("txtGenFreq");
    box.setFocus();
    box.selectAll();
    const QString text = "440.5";
    for (int typed = 1; typed <= text.size(); ++typed) {
        QTest::keyClick(&box, text.at(typed - 1).toLatin1());
        Step(3);
        EXPECT_EQ(box.text(), text.left(typed));
        EXPECT_EQ(Tone().Frequency, 1000.0);
        EXPECT_EQ(Control("txtGenFreq").Text(), "1000");
        EXPECT_EQ(Signal().sldStartFreq.Value(), 1000);
    }
    Key("txtGenFreq", Qt::Key_Return);
    EXPECT_EQ(box.text(), "440");
    EXPECT_EQ(Tone().Frequency, 440.0);
    EXPECT_EQ(Tone().SweepFrequency, 440.0);
    EXPECT_EQ(Signal().sldStartFreq.Value(), 440);
}

TEST_F(TypedEntries, ReachTheOtherControlsOfTheGeneratorWithReturn) {
    Type("txtSweepTime", "250");
    EXPECT_EQ(Signal().sldSweepTime.Value(), 0);
    EXPECT_FALSE(Find<QLineEdit>("txtGenEndFreq").isEnabled());
    Key("txtSweepTime", Qt::Key_Return);
    EXPECT_EQ(Signal().sldSweepTime.Value(), 250);
    EXPECT_TRUE(Tone().Sweep);
    Type("txtGenEndFreq", "2000");
    EXPECT_EQ(Tone().EndFrequency, 20.0);
    Key("txtGenEndFreq", Qt::Key_Return);
    EXPECT_EQ(Tone().EndFrequency, 2000.0);
    EXPECT_EQ(Tone().LoopIncrement, 4.0);
}

TEST_F(TypedEntries, OfTheFundamentalWaitToo) {
    Click("Command1");
    TypeFundamental("1000");
    Key("txtFreq", Qt::Key_Return);
    Step(30);
    ASSERT_EQ(Text("lockWord"), "LOCKED");
    Type("txtFreq", "440.5");
    Step(5);
    EXPECT_EQ(Control("txtFreq").Text(), "1000");
    EXPECT_EQ(Text("lockWord"), "LOCKED");
    Key("txtFreq", Qt::Key_Return);
    Step(5);
    EXPECT_EQ(Control("txtFreq").Text(), "440.5");
    EXPECT_EQ(Box("txtFreq"), "440.5");
    EXPECT_EQ(Text("lockWord"), "NOT LOCKED");
}

TEST_F(TypedEntries, BelowTheLowestFrequencyAreTakenAsTyped) {
    TypeAndReturn("txtGenFreq", "0.5");
    EXPECT_EQ(Box("txtGenFreq"), "1");
    TypeAndReturn("txtGenFreq", "15.4");
    EXPECT_EQ(Tone().StartFrequency, 15.0);
    EXPECT_EQ(Box("txtGenFreq"), "15");
}

TEST_F(TypedEntries, AreCompleteWhenTheBoxIsLeftForAnother) {
    Type("txtGenFreq", "440");
    Key("txtGenFreq", Qt::Key_Tab);
    EXPECT_EQ(Tone().StartFrequency, 440.0);
    EXPECT_EQ(Tone().SweepFrequency, 440.0);
    Type("txtGenFreq", "450");
    Find<QLineEdit>("txtSweepTime").setFocus();
    EXPECT_EQ(Tone().StartFrequency, 450.0);
}

TEST_F(TypedEntries, StayOpenWhileAnotherWindowOrAContextMenuIsUsed) {
    Type("txtGenFreq", "440");
    for (const Qt::FocusReason reason : {Qt::ActiveWindowFocusReason, Qt::PopupFocusReason}) {
        LoseFocus("txtGenFreq", reason);
        EXPECT_EQ(Box("txtGenFreq"), "440");
        EXPECT_EQ(Tone().StartFrequency, 1000.0);
    }
    Key("txtGenFreq", Qt::Key_Return);
    EXPECT_EQ(Tone().StartFrequency, 440.0);
}

TEST_F(TypedEntries, AreCompleteBeforeAButtonAShortcutAndAMenu) {
    std::vector<std::int32_t> seenHz;
    const auto note = [&] { seenHz.push_back(Signal().sldStartFreq.Value()); };
    rig.form.Menus.mnuAbout.Click.Handle(note);
    Memory().cmdGenAdd.Click.Handle(note);
    Signal().Command1.Click.Handle(note);
    Type("txtGenFreq", "440");
    window.findChild<QAction*>("mnuAbout")->trigger();
    Type("txtGenFreq", "441");
    Find<QPushButton>("cmdGenAdd").click();
    Type("txtGenFreq", "442");
    Key("txtGenFreq", Qt::Key_F5);
    EXPECT_THAT(seenHz, ElementsAre(440, 441, 442));
}

TEST_F(TypedEntries, ArePlayedByAShortcut) {
    Type("txtGenFreq", "440.5");
    Key("txtGenFreq", Qt::Key_F5);
    EXPECT_TRUE(rig.form.Instrument.Meter.Generator.GeneratorRunning);
    EXPECT_EQ(Tone().Frequency, 440.0);
    EXPECT_EQ(Box("txtGenFreq"), "440");
}

TEST_F(TypedEntries, AreCompleteBeforeTheTabChanges) {
    Type("txtGenFreq", "440");
    Key("txtGenFreq", Qt::Key_F5);
    Type("txtGenFreq", "450");
    QTest::keyClick(&Find<QLineEdit>("txtGenFreq"), Qt::Key_Tab, Qt::ControlModifier);
    Settle();
    EXPECT_EQ(rig.form.TabStrip1.Index(), 0);
    EXPECT_EQ(Tone().Frequency, 450.0);
    EXPECT_EQ(Box("txtGenFreq"), "450");
}

TEST_F(TypedEntries, AreCompleteBeforeTheWindowCloses) {
    Type("txtGenFreq", "440");
    window.close();
    EXPECT_EQ(Stored("Current Signal Start"), "440");
}

TEST_F(TypedEntries, AreWhereTheWheelStartsFrom) {
    Type("txtGenFreq", "440");
    Wheel("sldStartFreq", 480);
    EXPECT_EQ(Box("txtGenFreq"), "554");
    Type("txtSweepTime", "700");
    Wheel("sldSweepTime", 120);
    EXPECT_EQ(Box("txtSweepTime"), "800");
    Type("txtSweepTime", "500");
    Wheel("sldLevel", 120);
    EXPECT_EQ(Signal().sldSweepTime.Value(), 500);
}

TEST_F(TypedEntries, AreWhereAClickNextToTheHandleStartsFrom) {
    Type("txtGenFreq", "440");
    auto& slider = Find<QSlider>("sldStartFreq");
    QTest::mouseClick(&slider, Qt::LeftButton, {}, QPoint(slider.width() - 2, slider.height() / 2));
    Settle();
    EXPECT_EQ(Box("txtGenFreq"), "554");
}

TEST_F(TypedEntries, DoNotMoveAHandleAwayFromThePointer) {
    Type("txtGenFreq", "440");
    auto& slider = Find<QSlider>("sldStartFreq");
    const QPoint from = Handle(slider);
    QTest::mousePress(&slider, Qt::LeftButton, {}, from);
    Settle();
    EXPECT_EQ(Tone().StartFrequency, 440.0);
    QTest::mouseMove(&slider, from + QPoint(30, 0));
    Settle();
    EXPECT_GT(Tone().StartFrequency, 1000.0);
    QTest::mouseRelease(&slider, Qt::LeftButton, {}, from + QPoint(30, 0));
    Settle();
    EXPECT_EQ(Box("txtGenFreq").toDouble(), Tone().StartFrequency);
}

TEST_F(TypedEntries, AreShownByAHandleThatWasHeldMeanwhile) {
    auto& slider = Find<QSlider>("sldStartFreq");
    const int thousandHz = slider.value();
    Type("txtGenFreq", "440");
    QTest::mouseClick(&slider, Qt::LeftButton, {}, Handle(slider));
    Settle();
    EXPECT_EQ(Tone().StartFrequency, 440.0);
    EXPECT_LT(slider.value(), thousandHz);
}

TEST_F(TypedEntries, GiveWayToAValueOfTheForm) {
    MarkSecondHandler();
    Type("txtGenFreq", "440");
    Signal().txtGenFreq.SetText("900");
    // Not yet shown, but no longer the text that the user has started from.
    QTest::keyClick(&Find<QLineEdit>("txtGenFreq"), Qt::Key_Return);
    EXPECT_FALSE(SecondHandlerRan());
    Settle();
    EXPECT_EQ(Box("txtGenFreq"), "900");
    Key("txtGenFreq", Qt::Key_Return);
    EXPECT_FALSE(SecondHandlerRan());
    EXPECT_EQ(Control("txtGenFreq").Text(), "900");
}

TEST_F(TypedEntries, GiveWayToANewLimit) {
    Type("txtGenFreq", "4400");
    Signal().sldStartFreq.SetMax(800);
    rig.form.GeneratorPanel.FollowLimits();
    Settle();
    EXPECT_EQ(Box("txtGenFreq"), "800");
}

TEST_F(TypedEntries, StayWhileOtherControlsChange) {
    Type("txtGenFreq", "44");
    Step(3);
    Signal().txtGenFreq.SetEnabled(false);
    Signal().txtGenFreq.SetEnabled(true);
    Signal().lblGenLevel.SetCaption("-1.00 dB");
    Settle();
    EXPECT_EQ(Box("txtGenFreq"), "44");
}

TEST_F(TypedEntries, EndWithTheUseOfTheirBox) {
    MarkSecondHandler();
    Type("txtGenFreq", "44");
    Signal().txtGenFreq.SetEnabled(false);
    Settle();
    EXPECT_EQ(Box("txtGenFreq"), "1000");
    EXPECT_FALSE(SecondHandlerRan());
}

TEST_F(TypedEntries, AreDiscardedByEscape) {
    MarkSecondHandler();
    Type("txtGenFreq", "440");
    Key("txtGenFreq", Qt::Key_Escape);
    EXPECT_EQ(Box("txtGenFreq"), "1000");
    Key("txtGenFreq", Qt::Key_Return);
    EXPECT_FALSE(SecondHandlerRan());
    QTest::keyClicks(&Find<QLineEdit>("txtGenFreq"), "0");
    Key("txtGenFreq", Qt::Key_Return);
    EXPECT_EQ(Tone().StartFrequency, 10000.0);
}

TEST_F(TypedEntries, WithTheShownTextAreNone) {
    MarkSecondHandler();
    TypeAndReturn("txtGenFreq", "1000");
    Find<QLineEdit>("txtSweepTime").setFocus();
    EXPECT_FALSE(SecondHandlerRan());
}

// The slider's value does not change, so nothing but the entry can restore the text.
TEST_F(TypedEntries, ThatChangeNothingAreReplacedByTheValue) {
    for (const char* text : {"1000.4", "1000x"}) {
        TypeAndReturn("txtGenFreq", text);
        EXPECT_EQ(Box("txtGenFreq"), "1000") << text;
    }
}

TEST_F(TypedEntries, MayBeDropped) {
    auto& box = Find<QLineEdit>("txtGenFreq");
    Find<QPushButton>("Command1").setFocus();
    box.clear();
    QMimeData data;
    data.setText("440");
    QDragEnterEvent enter(box.rect().center(), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(&box, &enter);
    QDropEvent drop(box.rect().center(), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(&box, &drop);
    EXPECT_EQ(box.text(), "440");
    EXPECT_EQ(Tone().StartFrequency, 1000.0);
    EXPECT_EQ(window.focusWidget(), &box);
    Key("txtGenFreq", Qt::Key_Tab);
    EXPECT_EQ(Tone().StartFrequency, 440.0);
}

TEST_F(TypedEntries, OfTheFundamentalHaveDigitsAndOnePoint) {
    TypeFundamental("-1e3.0,5.5x");
    EXPECT_EQ(Box("txtFreq"), "13.055");
    Type("txtFreq", "123456789");
    EXPECT_EQ(Box("txtFreq"), "1234567");
    Type("txtFreq", ".5");
    EXPECT_EQ(Box("txtFreq"), ".5");
}

TEST_F(TypedEntries, OfTheFundamentalMayBePastedWhole) {
    TypeFundamental("");
    const std::pair<const char*, const char*> cases[] = {
        {"440.5", "440.5"}, {"440\n", "440"}, {"999.7568", "999.756"}, {"1e300", ""},
        {"1 kHz", ""},      {"-440", ""},     {"1.000.5", ""},         {"  440", ""}};
    for (const auto& [pasted, shown] : cases) {
        Find<QLineEdit>("txtFreq").clear();
        Paste("txtFreq", pasted);
        EXPECT_EQ(Box("txtFreq"), shown) << pasted;
    }
    Find<QLineEdit>("txtFreq").clear();
    Paste("txtFreq", "440.5\n");
    Key("txtFreq", Qt::Key_Return);
    EXPECT_EQ(Control("txtFreq").Text(), "440.5");
}

}  // namespace
}  // namespace sonavex
