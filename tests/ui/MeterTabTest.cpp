#include <QClipboard>
#include <QGuiApplication>
#include <QProgressBar>
#include <map>

#include "ui/WindowRig.h"
#include "ui/widgets/HarmonicBar.h"
#include "ui/widgets/LevelBar.h"
#include "ui/widgets/LockLamp.h"

namespace sonavex {
namespace {

using testing::ElementsAre;

class MeterTab : public WindowRig {
protected:
    void Click(const char* button) {
        Find<QAbstractButton>(button).click();
        Settle();
    }
    void StartSine() {
        Click("startCurrentMeter");
        Step(60);
    }
};

TEST_F(MeterTab, IsRedBeforeTheFirstBlock) {
    EXPECT_EQ(Find<ui::LockLamp>("picLocked").Colour(), QColor(255, 0, 0));
    EXPECT_EQ(Find<ui::LockLamp>("GenLocked").Colour(), QColor(255, 0, 0));
    EXPECT_EQ(Text("lockWord"), "NOT LOCKED");
    EXPECT_EQ(Text("LblLevel"), "");
    EXPECT_EQ(Text("adcWord"), "");
}

TEST_F(MeterTab, MeasuresWhatItsStartButtonPlays) {
    Click("startCurrentMeter");
    EXPECT_EQ(Find<QPushButton>("startCurrentMeter").text(), "Stop Current");
    EXPECT_EQ(Find<QPushButton>("Command1").text(), "Stop Current");
    Step(60);
    EXPECT_EQ(Find<QLineEdit>("txtFreq").text(), "1000");
    EXPECT_EQ(Text("lockWord"), "LOCKED");
    EXPECT_EQ(Find<ui::LockLamp>("picLocked").Colour(), QColor(0, 255, 0));
    EXPECT_EQ(Text("lblThd").toStdString(), rig.Thd());
    EXPECT_GT(Text("lblThd").toDouble(), 0.0);
    EXPECT_LT(Text("lblThd").toDouble(), 0.01);
    EXPECT_FALSE(Find<QLabel>("settlingNote").isVisible());
    EXPECT_EQ(Text("lblDACLevel"), "Muted");
}

TEST_F(MeterTab, SaysNotLockedInWordShapeAndColour) {
    Click("startCurrentMeter");
    Find<QCheckBox>("chkAuto").click();
    Find<QLineEdit>("txtFreq").setFocus();
    Find<QLineEdit>("txtFreq").selectAll();
    QTest::keyClicks(&Find<QLineEdit>("txtFreq"), "440");
    QTest::keyClick(&Find<QLineEdit>("txtFreq"), Qt::Key_Return);
    Step(25);
    EXPECT_EQ(Text("lockWord"), "NOT LOCKED");
    EXPECT_FALSE(Find<ui::LockLamp>("picLocked").Good());
    EXPECT_EQ(Find<ui::LockLamp>("picLocked").Colour(), QColor(255, 0, 0));
    EXPECT_EQ(Text("lblThd"), "N/A");
    EXPECT_EQ(Text("lbltest_0"), "");
    EXPECT_FALSE(Find<QLabel>("unitThd").isVisible());
}

TEST_F(MeterTab, TakesOnlyNumbersOfSevenCharactersAsTheFrequency) {
    Find<QCheckBox>("chkAuto").click();
    Settle();
    auto& box = Find<QLineEdit>("txtFreq");
    const auto type = [&](const char* keys) {
        box.clear();
        QTest::keyClicks(&box, keys);
        return box.text();
    };
    EXPECT_EQ(type("440.5"), "440.5");
    EXPECT_EQ(type("1e9-x5,0 2.7.1"), "19502.7");
    EXPECT_EQ(type("1234567890"), "1234567");
    for (const char* unfinished : {"", ".", "12."}) {
        type(unfinished);
        EXPECT_TRUE(box.hasAcceptableInput()) << "Return ends the entry";
    }
    const auto paste = [&](const char* text) {
        box.setText("440");
        box.selectAll();
        QGuiApplication::clipboard()->setText(text);
        box.paste();
        return box.text();
    };
    EXPECT_EQ(paste("1000.25"), "1000.25");
    EXPECT_EQ(paste("9999999999"), "9999999");
    for (const char* text : {"1e300", "-5", "1.2.3", "12 Hz"}) EXPECT_EQ(paste(text), "440") << text;
}

TEST_F(MeterTab, MeasuresAtTheLargestFrequencyThatCanBeTyped) {
    Click("startCurrentMeter");
    Find<QCheckBox>("chkAuto").click();
    Settle();
    QTest::keyClicks(&Find<QLineEdit>("txtFreq"), "9999999");
    QTest::keyClick(&Find<QLineEdit>("txtFreq"), Qt::Key_Return);
    Step(25);
    EXPECT_THAT(rig.log.Of("Message"), testing::IsEmpty());
    EXPECT_EQ(rig.form.Instrument.Meter.Analysis().FundamentalHz, 9999999);
}

// The blocks of a perfect loop are identical when their tone is on a bin, and no figure changes.
TEST_F(MeterTab, CountsTheBlocksOfTheCycleWhenNoFigureChanges) {
    StartSine();
    const double thd = Text("lblThd").toDouble();
    for (int i = 0; i < 20; ++i) {
        Step(1);
        const int position = rig.form.Instrument.Meter.CyclePosition();
        EXPECT_EQ(Find<QProgressBar>("cycleBar").value(), position);
        EXPECT_EQ(Text("cycleText"), QString::number(position) + " of 19");
        EXPECT_EQ(Text("lblThd").toDouble(), thd);
    }
}

TEST_F(MeterTab, SaysWhatTheTotalCounts) {
    rig.form.GeneratorPanel.Controls.sldStartFreq.UserMoves(4000);
    Click("startCurrentMeter");
    Step(60);
    EXPECT_EQ(Text("capTotalOf"), QString::fromUtf8("H2–H3, re total (THD_R)"));
}

TEST_F(MeterTab, LosesItsLockAndFindsItAgain) {
    StartSine();
    EXPECT_EQ(Text("lockWord"), "LOCKED");
    EXPECT_FALSE(Find<QLabel>("settlingNote").isVisible());
    Click("startCurrentMeter");
    Step(19);
    EXPECT_EQ(Text("lockWord"), "NOT LOCKED");
    EXPECT_EQ(Text("genLockWord"), "NOT LOCKED");
    EXPECT_EQ(Text("lblThd"), "N/A");
    Click("startCurrentMeter");
    // The first update after the lock includes blocks from before it.
    for (int blocks = 0; Text("lblThd").toDouble() == 0.0 && blocks < 40; ++blocks) Step(1);
    EXPECT_EQ(Text("lockWord"), "LOCKED");
    EXPECT_TRUE(Find<QLabel>("settlingNote").isVisible());
    EXPECT_EQ(Find<QLabel>("settlingNote").x(), Find<QLabel>("capFreq").x());
    Step(38);
    EXPECT_FALSE(Find<QLabel>("settlingNote").isVisible());
    EXPECT_LT(Text("lblThd").toDouble(), 0.01);
}

TEST_F(MeterTab, MutesAndUnmutesTheWayThrough) {
    StartSine();
    EXPECT_EQ(Text("lblDACLevel"), "Muted");
    EXPECT_FALSE(Find<QLabel>("unitprgDAC").isVisible());
    Click("chkMuteOutput");
    Step(2);
    EXPECT_NE(Text("lblDACLevel"), "Muted");
    EXPECT_TRUE(Find<QLabel>("unitprgDAC").isVisible());
    EXPECT_EQ(Find<ui::LevelBar>("prgDAC").accessibleDescription(), Text("lblDACLevel") + " %");
    Click("chkMuteOutput");
    Step(2);
    EXPECT_EQ(Text("lblDACLevel"), "Muted");
    EXPECT_EQ(Find<ui::LevelBar>("prgDAC").accessibleDescription(), "Muted");
}

TEST_F(MeterTab, AppliesTheBaselineAndTakesItBack) {
    DeviceUnderTestModel bent;
    bent.harmonicAmplitudes = {0.01};
    rig.card.Card().SetDeviceUnderTest(bent);
    StartSine();
    const double before = Text("lbltest_0").toDouble();
    EXPECT_GT(before, 0.5);
    Click("cmdBaseline");
    EXPECT_THAT(rig.log.Of("Message"), ElementsAre("Message information Baseline calculations captured"));
    Click("chkBaseline");
    EXPECT_FALSE(Find<QPushButton>("cmdBaseline").isEnabled());
    Step(19);
    EXPECT_LT(std::abs(rig.form.Instrument.Meter.Analysis().CurrentPct[0]), 0.01);
    Click("chkBaseline");
    EXPECT_TRUE(Find<QPushButton>("cmdBaseline").isEnabled());
    Step(19);
    EXPECT_NEAR(Text("lbltest_0").toDouble(), before, 0.001);
}

TEST_F(MeterTab, CapturesWhatItMeasuresWhileTheFiguresAreStillCorrected) {
    DeviceUnderTestModel bent;
    bent.harmonicAmplitudes = {0.01};
    rig.card.Card().SetDeviceUnderTest(bent);
    StartSine();
    Click("cmdBaseline");
    Click("chkBaseline");
    const double captured = rig.form.Instrument.Meter.Analysis().BaselinePct[0];
    Step(19);
    Click("chkBaseline");
    Click("cmdBaseline");
    EXPECT_GT(captured, 0.5);
    EXPECT_NEAR(rig.form.Instrument.Meter.Analysis().BaselinePct[0], captured, 0.001);
}

TEST_F(MeterTab, FlagsABaselineOfAnotherFrequency) {
    StartSine();
    Click("cmdBaseline");
    Click("chkBaseline");
    Step(1);
    EXPECT_FALSE(Find<QLabel>("baselineNote").isVisible());
    rig.form.GeneratorPanel.Controls.sldStartFreq.UserMoves(1500);
    Step(20);
    EXPECT_TRUE(Find<QLabel>("baselineNote").isVisible());
}

TEST_F(MeterTab, ShowsARunTimeErrorAndLivesOn) {
    rig.form.Baseline.cmdBaseline.Click.Handle([] { throw RuntimeError(error_number::kTypeMismatch); });
    Click("cmdBaseline");
    EXPECT_THAT(rig.log.Of("Message"), ElementsAre("Message critical Run-time error '13':\r\rType mismatch"));
    EXPECT_THAT(rig.log.Of("WriteLine"), ElementsAre("WriteLine Run-time error '13': Type mismatch"));
    StartSine();
    EXPECT_EQ(Text("lockWord"), "LOCKED");
}

TEST_F(MeterTab, DistinguishesOverloadFromSilence) {
    Step(1);
    EXPECT_EQ(Text("LblLevel"), "Ovr");
    EXPECT_EQ(Text("adcWord"), "NO SIGNAL");
    EXPECT_TRUE(Find<ui::LevelBar>("prgADC").Silent());
    EXPECT_EQ(Find<ui::LevelBar>("prgADC").accessibleDescription(), "NO SIGNAL");
    DeviceUnderTestModel loud;
    loud.gain = 8.0;
    rig.card.Card().SetDeviceUnderTest(loud);
    Click("startCurrentMeter");
    Step(12);
    EXPECT_EQ(Text("LblLevel"), "Ovr");
    EXPECT_EQ(Text("adcWord"), "OVERLOAD");
    EXPECT_TRUE(Find<ui::LevelBar>("prgADC").Overload());
    EXPECT_FALSE(Find<ui::LevelBar>("prgADC").Silent());
}

TEST_F(MeterTab, DoesNotMoveWhenReadingsComeAndGo) {
    std::map<QString, QRect> places;
    for (const QWidget* widget : window.findChildren<QWidget*>())
        if (widget->isVisible() && !widget->objectName().isEmpty())
            places[widget->objectName()] = {widget->mapTo(&window, QPoint()), widget->size()};
    const auto expectUnmoved = [&] {
        for (const char* name : {"lblThd", "LblLevel", "lblDACLevel", "prgADC", "prgDAC", "lbltest_0",
                                 "lblDb_7", "txtFreq", "picLocked", "cycleBar", "startCurrentMeter"}) {
            const QWidget& widget = Find<QWidget>(name);
            EXPECT_EQ(places.at(name), QRect(widget.mapTo(&window, QPoint()), widget.size())) << name;
        }
    };
    Step(1);
    expectUnmoved();
    StartSine();
    expectUnmoved();
}

TEST_F(MeterTab, StartsAndStopsWithAKey) {
    QTest::keyClick(&window, Qt::Key_F5);
    Settle();
    EXPECT_EQ(Find<QPushButton>("startCurrentMeter").text(), "Stop Current");
    QTest::keyClick(&window, Qt::Key_F5);
    Settle();
    EXPECT_EQ(Find<QPushButton>("startCurrentMeter").text(), "Start Current");
}

TEST_F(MeterTab, MarksReadingsOfALostDeviceAsThePast) {
    StartSine();
    EXPECT_FALSE(Find<QLabel>("streamNote").isVisible());
    rig.card.Unplug();
    rig.loop.DeliverSignals();
    Settle();
    EXPECT_TRUE(Find<QLabel>("streamNote").isVisible());
    EXPECT_THAT(Text("streamText").toStdString(), testing::HasSubstr("unplugged"));
    EXPECT_EQ(Text("lockWord"), "STOPPED");
    EXPECT_EQ(Find<ui::LockLamp>("picLocked").Colour(), QColor(255, 0, 0));
    EXPECT_TRUE(Find<QLabel>("lblThd").property("stale").toBool());
    for (const char* const present : {"lblInput", "lblOutput", "lblSampleRate", "lblGenLevel"})
        EXPECT_FALSE(Find<QLabel>(present).property("stale").toBool()) << present;
    const auto& reason = Find<QLabel>("streamText");
    EXPECT_GE(reason.width(), reason.fontMetrics().horizontalAdvance(reason.text()));
    EXPECT_EQ(rig.log.Count("WriteErrorLog"), 0U) << "the mark comes first";
    rig.loop.Advance(std::chrono::milliseconds(150));
    EXPECT_EQ(rig.log.Count("WriteErrorLog"), 1U);
    rig.card.Plug();
    rig.loop.Advance(std::chrono::seconds(2));
    Step(60);
    EXPECT_FALSE(Find<QLabel>("streamNote").isVisible());
    EXPECT_EQ(Text("lockWord"), "LOCKED");
    EXPECT_FALSE(Find<QLabel>("lblThd").property("stale").toBool());
    EXPECT_EQ(rig.log.Count("WriteErrorLog"), 1U);
}

}  // namespace
}  // namespace sonavex
